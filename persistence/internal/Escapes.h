#pragma once

#include <string>
#include <string_view>

namespace velmora::persistence {

/// Appends `text` to `target` with the five characters & < > ' " as entities.
void AppendEscaped(std::string& target, std::string_view text);

/// Puts the five entities back one after the other, "&amp;" first: "&amp;lt;" becomes "<". Files rely on that order.
std::string Unescaped(std::string_view text);

} // namespace velmora::persistence
