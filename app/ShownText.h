#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Texts as the user sees them.
namespace velmora::app {

/// A path of the internal form as the system writes it; one that names nothing here stays as it is.
std::string ShownPath(std::string_view internalPath);

/// `text` with each path of the internal form, which reaches to the end of its line, as the system writes it.
std::string ShownText(std::string_view text);

/// "mm:ss" of a time in ms, cut.
std::string ShownTime(std::int32_t timeMS);

/// A mark or clip with its time: "title  (mm:ss)".
std::string ShownWithTime(std::string_view title, std::int32_t timeMS);

} // namespace velmora::app
