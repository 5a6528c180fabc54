#pragma once

#include "core/Ports.h"

#include <optional>
#include <string>
#include <string_view>

/// The text of a project file around the project's own text.
namespace velmora::project {

std::string WriteProjectFileText(std::string_view data);

/// The raw data of a project file's text, once header and version are right and the data is a project's; otherwise
/// nothing, and a message says why.
std::optional<std::string> ReadProjectFileText(std::string text, core::MessageBoxes& messages);

} // namespace velmora::project
