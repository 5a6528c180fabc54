#pragma once

#include <string>
#include <string_view>

/// Parts of path text in the internal form.
namespace velmora::project {

/// The path without the text from the last "." of its name on.
std::string WithoutExtension(std::string_view path);
/// A path with a drive: it does not lie in the audio folder by its name.
bool IsAbsolute(std::string_view path);
/// A relative path that leads out of the folder that it is taken from.
bool LeavesFolder(std::string_view relativePath);

} // namespace velmora::project
