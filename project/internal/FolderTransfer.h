#pragma once

#include "core/Environment.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::project {

/// The copy of a project's audio folder to the folder of its new name, in steps that can be taken back.
///
/// Order of calls: `Prepare`, `Copy`, `Swap`, `Commit`. Files that stood in the new folder before are kept aside until
/// `Commit`; without it the destructor puts everything back. The old folder is only read.
class FolderTransfer {
public:
    FolderTransfer(core::Environment& environment, std::string from, std::string to);
    ~FolderTransfer();
    FolderTransfer(const FolderTransfer&) = delete;
    FolderTransfer& operator=(const FolderTransfer&) = delete;

    /// Checks the free space, asks about an existing folder, makes and locks the new one. False, with the reason
    /// shown, when the user or the disk says no.
    bool Prepare(bool isNewProject);
    /// Copies all but the lock file, while the interface lives; false, with a message that names the file, when one
    /// fails.
    bool Copy();
    /// Lets the copies take the place of files of the same names.
    bool Swap();
    /// Makes it final and hands over the lock of the new folder.
    std::unique_ptr<core::FileLock> Commit();

private:
    struct Copied {
        std::string target;
        /// A file of that name stood there before, and the copy waits beside it.
        bool waits = false;
        /// The earlier file stands aside and the copy in its place.
        bool swapped = false;
    };

    bool HasSpace(bool isNewProject) const;
    bool Fail(const std::string& file) const;
    void TakeBack();

    core::Environment& m_environment;
    core::Files& m_files;
    std::string m_from;
    std::string m_to;
    std::unique_ptr<core::FileLock> m_lock;
    std::vector<Copied> m_copied;
    bool m_madeFolder = false;
    bool m_committed = false;
};

} // namespace velmora::project
