#include "controls/imgScroll.h"

#include "controls/Accessibility.h"
#include "controls/Theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace velmora::controls {
namespace {

constexpr double kPage = 10;
/// Steps for a notch of the wheel.
constexpr double kNotch = 3;

} // namespace

imgScroll::imgScroll(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void imgScroll::SetRange(double minValue, double maxValue)
{
    m_range.MinValue = minValue;
    m_range.MaxValue = maxValue;
    SetValue(m_range.Value);
    update();
}

void imgScroll::SetValue(double value)
{
    const double limited = m_range.Limited(value);
    if (limited != m_range.Value) {
        m_range.Value = limited;
        update();
        FocusRing::ShapeChanged(this);
        TellValueChanged(*this, limited);
    }
}

QString imgScroll::ValueText() const
{
    return m_valueText ? m_valueText(Value()) : QString::number(Value());
}

void imgScroll::ChooseValue(double value)
{
    const double before = Value();
    SetValue(value);
    if (Value() != before) {
        emit Change(Value());
    }
}

double imgScroll::FocusRadius() const
{
    return theme::kRadius;
}

QColor imgScroll::HandleColour() const
{
    return !isEnabled() ? theme::Text3 : m_dragged ? theme::AccentHi : underMouse() ? theme::HandleHi : theme::Handle;
}

void imgScroll::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_dragged = true;
    update();
    ChooseValue(ValueAt(event->position()));
}

void imgScroll::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton)) {
        m_dragged = false; // the release went elsewhere
    } else if (m_dragged) {
        ChooseValue(ValueAt(event->position()));
    }
}

void imgScroll::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_dragged = false;
        update();
    }
}

void imgScroll::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
    } else if (m_default) {
        ChooseValue(*m_default);
    } else {
        mousePressEvent(event);
    }
}

void imgScroll::wheelEvent(QWheelEvent* event)
{
    const QPoint turn = event->angleDelta();
    const int notches = m_wheel.Add(turn.y() != 0 ? turn.y() : turn.x());
    if (notches != 0) {
        StepBy(kNotch * notches);
    }
    event->accept();
}

void imgScroll::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right:
        StepBy(1);
        break;
    case Qt::Key_Down:
    case Qt::Key_Left:
        StepBy(-1);
        break;
    case Qt::Key_PageUp:
        StepBy(kPage);
        break;
    case Qt::Key_PageDown:
        StepBy(-kPage);
        break;
    case Qt::Key_Home:
        ChooseValue(MinValue());
        break;
    case Qt::Key_End:
        ChooseValue(MaxValue());
        break;
    default:
        event->ignore();
    }
}

} // namespace velmora::controls
