#include "controls/internal/AccentCaret.h"

#include <QApplication>
#include <QFocusFrame>
#include <QLineEdit>
#include <QStyleHints>

namespace velmora::controls {
namespace {

/// From the left of what a field tells as its caret's place, for a caret without width.
constexpr int kCaretInside = 5;

} // namespace

AccentCaret::AccentCaret()
    : QObject(qApp)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*before*/, QWidget* now) { Watch(now); });
    connect(&m_blink, &QTimer::timeout, this, [this] {
        if (m_caret) {
            m_caret->setVisible(m_caret->isHidden());
        }
    });
}

void AccentCaret::Install()
{
    static QPointer<AccentCaret> theCaret;
    if (!theCaret) {
        theCaret = new AccentCaret;
    }
}

void AccentCaret::Watch(QWidget* focus)
{
    if (m_field) {
        m_field->disconnect(this);
    }
    delete m_caret.data();
    m_blink.stop();
    m_field = qobject_cast<QLineEdit*>(focus);
    if (!m_field || m_field->isReadOnly()) {
        return;
    }
    // Of a kind that assistive tools leave out.
    m_caret = new QFocusFrame(m_field);
    m_caret->setAutoFillBackground(true);
    m_caret->setBackgroundRole(QPalette::Highlight);
    connect(m_field, &QLineEdit::cursorPositionChanged, this, &AccentCaret::Restart);
    connect(m_field, &QLineEdit::textChanged, this, &AccentCaret::Restart);
    connect(m_field, &QLineEdit::selectionChanged, this, &AccentCaret::Restart);
    Restart();
}

void AccentCaret::Restart()
{
    Place();
    m_caret->show();
    if (const int time = QGuiApplication::styleHints()->cursorFlashTime(); time > 1) {
        m_blink.start(time / 2);
    }
}

void AccentCaret::Place()
{
    const QRect place = m_field->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    m_caret->setGeometry(place.left() + kCaretInside, place.top(), 1, place.height());
}

} // namespace velmora::controls
