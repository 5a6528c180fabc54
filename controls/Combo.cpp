#include "controls/Combo.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"
#include "controls/internal/DialogParts.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

namespace velmora::controls {
namespace {

constexpr int kListRow = 24;

} // namespace

Combo::Combo(QWidget* parent)
    : QComboBox(parent)
{
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setFont(theme::Font(11));
    connect(this, &QComboBox::activated, this, [this](int index) { SetText(itemText(index)); });
}

void Combo::SetItems(const QStringList& items)
{
    clear();
    addItems(items);
    SetText(m_text);
}

void Combo::SetText(const QString& text)
{
    m_text = text;
    update();
    if (itemText(currentIndex()) == text) {
        return; // one of several alike
    }
    const int exact = findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    setCurrentIndex(exact >= 0 ? exact : findText(text, Qt::MatchFixedString));
}

void Combo::SetEmptyText(const QString& text)
{
    m_emptyText = text;
    setPlaceholderText(text);
    update();
}

void Combo::showPopup()
{
    if (count() == 0) {
        return;
    }
    QMenu menu(this);
    menu.setProperty("rowHeight", kListRow);
    menu.setMinimumWidth(width());
    for (int i = 0; i < count(); ++i) {
        QAction* action = menu.addAction(QString(itemText(i)).replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setData(i);
        action->setCheckable(true);
        action->setChecked(i == currentIndex());
        if (i == currentIndex()) {
            menu.setActiveAction(action);
        }
    }
    const QPointer<Combo> alive(this);
    m_popupOpen = true;
    update();
    const QAction* chosen = menu.exec(mapToGlobal(QPoint(0, height() + 2)));
    if (!alive) {
        return;
    }
    m_popupOpen = false;
    update();
    if (chosen) {
        const int index = chosen->data().toInt();
        setCurrentIndex(index);
        emit activated(index);
        if (alive && m_openedByMouse) {
            clearFocus();
        }
    }
}

void Combo::hidePopup() {}

QSize Combo::sizeHint() const
{
    return {140, theme::kControlHeight};
}

double Combo::FocusRadius() const
{
    return theme::kRadius;
}

void Combo::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    DrawCombo(QRectF(rect()), {isEnabled(), underMouse(), m_popupOpen}, painter);
    const bool empty = m_text.isEmpty();
    painter.setFont(font());
    painter.setPen(!isEnabled() ? theme::Text3 : empty ? theme::Text2 : theme::Text);
    DrawElided(painter, ComboText(rect()), Qt::AlignLeft, empty ? m_emptyText : m_text);
}

void Combo::focusInEvent(QFocusEvent* event)
{
    QComboBox::focusInEvent(event);
    if (!m_hasKeyboard) {
        m_hasKeyboard = true;
        emit KeyboardFocus(true);
    }
}

void Combo::focusOutEvent(QFocusEvent* event)
{
    QComboBox::focusOutEvent(event);
    // Its own list takes the focus for a while.
    if (m_hasKeyboard && event->reason() != Qt::PopupFocusReason) {
        m_hasKeyboard = false;
        emit KeyboardFocus(false);
    }
}

void Combo::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        showPopup();
        break;
    default:
        QComboBox::keyPressEvent(event);
    }
}

void Combo::mousePressEvent(QMouseEvent* event)
{
    const QPointer<Combo> alive(this);
    m_openedByMouse = true;
    QComboBox::mousePressEvent(event);
    if (alive) {
        m_openedByMouse = false;
    }
}

void Combo::wheelEvent(QWheelEvent* event)
{
    // Choosing has effects beyond this control, so none by chance.
    event->ignore();
}

} // namespace velmora::controls
