#pragma once

#include "core/MsgParametersClass.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::controls {

/// A sound file that the user adds to the project.
struct NewClip {
    /// `Msg_AddEvent_Wave`, titled by the file's name; channel and place are still to be set.
    core::MsgParametersClass wave;
    std::int32_t lengthMS = 0;
};

/// A file from a drive that may vanish is copied into the project's folder. `path` is internal. Nothing for a file that
/// is no sound, which is told; then nothing is copied. The interface lives meanwhile, and refuses input.
std::optional<NewClip> NewClipOf(project::ProjectFile_Class& project, const std::string& path);

} // namespace velmora::controls
