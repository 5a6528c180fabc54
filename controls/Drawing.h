#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <cstdint>

class QPainter;

/// How everything in the look is drawn: sharp at each scale, texts centred by the height of their capitals.
namespace velmora::controls {

/// `v` moved to a whole device pixel.
double Snap(double v, double scale);
/// Width of a hairline in logical pixels: 1, 1 and 2 device pixels at 100, 150 and 200 %.
double Hairline(double scale);

/// Moves logical positions to whole device pixels of what is painted on, wherever the widget stands in its window.
/// It holds for the painter's transformation at construction, which must not turn or shear.
class PixelGrid {
public:
    explicit PixelGrid(const QPainter& painter);

    double X(double x) const;
    double Y(double y) const;
    double Scale() const { return m_scaleX; }
    double Hairline() const { return controls::Hairline(m_scaleX); }
    /// Both edges are moved, so that gaps between neighbours stay even.
    QRectF Rect(const QRectF& rect) const;
    /// A hairline from the left top of `rect`, across or down, as `rect` is wide or high.
    QRectF HairlineAlong(const QRectF& rect) const;

private:
    double m_scaleX;
    double m_scaleY;
    double m_offsetX;
    double m_offsetY;
};

/// Fills without antialiasing, snapped: hairlines, ticks, edges, bars.
void FillSharp(QPainter& painter, const QRectF& rect, const QColor& colour);
/// Fills with round corners, edges snapped.
void FillRound(QPainter& painter, const QRectF& rect, double radius, const QColor& colour);
/// A line just inside `rect`: a hairline, or of more than 1 logical pixel.
void OutlineRound(QPainter& painter, const QRectF& rect, double radius, const QColor& colour, double width = 1);
/// Ground of a raised control: its fill and the light line on its upper edge.
void DrawRaised(QPainter& painter, const QRectF& rect, const QColor& ground, bool lightLine = true);
/// The ring round a control that got focus by a key; `radius` is the control's.
void DrawFocusRing(QPainter& painter, const QRectF& control, double radius);

/// One line of text in the present font and pen; `alignment` is across, the baseline stands at the middle
/// + 0.36 x size.
void DrawLine(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text);
/// As `DrawLine`, cut to the width of `rect` with an ellipsis.
void DrawElided(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text,
                Qt::TextElideMode mode = Qt::ElideRight);

/// Draws a value that changes in place, at the right of `rect` as values are, with each digit in a cell as wide as the
/// widest of 0 to 9; ":" and "." take half a cell.
void DrawDigits(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment alignment = Qt::AlignRight);
/// With cells of given widths, as in the time display.
void DrawDigits(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment alignment, double digitCell,
                double pointCell);

} // namespace velmora::controls
