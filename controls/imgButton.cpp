#include "controls/imgButton.h"

#include "controls/Drawing.h"
#include "controls/Icons.h"
#include "controls/Theme.h"
#include "controls/internal/ButtonPaint.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <cmath>

namespace velmora::controls {
namespace {

constexpr double kIcon = 16;
constexpr double kToolIcon = 20;
constexpr double kIconGap = 6;
constexpr double kDisc = 6;
constexpr double kDiscRim = 1.5;

bool IsTool(ButtonLook look)
{
    return look == ButtonLook::Tool || look == ButtonLook::Record;
}

} // namespace

imgButton::imgButton(ButtonLook look, QWidget* parent)
    : QPushButton(parent)
    , m_look(look)
{
    setAutoDefault(false);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setCheckable(look == ButtonLook::Number);
    // Assistive tools switch a button without a click.
    connect(this, &QAbstractButton::toggled, this, [this](bool on) {
        if (m_changing) {
            return;
        }
        if (m_mode == ButtonMode_Click) {
            SetValue(!on); // its owner lights it
        }
        emit clicked(isChecked());
    });
}

void imgButton::SetValue(bool value)
{
    const QScopedValueRollback changing(m_changing, true);
    setChecked(value);
}

void imgButton::SetMode(ButtonMode mode)
{
    m_mode = mode;
    setCheckable(mode == ButtonMode_Switch || m_look == ButtonLook::Number);
}

void imgButton::SetCaption(const QString& caption)
{
    setText(caption);
    update();
}

void imgButton::SetIcon(const QString& name)
{
    if (name != m_iconName) {
        m_iconName = name;
        update();
    }
}

void imgButton::SetToolTip(const QString& text, const QString& key)
{
    setToolTip(key.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, key));
    if (this->text().isEmpty()) {
        setAccessibleName(text);
    }
}

void imgButton::SetRecordingDot(bool shown)
{
    if (shown != m_recordingDot) {
        m_recordingDot = shown;
        setAccessibleDescription(shown ? tr("Recording") : QString());
        update();
    }
}

QRectF imgButton::FocusShape() const
{
    // The ring of a flat button stays clear of its neighbours.
    const int inside = IsTool(m_look) ? 3 : m_look == ButtonLook::Step ? 2 : 0;
    return QRectF(rect()).adjusted(inside, inside, -inside, -inside);
}

double imgButton::FocusRadius() const
{
    return theme::kRadius;
}

QSize imgButton::sizeHint() const
{
    switch (m_look) {
    case ButtonLook::Number:
        return {26, 24};
    case ButtonLook::Step:
        return {theme::kSmallHeight, theme::kSmallHeight};
    case ButtonLook::Tool:
    case ButtonLook::Record:
        return {28, theme::kControlHeight};
    case ButtonLook::Raised:
    case ButtonLook::Mute:
        break;
    }
    const double icon = m_iconName.isEmpty() ? 0 : kIcon;
    const double caption = QFontMetricsF(CaptionFont()).horizontalAdvance(text());
    return {static_cast<int>(std::ceil(icon + caption + (icon > 0 && caption > 0 ? kIconGap : 0) + 24)),
            theme::kControlHeight};
}

QFont imgButton::CaptionFont() const
{
    return m_look == ButtonLook::Number ? theme::Font(12, QFont::DemiBold) : theme::Font(11, QFont::Medium);
}

void imgButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF shape = rect();
    const ButtonPaint paint = PaintOf(m_look, {isChecked(), isEnabled(), underMouse(), isDown()});
    if (paint.ground.isValid()) {
        DrawRaised(painter, shape, paint.ground, paint.lightLine);
    }
    if (paint.outline.isValid()) {
        OutlineRound(painter, shape, theme::kRadius, paint.outline);
    }
    DrawContent(painter, shape.translated(0, paint.sink), paint.ink);
    if (m_recordingDot) {
        const QPointF middle(shape.right() - 4, shape.top() + 4);
        for (const auto& [radius, colour] :
             {std::pair(kDisc / 2 + kDiscRim, theme::Deck), std::pair(kDisc / 2, theme::Rec)}) {
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(Qt::NoPen);
            painter.setBrush(colour);
            painter.drawEllipse(middle, radius, radius);
        }
    }
}

void imgButton::DrawContent(QPainter& painter, const QRectF& rect, const QColor& ink) const
{
    painter.setFont(CaptionFont());
    painter.setPen(ink);
    const double iconSize = IsTool(m_look) ? kToolIcon : kIcon;
    const double iconTop = rect.center().y() - iconSize / 2;
    if (m_iconName.isEmpty()) {
        DrawElided(painter, rect.adjusted(4, 0, -4, 0), Qt::AlignHCenter, text());
        return;
    }
    if (text().isEmpty() || m_look == ButtonLook::Number) {
        DrawIcon(painter, m_iconName, {rect.center().x() - iconSize / 2, iconTop}, iconSize, ink);
        return;
    }
    const double room = rect.width() - iconSize - kIconGap - 8;
    const QFontMetricsF metrics(painter.font());
    const QString caption = metrics.elidedText(text(), Qt::ElideRight, room);
    const double captionWidth = metrics.horizontalAdvance(caption);
    const double left = rect.center().x() - (iconSize + kIconGap + captionWidth) / 2;
    DrawIcon(painter, m_iconName, {left, iconTop}, iconSize, ink);
    DrawLine(painter, {left + iconSize + kIconGap, rect.top(), captionWidth, rect.height()}, Qt::AlignLeft, caption);
}

void imgButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) {
            click();
        }
        return;
    }
    QPushButton::keyPressEvent(event);
}

void imgButton::nextCheckState()
{
    if (m_mode == ButtonMode_Switch) {
        const QScopedValueRollback changing(m_changing, true);
        QPushButton::nextCheckState();
    }
}

} // namespace velmora::controls
