#pragma once

#include "core/ClassIds.h"

#include <cstdint>

namespace velmora::project {

class ProjectFile_Class;

/// Drops the last take if nothing was done since, and records again at `timePos` ms on `channelID`. When that cannot
/// start, the take comes back and can be repeated still.
void RepeatRecording(ProjectFile_Class& project, std::int32_t timePos, core::ClassID channelID);

} // namespace velmora::project
