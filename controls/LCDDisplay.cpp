#include "controls/LCDDisplay.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"

#include <QPainter>
#include <QStyle>
#include <cmath>
#include <numbers>

namespace velmora::controls {
namespace {

constexpr double kDigitCell = 11;
constexpr double kPointCell = 6;
constexpr double kRightMargin = 8;
constexpr double kMarkMiddle = 16;
constexpr int kPulseMS = 1200;
constexpr int kPulseStepMS = 60;
constexpr double kPulseLow = 0.55;
constexpr QRect kMarkPlace(10, 4, 13, 13);

} // namespace

LCDDisplay::LCDDisplay(QWidget* parent)
    : QLabel(QStringLiteral("00:00"), parent)
{
    setFont(theme::Font(16, QFont::DemiBold));
    setAccessibleDescription(tr("Time"));
    m_pulseTimer.setInterval(kPulseStepMS);
    connect(&m_pulseTimer, &QTimer::timeout, this, [this] { update(kMarkPlace); });
}

void LCDDisplay::SetTime(const QString& time)
{
    if (time != text()) {
        setText(time);
    }
}

void LCDDisplay::SetState(State state)
{
    if (state == m_state) {
        return;
    }
    m_state = state;
    const bool moves = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
    if (state == State::Recording && moves) {
        m_recordingSince.start();
        m_pulseTimer.start();
    } else {
        m_pulseTimer.stop();
    }
    update();
}

void LCDDisplay::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    FillRound(painter, rect(), theme::kRadius, theme::Well);
    DrawMark(painter);
    painter.setFont(font());
    painter.setPen(m_state == State::Recording ? theme::RecHi
                   : m_state == State::Playing ? theme::Accent
                                               : theme::Text);
    DrawDigits(painter, QRectF(rect()).adjusted(0, 0, -kRightMargin, 0), text(), Qt::AlignRight, kDigitCell,
               kPointCell);
}

void LCDDisplay::DrawMark(QPainter& painter) const
{
    const QPointF middle(kMarkMiddle, height() / 2.0);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    switch (m_state) {
    case State::Stopped:
        FillRound(painter, {middle.x() - 4, middle.y() - 4, 8, 8}, 1, theme::Text2);
        break;
    case State::Playing:
        painter.setBrush(theme::Accent);
        painter.drawPolygon(
            QPolygonF({middle + QPointF(-3.5, -4.5), middle + QPointF(4, 0), middle + QPointF(-3.5, 4.5)}));
        break;
    case State::Recording: {
        QColor colour = theme::Rec;
        colour.setAlphaF(static_cast<float>(Pulse()));
        painter.setBrush(colour);
        painter.drawEllipse(middle, 4.5, 4.5);
        break;
    }
    }
}

double LCDDisplay::Pulse() const
{
    if (!m_pulseTimer.isActive()) {
        return 1;
    }
    const double turn = static_cast<double>(m_recordingSince.elapsed() % kPulseMS) / kPulseMS;
    const double high = (1 + std::cos(2 * std::numbers::pi * turn)) / 2;
    return kPulseLow + (1 - kPulseLow) * high;
}

} // namespace velmora::controls
