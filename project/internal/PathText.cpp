#include "project/internal/PathText.h"

#include "core/TextUtilities.h"

#include <algorithm>

namespace velmora::project {

std::string WithoutExtension(std::string_view path)
{
    const std::string name = core::FileNameOfPath(path);
    return std::string(path.substr(0, path.size() - name.size())) + core::FileExtensionCut(name);
}

bool IsAbsolute(std::string_view path)
{
    return path.find(':') != std::string_view::npos;
}

bool LeavesFolder(std::string_view relativePath)
{
    // A slash is no separator of the internal form, but it is one where the file is touched.
    constexpr std::string_view kSeparators = "\\/";
    if (relativePath.find('\0') != std::string_view::npos) {
        return true;
    }
    int depth = 0;
    while (!relativePath.empty()) {
        const std::size_t length = std::min(relativePath.find_first_of(kSeparators), relativePath.size());
        const std::string_view part = relativePath.substr(0, length);
        relativePath.remove_prefix(std::min(length + 1, relativePath.size()));
        if (part == "..") {
            if (--depth < 0) {
                return true;
            }
        } else if (!part.empty() && part != ".") {
            ++depth;
        }
    }
    return false;
}

} // namespace velmora::project
