#include "core/Paths.h"

#include <filesystem>
#include <system_error>

namespace velmora::core {
namespace {

constexpr std::string_view kCarriedBackslash = "\xEF\x81\x9C"; // U+F05C
constexpr std::string_view kCarriedColon = "\xEF\x80\xBA";     // U+F03A
constexpr std::string_view kDrive = "Z:";

/// Calls `take` with each name of `path` that is neither empty nor ".".
template <typename Take>
void ForEachName(std::string_view path, std::string_view separators, Take take)
{
    while (!path.empty()) {
        const std::size_t end = path.find_first_of(separators);
        const std::string_view name = path.substr(0, end);
        if (!name.empty() && name != ".") {
            take(name);
        }
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    }
}

} // namespace

std::string InternalName(std::string_view posixName)
{
    std::string name;
    name.reserve(posixName.size());
    for (const char c : posixName) {
        if (c == '\\') {
            name += kCarriedBackslash;
        } else if (c == ':') {
            name += kCarriedColon;
        } else {
            name += c;
        }
    }
    return name;
}

std::string PosixName(std::string_view internalName)
{
    std::string name;
    name.reserve(internalName.size());
    while (!internalName.empty()) {
        if (internalName.starts_with(kCarriedBackslash)) {
            name += '\\';
            internalName.remove_prefix(kCarriedBackslash.size());
        } else if (internalName.starts_with(kCarriedColon)) {
            name += ':';
            internalName.remove_prefix(kCarriedColon.size());
        } else {
            name += internalName.front();
            internalName.remove_prefix(1);
        }
    }
    return name;
}

std::string InternalPath(std::string_view posixPath)
{
    if (posixPath.empty()) {
        return {};
    }
    std::string path(kDrive);
    const auto append = [&path](std::string_view name) {
        path += '\\';
        path += InternalName(name);
    };
    if (!posixPath.starts_with('/')) {
        std::error_code error;
        ForEachName(std::filesystem::current_path(error).native(), "/", append);
    }
    ForEachName(posixPath, "/", append);
    if (path.size() == kDrive.size()) {
        path += '\\';
    }
    return path;
}

std::string PosixPath(std::string_view internalPath)
{
    const bool onOurDrive = internalPath.starts_with(kDrive) || internalPath.starts_with("z:");
    const std::string_view names = onOurDrive ? internalPath.substr(kDrive.size()) : std::string_view{};
    const bool fromRoot = onOurDrive && (names.empty() || names[0] == '\\' || names[0] == '/');
    if (!fromRoot || names.find('\0') != std::string_view::npos) {
        return {};
    }
    std::string path;
    ForEachName(names, "\\/", [&path](std::string_view name) {
        path += '/';
        path += PosixName(name);
    });
    return path.empty() ? "/" : path;
}

} // namespace velmora::core
