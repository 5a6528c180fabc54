#pragma once

#include "app/KeyCommands.h"

class QKeyEvent;

namespace velmora::app {

/// What the window's keys need of an event. Digits of the upper row count by their place on the keyboard, since Shift
/// makes other characters of them.
KeyPress KeyPressOfEvent(const QKeyEvent& event);

} // namespace velmora::app
