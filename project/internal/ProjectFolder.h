#pragma once

#include "core/Environment.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velmora::project {

/// The audio folder of a project: where its files are found, the lock that marks it as open, and its clean-up.
class ProjectFolder {
public:
    explicit ProjectFolder(core::Environment& environment);

    static std::string LockFileIn(std::string_view folder);
    /// The audio folder that belongs to a project file.
    static std::string AudioFolderOf(std::string_view projectPath);
    /// Makes and locks the first free "Project N" among the new projects; nothing, with a message, when none can be
    /// made. The lock stands for the folder `folder`.
    static std::unique_ptr<core::FileLock> MakeNew(core::Environment& environment, std::string& folder);

    /// Empty before a project is made or loaded.
    const std::string& GetAudioPath() const { return m_path; }
    /// The folder to use from now on; the lock of the one before is let go.
    void Enter(std::string folder, std::unique_ptr<core::FileLock> lock);

    /// Relative paths are taken from the folder. One that leads out of it gives "".
    std::string FixAudioFilePath(std::string_view Path) const;

    /// Moves the ".wav" and ".wma" files that none of `usedPaths` names or points at to the trash; nothing while the
    /// journal of a take (`*.take`) is there.
    void DeleteUnusedFiles(const std::vector<std::string>& usedPaths);

private:
    bool PointedAt(const std::string& file, const std::unordered_set<std::string>& paths) const;

    core::Environment& m_environment;
    std::string m_path;
    std::unique_ptr<core::FileLock> m_lock;
};

} // namespace velmora::project
