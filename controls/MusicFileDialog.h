#pragma once

#include "core/Environment.h"

#include <optional>
#include <string>

namespace velmora::controls {

/// Asks for a music file. Nothing on a cancel, and for a file that is not there, which is told. Internal path.
std::optional<std::string> AskForMusicFile(core::Environment& environment);

} // namespace velmora::controls
