#include "controls/Drawing.h"

#include "controls/Theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace velmora::controls {
namespace {

/// Below the middle by which a line of capitals looks centred.
constexpr double kBaseline = 0.36;

class RestoredPainter {
public:
    explicit RestoredPainter(QPainter& painter)
        : m_painter(painter)
    {
        painter.save();
    }
    ~RestoredPainter() { m_painter.restore(); }
    RestoredPainter(const RestoredPainter&) = delete;
    RestoredPainter& operator=(const RestoredPainter&) = delete;

private:
    QPainter& m_painter;
};

double WidestDigit(const QFontMetricsF& metrics)
{
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    }
    return widest;
}

double CellWidth(QChar letter, const QFontMetricsF& metrics, double digitCell, double pointCell)
{
    if (letter.isDigit()) {
        return digitCell;
    }
    if (letter == QLatin1Char(':') || letter == QLatin1Char('.')) {
        return pointCell;
    }
    return metrics.horizontalAdvance(letter);
}

double CellsWidth(const QString& text, const QFontMetricsF& metrics, double digitCell, double pointCell)
{
    double width = 0;
    for (const QChar letter : text) {
        width += CellWidth(letter, metrics, digitCell, pointCell);
    }
    return width;
}

double LeftOf(const QRectF& rect, Qt::Alignment alignment, double width)
{
    if (alignment & Qt::AlignRight) {
        return rect.right() - width;
    }
    if (alignment & Qt::AlignHCenter) {
        return rect.center().x() - width / 2;
    }
    return rect.left();
}

double BaselineOf(const QPainter& painter, const QRectF& rect)
{
    return PixelGrid(painter).Y(rect.center().y() + kBaseline * painter.font().pixelSize());
}

} // namespace

double Snap(double v, double scale)
{
    return std::round(v * scale) / scale;
}

double Hairline(double scale)
{
    return std::max(1.0, std::floor(scale)) / scale;
}

PixelGrid::PixelGrid(const QPainter& painter)
{
    const QTransform device = painter.deviceTransform();
    m_scaleX = device.m11();
    m_scaleY = device.m22();
    m_offsetX = device.dx();
    m_offsetY = device.dy();
}

double PixelGrid::X(double x) const
{
    return (std::round(x * m_scaleX + m_offsetX) - m_offsetX) / m_scaleX;
}

double PixelGrid::Y(double y) const
{
    return (std::round(y * m_scaleY + m_offsetY) - m_offsetY) / m_scaleY;
}

QRectF PixelGrid::Rect(const QRectF& rect) const
{
    return {QPointF(X(rect.left()), Y(rect.top())), QPointF(X(rect.right()), Y(rect.bottom()))};
}

QRectF PixelGrid::HairlineAlong(const QRectF& rect) const
{
    const QRectF snapped = Rect(rect);
    return rect.width() >= rect.height() ? QRectF(snapped.left(), snapped.top(), snapped.width(), Hairline())
                                         : QRectF(snapped.left(), snapped.top(), Hairline(), snapped.height());
}

void FillSharp(QPainter& painter, const QRectF& rect, const QColor& colour)
{
    const RestoredPainter restored(painter);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(PixelGrid(painter).Rect(rect), colour);
}

void FillRound(QPainter& painter, const QRectF& rect, double radius, const QColor& colour)
{
    const RestoredPainter restored(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(PixelGrid(painter).Rect(rect), radius, radius);
}

void OutlineRound(QPainter& painter, const QRectF& rect, double radius, const QColor& colour, double width)
{
    const RestoredPainter restored(painter);
    const PixelGrid grid(painter);
    const double snapped = width > 1 ? Snap(width, grid.Scale()) : grid.Hairline();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, snapped));
    const double half = snapped / 2;
    painter.drawRoundedRect(grid.Rect(rect).adjusted(half, half, -half, -half), std::max(0.0, radius - half),
                            std::max(0.0, radius - half));
}

void DrawRaised(QPainter& painter, const QRectF& rect, const QColor& ground, bool lightLine)
{
    FillRound(painter, rect, theme::kRadius, ground);
    if (lightLine) {
        const PixelGrid grid(painter);
        const double inset = theme::kRadius - 1;
        FillSharp(painter, grid.HairlineAlong({rect.left() + inset, rect.top(), rect.width() - 2 * inset, 1}),
                  theme::Light);
    }
}

void DrawFocusRing(QPainter& painter, const QRectF& control, double radius)
{
    OutlineRound(painter, control.adjusted(-3, -3, 3, 3), radius + 3, theme::AccentHi, 2);
}

void DrawLine(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text)
{
    const double width = QFontMetricsF(painter.font()).horizontalAdvance(text);
    painter.drawText(QPointF(LeftOf(rect, alignment, width), BaselineOf(painter, rect)), text);
}

void DrawElided(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text,
                Qt::TextElideMode mode)
{
    DrawLine(painter, rect, alignment, QFontMetricsF(painter.font()).elidedText(text, mode, rect.width()));
}

void DrawDigits(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment alignment)
{
    const double cell = WidestDigit(QFontMetricsF(painter.font()));
    DrawDigits(painter, rect, text, alignment, cell, cell / 2);
}

void DrawDigits(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment alignment, double digitCell,
                double pointCell)
{
    const QFontMetricsF metrics(painter.font());
    const double baseline = BaselineOf(painter, rect);
    double x = LeftOf(rect, alignment, CellsWidth(text, metrics, digitCell, pointCell));
    for (const QChar letter : text) {
        const double cell = CellWidth(letter, metrics, digitCell, pointCell);
        painter.drawText(QPointF(x + (cell - metrics.horizontalAdvance(letter)) / 2, baseline), letter);
        x += cell;
    }
}

} // namespace velmora::controls
