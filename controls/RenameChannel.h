#pragma once

#include "core/ClassIds.h"

namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::controls {

/// Asks for a channel's new title and sets it, as one undo step. Nothing for a channel that is not there.
void RenameChannel(project::ProjectFile_Class& project, core::ClassID channel, core::ClassID sender);

} // namespace velmora::controls
