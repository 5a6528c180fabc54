#pragma once

#include "app/KeyCommands.h"

class QKeyEvent;

namespace velmora::app {

/// Whether the codes that key events carry are those of the keys' places, as on X11 and Wayland.
bool CodesTellPlaces();

/// A key event as the window's keys understand it, on any layout: digits and the number pad's 0 go by the key's place,
/// letters by what the key writes or, where that is another script, by their place on a keyboard that begins QWERTY.
KeyPress KeyPressOfEvent(const QKeyEvent& event, bool codesTellPlaces = CodesTellPlaces());

} // namespace velmora::app
