#pragma once

#include "controls/imgButton.h"

#include <QColor>

namespace velmora::controls {

struct ButtonState {
    bool on = false;
    bool enabled = true;
    bool hover = false;
    bool pressed = false;
};

/// What a button looks like in a state.
struct ButtonPaint {
    QColor ground;  ///< invalid for none
    QColor outline; ///< invalid for none
    QColor ink;
    bool lightLine = false;
    /// The content goes down by this while pressed.
    double sink = 0;
};

ButtonPaint PaintOf(ButtonLook look, const ButtonState& state);

} // namespace velmora::controls
