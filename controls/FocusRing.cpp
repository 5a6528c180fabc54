#include "controls/FocusRing.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <QStyleOptionButton>

namespace velmora::controls {
namespace {

/// From the control's edge to the ring's outer edge.
constexpr int kReach = 3;
constexpr int kMargin = kReach + 1;
FocusRing* theRing = nullptr;

bool ByKey(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
}

bool HasRing(const QWidget* widget)
{
    return dynamic_cast<const FocusShaped*>(widget) || qobject_cast<const QAbstractButton*>(widget) ||
           qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget);
}

bool IsBox(const QWidget& widget)
{
    return qobject_cast<const QCheckBox*>(&widget) || qobject_cast<const QRadioButton*>(&widget);
}

QRectF ShapeOf(const QWidget& widget)
{
    if (const auto* shaped = dynamic_cast<const FocusShaped*>(&widget)) {
        return shaped->FocusShape();
    }
    if (IsBox(widget)) {
        QStyleOptionButton option;
        option.initFrom(&widget);
        return widget.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &widget);
    }
    return widget.rect();
}

double RadiusOf(const QWidget& widget)
{
    const auto* shaped = dynamic_cast<const FocusShaped*>(&widget);
    return shaped ? shaped->FocusRadius() : IsBox(widget) ? theme::kSmallRadius : theme::kRadius;
}

} // namespace

/// Of a kind that assistive tools leave out.
class FocusRing::Frame : public QFocusFrame {
public:
    Frame(QWidget* window, const QWidget& target)
        : QFocusFrame(window)
        , m_target(target)
    {
        setAttribute(Qt::WA_NoSystemBackground);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        const QPointF origin = m_target.mapTo(window(), QPoint()) - pos();
        DrawFocusRing(painter, ShapeOf(m_target).translated(origin), RadiusOf(m_target));
    }

private:
    const QWidget& m_target;
};

FocusRing::FocusRing()
    : QObject(qApp)
{
    qApp->installEventFilter(this);
}

void FocusRing::Install()
{
    if (!theRing) {
        theRing = new FocusRing;
        connect(theRing, &QObject::destroyed, [] { theRing = nullptr; });
    }
}

void FocusRing::ShapeChanged(const QWidget* widget)
{
    if (theRing && theRing->m_target == widget) {
        theRing->Place();
    }
}

bool FocusRing::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
        if (auto* widget = qobject_cast<QWidget*>(object)) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (ByKey(reason) && HasRing(widget)) {
                Show(widget);
            } else if (widget != m_target) {
                Hide();
            }
        }
        break;
    case QEvent::FocusOut:
        // A menu or another window takes the focus for a while and gives it back.
        if (object == m_target) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
                Hide();
            }
        }
        break;
    case QEvent::MouseButtonPress:
        if (object->isWidgetType()) {
            Hide();
        }
        break;
    case QEvent::Hide:
        if (object == m_target) {
            Hide();
        }
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (const auto* widget = qobject_cast<QWidget*>(object);
            widget && m_target && (widget == m_target || widget->isAncestorOf(m_target))) {
            Place();
        }
        break;
    default:
        break;
    }
    return false;
}

void FocusRing::Show(QWidget* target)
{
    Hide();
    m_target = target;
    m_frame = new Frame(target->window(), *target);
    connect(target, &QObject::destroyed, m_frame, &QWidget::hide);
    Place();
    m_frame->show();
}

void FocusRing::Hide()
{
    if (m_frame) {
        // Not at once: its window may be walking its children to hide them.
        m_frame->hide();
        m_frame->deleteLater();
        m_frame.clear();
    }
    m_target.clear();
}

void FocusRing::Place()
{
    if (!m_target || !m_frame) {
        return;
    }
    const QWidget* window = m_target->window();
    const QRectF shape = ShapeOf(*m_target).translated(m_target->mapTo(window, QPoint()));
    m_frame->setGeometry(shape.adjusted(-kMargin, -kMargin, kMargin, kMargin).toAlignedRect());
    m_frame->raise();
    m_frame->update();
}

} // namespace velmora::controls
