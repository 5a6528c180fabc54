#include "app/KeyPressOfEvent.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QString>

namespace velmora::app {
namespace {

/// The codes of X11 and Wayland for the keys 1 to 9 and 0 of the upper row.
constexpr quint32 kFirstDigitCode = 10;
constexpr quint32 kLastDigitCode = 19;

bool CodesAreOfKeys()
{
    const QString platform = QGuiApplication::platformName();
    return platform == "xcb" || platform.startsWith("wayland");
}

char KeyOf(const QKeyEvent& event, bool numpad)
{
    const quint32 code = event.nativeScanCode();
    if (!numpad && code >= kFirstDigitCode && code <= kLastDigitCode && CodesAreOfKeys()) {
        return code == kLastDigitCode ? '0' : static_cast<char>('1' + static_cast<int>(code - kFirstDigitCode));
    }
    const int key = event.key();
    const bool known = (key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
                       key == Qt::Key_Plus || key == Qt::Key_Minus || key == Qt::Key_Asterisk || key == Qt::Key_Slash;
    return known ? static_cast<char>(key) : '\0';
}

} // namespace

KeyPress KeyPressOfEvent(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    KeyPress press;
    press.numpad = modifiers.testFlag(Qt::KeypadModifier);
    press.key = KeyOf(event, press.numpad);
    press.shift = modifiers.testFlag(Qt::ShiftModifier);
    press.ctrl = modifiers.testFlag(Qt::ControlModifier);
    press.alt = modifiers.testFlag(Qt::AltModifier) || modifiers.testFlag(Qt::MetaModifier);
    press.repeated = event.isAutoRepeat();
    return press;
}

} // namespace velmora::app
