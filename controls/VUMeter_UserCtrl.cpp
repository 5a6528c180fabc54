#include "controls/VUMeter_UserCtrl.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"
#include "core/Units.h"

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>

namespace velmora::controls {
namespace {

constexpr int kBarTop = 2;

int Part(int from, int to, std::int32_t i, std::int32_t count)
{
    return std::clamp(core::RoundToInt(from + i * (static_cast<double>(to - from) / count)), 0, 255);
}

} // namespace

VUMeter_UserCtrl::VUMeter_UserCtrl(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_look.EmptyBarColor = theme::MeterOff;
    m_look.BackColor = theme::Deck;
    m_look.Color1 = theme::Meter1;
    m_look.Color2 = theme::Meter2;
    m_look.BorderColor = theme::Line;
}

void VUMeter_UserCtrl::SetValue(std::int32_t value)
{
    const std::int32_t limited = std::clamp(value, 0, m_maxValue);
    if (limited == m_value) {
        return;
    }
    const auto [from, to] = std::minmax({LitBars(m_value), LitBars(limited)});
    m_value = limited;
    if (from < to) {
        update(StepRect(from + 1).united(StepRect(to)));
    }
}

void VUMeter_UserCtrl::SetMaxValue(std::int32_t value)
{
    m_maxValue = std::max(value, 1);
    m_value = std::min(m_value, m_maxValue);
    update();
}

void VUMeter_UserCtrl::SetLook(const Look& look)
{
    m_look = look;
    m_look.BarWidth = std::max(look.BarWidth, 1);
    update();
}

std::int32_t VUMeter_UserCtrl::LitBars(std::int32_t value) const
{
    return core::RoundToInt(static_cast<double>(value) / m_maxValue * BarCount());
}

QRect VUMeter_UserCtrl::StepRect(std::int32_t i) const
{
    return {i * m_look.BarWidth, kBarTop, m_look.BarWidth, height() - 2 * kBarTop};
}

std::int32_t VUMeter_UserCtrl::BarCount() const
{
    return core::RoundToInt(static_cast<double>(width()) / m_look.BarWidth);
}

QColor VUMeter_UserCtrl::BarColour(std::int32_t i) const
{
    const QColor& a = m_look.Color1;
    const QColor& b = m_look.Color2;
    const std::int32_t count = std::max(BarCount(), 1);
    return {Part(a.red(), b.red(), i, count), Part(a.green(), b.green(), i, count), Part(a.blue(), b.blue(), i, count)};
}

void VUMeter_UserCtrl::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRect dirty = event->rect();
    painter.fillRect(dirty, m_look.BackColor);
    const PixelGrid grid(painter);
    const double gap = (m_look.BarWidth - m_look.BarShapeWidth) * grid.Hairline();
    const std::int32_t lit = LitBars();
    const std::int32_t last = m_look.ShowEmptyBars ? BarCount() : lit;
    for (std::int32_t i = std::max(dirty.left() / m_look.BarWidth, 1); i <= last; ++i) {
        const QRectF bar = StepRect(i);
        if (bar.left() > dirty.right()) {
            break;
        }
        // Gaps are alike at every scale, and the bars take what is left.
        FillSharp(painter, {bar.left(), bar.top(), grid.X(bar.right()) - gap - bar.left(), bar.height()},
                  i <= lit ? BarColour(i) : m_look.EmptyBarColor);
    }
    if (m_look.BorderVisible) {
        OutlineRound(painter, rect(), 0, m_look.BorderColor);
    }
}

} // namespace velmora::controls
