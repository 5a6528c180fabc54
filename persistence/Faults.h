#pragma once

#include <functional>
#include <string_view>

/// Breaches of a class's order of calls. They are our own bugs: told to the user at once, and the operation is skipped.
namespace velmora::persistence {

/// Takes the text of a fault; its lines are parted by "\n".
using FaultHandler = std::function<void(std::string_view text)>;

/// Replaces the process's handler and returns the earlier one. Without one (null), faults go to the standard error.
FaultHandler SetFaultHandler(FaultHandler handler);

void ReportFault(std::string_view text);

} // namespace velmora::persistence
