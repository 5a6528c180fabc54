#include "core/ProgramFiles.h"

#include "core/Paths.h"

#include <filesystem>

namespace velmora::core {

namespace fs = std::filesystem;

std::string ProgramFilesFolder()
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return ProgramFilesFolderOf(error ? "/" : program.string());
}

std::string ProgramFilesFolderOf(std::string_view program)
{
    const fs::path own = fs::path(program).parent_path();
    for (const char* place : {".", "../share/velmora", "../../../resources"}) {
        std::error_code error;
        const fs::path folder = (own / place).lexically_normal();
        if (fs::is_regular_file(folder / "paths.cfg", error)) {
            return InternalPath(folder.string());
        }
    }
    return InternalPath(own.string());
}

} // namespace velmora::core
