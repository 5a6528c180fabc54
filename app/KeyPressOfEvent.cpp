#include "app/KeyPressOfEvent.h"

#include <QChar>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QString>
#include <string_view>

namespace velmora::app {
namespace {

constexpr quint32 kNumpad0 = 90;
/// Above are the keys that write nothing.
constexpr int kLastLetter = 0x10ffff;

/// Keys that lie side by side, and the code of the first.
struct Row {
    quint32 first;
    std::string_view keys;
};
constexpr Row kDigits{10, "1234567890"};
constexpr Row kLetters[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

char KeyIn(const Row& row, quint32 code)
{
    return code >= row.first && code - row.first < row.keys.size() ? row.keys[code - row.first] : '\0';
}

bool IsLatin(int key)
{
    if (key > kLastLetter) {
        return true;
    }
    switch (QChar::script(static_cast<char32_t>(key))) {
    case QChar::Script_Latin:
    case QChar::Script_Common:
    case QChar::Script_Inherited:
    case QChar::Script_Unknown:
        return true;
    default:
        return false;
    }
}

char LetterAt(quint32 code)
{
    char letter = 0;
    for (const Row& row : kLetters) {
        letter = letter != 0 ? letter : KeyIn(row, code);
    }
    return letter;
}

char KeyOf(int key)
{
    const bool known = (key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
                       key == Qt::Key_Plus || key == Qt::Key_Minus || key == Qt::Key_Asterisk || key == Qt::Key_Slash;
    return known ? static_cast<char>(key) : '\0';
}

} // namespace

bool CodesTellPlaces()
{
    const QString platform = QGuiApplication::platformName();
    return platform == "xcb" || platform.startsWith("wayland");
}

KeyPress KeyPressOfEvent(const QKeyEvent& event, bool codesTellPlaces)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    KeyPress press;
    press.numpad = modifiers.testFlag(Qt::KeypadModifier);
    press.shift = modifiers.testFlag(Qt::ShiftModifier);
    press.ctrl = modifiers.testFlag(Qt::ControlModifier);
    press.alt = modifiers.testFlag(Qt::AltModifier) || modifiers.testFlag(Qt::MetaModifier);
    press.repeated = event.isAutoRepeat();
    press.key = KeyOf(event.key());
    if (!codesTellPlaces) {
        return press;
    }
    const quint32 code = event.nativeScanCode();
    if (press.numpad) {
        // With Shift, or Num Lock off, it is Insert.
        press.key = code == kNumpad0 ? '0' : press.key;
    } else if (const char digit = KeyIn(kDigits, code)) {
        press.key = digit;
    } else if (!IsLatin(event.key())) {
        press.key = LetterAt(code);
        press.otherScript = press.key != 0;
    }
    return press;
}

} // namespace velmora::app
