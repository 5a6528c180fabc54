#pragma once

#include "core/Environment.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::project {

enum class OpenMode {
    Edit,
    /// Changes nothing in the project's folder: no lock, no clean-up, no cache; what is missing is not asked for.
    ReadOnly,
};

/// A project file that has passed every check that can be made without a project: it is there, no other process holds
/// it, its header and version are right and it has data. Made before the present project goes, so that a file that
/// does not pass leaves that one in place.
class OpenedProject {
public:
    /// Says by message why a file does not pass, and asks about a missing audio folder and a held lock. `ownFolder`
    /// is the audio folder whose lock the present project holds: opening it again is no conflict.
    static std::optional<OpenedProject> Open(core::Environment& environment, std::string_view Path,
                                             OpenMode mode = OpenMode::Edit, std::string_view ownFolder = {});

    OpenedProject(OpenedProject&&) noexcept;
    OpenedProject& operator=(OpenedProject&&) noexcept;
    ~OpenedProject();

    OpenMode mode = OpenMode::Edit;
    std::string path;
    std::string audioFolder;
    /// The project's text, the raw `Data` of the file.
    std::string data;
    /// Held since the check; nothing for `ReadOnly` and when the present project holds it.
    std::unique_ptr<core::FileLock> lock;

private:
    OpenedProject();
};

} // namespace velmora::project
