#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora::testing {

/// A fresh folder of the system's temporary place; destroying it removes it with all inside.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Posix() const { return m_path; }
    /// In the internal form; with `name`, a path inside the folder (backslashes part its names).
    std::string Path(std::string_view name = {}) const;

private:
    std::filesystem::path m_path;
};

} // namespace velmora::testing
