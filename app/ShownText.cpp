#include "app/ShownText.h"

#include "core/Paths.h"
#include "core/TextUtilities.h"

namespace velmora::app {
namespace {

constexpr std::string_view kRoot = "Z:\\";

} // namespace

std::string ShownPath(std::string_view internalPath)
{
    std::string posix = core::PosixPath(internalPath);
    return posix.empty() ? std::string(internalPath) : posix;
}

std::string ShownText(std::string_view text)
{
    std::string shown;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t path = text.find(kRoot, at);
        if (path == std::string_view::npos) {
            break;
        }
        const std::size_t end = std::min(text.find('\n', path), text.size());
        shown += text.substr(at, path - at);
        shown += ShownPath(text.substr(path, end - path));
        at = end;
    }
    return shown.append(text.substr(at));
}

std::string ShownTime(std::int32_t timeMS)
{
    return core::FileExtensionCut(core::FormatTimePos(timeMS, false));
}

std::string ShownWithTime(std::string_view title, std::int32_t timeMS)
{
    return std::string(title) + "  (" + ShownTime(timeMS) + ")";
}

} // namespace velmora::app
