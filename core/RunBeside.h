#pragma once

#include "core/Ports.h"

#include <functional>

namespace velmora::core {

/// Runs `work` on a thread of its own and answers what it answers; meanwhile the interface lives. For long work on
/// files, while what the user could do to them is refused. It touches nothing else that the interface touches.
/// Interface thread only.
bool RunBeside(PendingEvents& events, const std::function<bool()>& work);

} // namespace velmora::core
