#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::app {

/// Windows that commands open, beyond the ports that the document knows.
class ChildWindows {
public:
    virtual ~ChildWindows() = default;
    /// Exports the project, with its window, to `path` (internal form) and returns when that has ended. `format` is
    /// that of `audio::AudioExport`.
    virtual void ExportProject(std::int32_t format, const std::string& path) = 0;
    /// Converts the project's takes, with its window, and returns when that has ended.
    virtual void CompressProject() = 0;
    /// A page of the help, by its path inside the help folder.
    virtual void ShowHelpTopic(std::string_view topic) = 0;
    /// As the user would; a question may keep it open.
    virtual void CloseMainWindow() = 0;
};

} // namespace velmora::app
