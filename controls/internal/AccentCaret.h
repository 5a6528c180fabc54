#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QLineEdit;

namespace velmora::controls {

/// The caret of text fields, in the accent's colour, which Qt would draw as the text: a narrow widget over the field
/// that has the keyboard. Qt's own has no width (see `LookStyle`). One per application, which owns it.
class AccentCaret : public QObject {
public:
    /// Watches the application from now on; a second call does nothing.
    static void Install();

private:
    AccentCaret();
    void Watch(QWidget* focus);
    void Place();
    /// At its place, and lit for the next while.
    void Restart();

    QPointer<QLineEdit> m_field;
    QPointer<QWidget> m_caret;
    QTimer m_blink;
};

} // namespace velmora::controls
