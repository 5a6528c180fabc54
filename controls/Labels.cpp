#include "controls/Labels.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace velmora::controls {
namespace {

constexpr double kFieldPadding = 9;

} // namespace

ValueLabel::ValueLabel(const QFont& font, Qt::Alignment alignment, QWidget* parent)
    : QLabel(parent)
{
    setFont(font);
    setAlignment(alignment);
}

void ValueLabel::SetText(const QString& text)
{
    if (text != this->text()) {
        setText(text);
    }
}

void ValueLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(isEnabled() ? theme::Text : theme::Text3);
    DrawDigits(painter, rect(), text(), alignment());
}

CaptionLabel::CaptionLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    setFont(theme::Font(11));
}

void CaptionLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(theme::Text2);
    DrawLine(painter, rect(), Qt::AlignLeft, text());
}

TitleLabel::TitleLabel(QWidget* parent)
    : QLabel(parent)
{
    setFont(theme::Font(15, QFont::DemiBold));
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setTextFormat(Qt::PlainText);
}

QString TitleLabel::Shown() const
{
    return QFontMetricsF(font()).elidedText(text(), Qt::ElideRight, width());
}

QRectF TitleLabel::FocusShape() const
{
    return rect();
}

double TitleLabel::FocusRadius() const
{
    return theme::kRadius;
}

void TitleLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(theme::Text);
    const QString shown = Shown();
    DrawLine(painter, rect(), Qt::AlignLeft, shown);
    if (underMouse()) {
        const double line = PixelGrid(painter).Hairline();
        painter.setPen(QPen(theme::Text2, line, Qt::DotLine));
        const double y = PixelGrid(painter).Y(height() - 3.0) + line / 2;
        painter.drawLine(QPointF(0, y), QPointF(QFontMetricsF(font()).horizontalAdvance(shown), y));
    }
}

void TitleLabel::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        emit RenameWanted();
    }
}

void TitleLabel::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        emit RenameWanted();
        break;
    default:
        QLabel::keyPressEvent(event);
    }
}

ReadOnlyField::ReadOnlyField(QWidget* parent)
    : QLineEdit(parent)
{
    setReadOnly(true);
    setAcceptDrops(false);
    setFont(theme::Font(11));
    SetText({});
}

void ReadOnlyField::SetText(const QString& text)
{
    const QString shown = text.isEmpty() ? tr("(none)") : text;
    if (shown == this->text()) {
        return;
    }
    QPalette colours = palette();
    colours.setColor(QPalette::Text, text.isEmpty() ? theme::Text2 : theme::Text);
    setPalette(colours);
    setText(shown);
    setCursorPosition(0);
}

void ReadOnlyField::paintEvent(QPaintEvent* event)
{
    if (hasSelectedText()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    FillRound(painter, rect(), theme::kRadius, theme::Well);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::Text));
    DrawElided(painter, QRectF(rect()).adjusted(kFieldPadding, 0, -kFieldPadding, 0), Qt::AlignLeft, text());
}

void ReadOnlyField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        emit KeyboardFocus(true);
    }
}

void ReadOnlyField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        emit KeyboardFocus(false);
    }
}

} // namespace velmora::controls
