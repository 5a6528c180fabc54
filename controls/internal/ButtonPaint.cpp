#include "controls/internal/ButtonPaint.h"

#include "controls/Theme.h"

namespace velmora::controls {
namespace {

constexpr float kDisabledTool = 0.6F;

bool Flat(ButtonLook look)
{
    return look == ButtonLook::Step || look == ButtonLook::Tool || look == ButtonLook::Record;
}

const QColor& Choose(const ButtonState& state, const QColor& normal, const QColor& hover, const QColor& pressed)
{
    return state.pressed ? pressed : state.hover ? hover : normal;
}

ButtonPaint Disabled(ButtonLook look)
{
    ButtonPaint paint;
    paint.ink = theme::Text3;
    if (!Flat(look)) {
        paint.outline = theme::Line;
    } else if (look != ButtonLook::Step) {
        paint.ink.setAlphaF(kDisabledTool);
    }
    return paint;
}

ButtonPaint On(ButtonLook look, const ButtonState& state)
{
    switch (look) {
    case ButtonLook::Mute:
        return {Choose(state, theme::Text, theme::MuteOnHi, theme::Text2), {}, theme::AccentInk};
    case ButtonLook::Number:
        return {Choose(state, theme::AccentDim, theme::AccentDimHi, theme::Pressed), theme::Accent, theme::AccentHi};
    case ButtonLook::Tool:
        return {Choose(state, theme::AccentDim, theme::AccentDimHi, theme::Pressed), {}, theme::AccentHi};
    case ButtonLook::Record:
        return {state.pressed ? theme::RecDim : theme::Rec, {}, theme::RecInk};
    case ButtonLook::Raised:
    case ButtonLook::Step:
        break;
    }
    return {Choose(state, theme::Accent, theme::AccentHi, theme::AccentLo), {}, theme::AccentInk};
}

ButtonPaint Off(ButtonLook look, const ButtonState& state)
{
    ButtonPaint paint;
    paint.ink = look == ButtonLook::Record ? theme::Rec : theme::Text;
    if (Flat(look)) {
        if (state.hover || state.pressed) {
            paint.ground = state.pressed ? theme::Pressed : theme::Hover;
        } else if (look == ButtonLook::Step) {
            paint.ink = theme::Text2;
        }
        return paint;
    }
    paint.ground = Choose(state, theme::Raised, theme::Hover, theme::Pressed);
    paint.lightLine = !state.pressed;
    return paint;
}

} // namespace

ButtonPaint PaintOf(ButtonLook look, const ButtonState& state)
{
    if (!state.enabled) {
        return Disabled(look);
    }
    ButtonPaint paint = state.on ? On(look, state) : Off(look, state);
    paint.sink = state.pressed ? 1 : 0;
    return paint;
}

} // namespace velmora::controls
