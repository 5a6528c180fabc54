#include "controls/Drawing.h"
#include "controls/Theme.h"
#include "controls/imgScroll.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace velmora::controls {
namespace {

constexpr QSizeF kKnob(12, 16);
constexpr QSizeF kCap(28, 14);
constexpr double kGroove = 4;
constexpr double kFaderGroove = 6;
constexpr double kFaderGrooveLeft = 11;
constexpr double kFillBorder = 3;

QColor Faint(QColor colour, float alpha)
{
    colour.setAlphaF(alpha);
    return colour;
}

/// A knob or cap with the rim that parts it from its groove, and the line in its middle.
void DrawHandle(QPainter& painter, const QRectF& rect, const QColor& colour, const QSizeF& line, float lineAlpha)
{
    FillRound(painter, rect.adjusted(-1, -1, 1, 1), theme::kRadius + 1, theme::Deck);
    FillRound(painter, rect, theme::kRadius, colour);
    // Not on whole pixels, which would put it beside the middle of an even number of them.
    QRectF grip(QPointF(), line);
    grip.moveCenter(PixelGrid(painter).Rect(rect).center());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(grip, Faint(theme::Ground, lineAlpha));
}

} // namespace

imgHScroll::imgHScroll(QWidget* parent)
    : imgScroll(parent)
{
}

void imgHScroll::SetCentred(bool centred)
{
    m_centred = centred;
    update();
}

SliderTrack imgHScroll::Track() const
{
    return {0, static_cast<double>(width()), kKnob.width()};
}

QRectF imgHScroll::FocusShape() const
{
    return {QPointF(Track().KnobLeft(Range()), (height() - kKnob.height()) / 2), kKnob};
}

double imgHScroll::ValueAt(const QPointF& at) const
{
    return Track().ValueAt(at.x(), Range());
}

void imgHScroll::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const double middle = height() / 2.0;
    const QRectF knob = FocusShape();
    const QRectF groove(0, middle - kGroove / 2, width(), kGroove);
    FillRound(painter, groove, kGroove / 2, theme::Well);
    const double origin = m_centred ? width() / 2.0 : 0;
    if (m_centred) {
        FillSharp(painter, {origin - 0.5, middle + 5, 1, 4}, theme::Mark);
    }
    if (isEnabled()) {
        const auto [from, to] = std::minmax({origin, knob.center().x()});
        FillRound(painter, {from, groove.top(), to - from, kGroove}, kGroove / 2, theme::Accent);
    }
    DrawHandle(painter, knob, HandleColour(), {1, 8}, 0.55F);
}

imgVScroll::imgVScroll(QWidget* parent)
    : imgScroll(parent)
{
}

double imgVScroll::CapMiddle() const
{
    const double inset = kCap.height() / 2;
    return inset + (height() - 2 * inset) * (1 - Range().Part());
}

QRectF imgVScroll::FocusShape() const
{
    return {QPointF(0, CapMiddle() - kCap.height() / 2), kCap};
}

double imgVScroll::ValueAt(const QPointF& at) const
{
    const double inset = kCap.height() / 2;
    const double travel = height() - 2 * inset;
    return travel > 0 ? Range().At(1 - (at.y() - inset) / travel) : MinValue();
}

void imgVScroll::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF groove(kFaderGrooveLeft, 0, kFaderGroove, height());
    FillRound(painter, groove, kFaderGroove / 2, theme::Well);
    if (isEnabled()) {
        FillRound(painter, groove.adjusted(0, CapMiddle(), 0, 0), kFaderGroove / 2, theme::Accent);
    }
    const PixelGrid grid(painter);
    const double middle = grid.Y(height() / 2.0);
    const double step = (height() - kCap.height()) / 4;
    for (int tick = -2; tick <= 2; ++tick) {
        const double length = tick % 2 == 0 ? 6 : 4;
        // Above and below the middle alike.
        const double apart = std::floor(step * std::abs(tick) * grid.Scale()) / grid.Scale();
        const double y = tick < 0 ? middle - apart : middle + apart;
        FillSharp(painter, grid.HairlineAlong({groove.left() - 3 - length, y, length, 1}), theme::Mark);
        FillSharp(painter, grid.HairlineAlong({groove.right() + 3, y, length, 1}), theme::Mark);
    }
    DrawHandle(painter, FocusShape(), HandleColour(), {20, 1}, 0.6F);
}

imgHFill::imgHFill(QWidget* parent)
    : imgScroll(parent)
{
}

double imgHFill::ValueAt(const QPointF& at) const
{
    return SliderTrack{0, static_cast<double>(width()), 0}.ValueAt(at.x(), Range());
}

void imgHFill::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF field = rect();
    FillRound(painter, field, theme::kRadius, theme::Well);
    const double end = SliderTrack{0, field.width(), 0}.KnobLeft(Range());
    FillRound(painter, {0, 0, end, field.height()}, theme::kRadius, isEnabled() ? theme::AccentLo : theme::Raised);
    if (isEnabled() && end >= kFillBorder) {
        FillRound(painter, {end - kFillBorder, 0, kFillBorder, field.height()}, kFillBorder / 2,
                  underMouse() || Dragged() ? theme::AccentHi : theme::Accent);
    }
}

} // namespace velmora::controls
