#pragma once

#include <memory>

namespace velmora::project {

class ProjectFile_Class;

/// Drops the last take if nothing was done since, and records again where it began, once no message is under way and if
/// the project `alive` belongs to is still there. When that cannot start, the take comes back and can be repeated
/// still.
void RepeatRecording(ProjectFile_Class& project, const std::weak_ptr<const bool>& alive);

} // namespace velmora::project
