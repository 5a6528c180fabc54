#pragma once

#include "core/Environment.h"
#include "core/MsgParametersClass.h"

#include <optional>
#include <string>

namespace velmora::controls {

/// Asks for a music file. Nothing on a cancel, and for a file that is not there, which is told. Internal path.
std::optional<std::string> AskForMusicFile(core::Environment& environment);

/// The message that makes a clip of a file, titled by its name; channel and place are still to be set.
core::MsgParametersClass WaveOf(const std::string& path);

} // namespace velmora::controls
