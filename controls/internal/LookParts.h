#pragma once

#include <QRect>
#include <QString>
#include <QStyle>
#include <utility>

class QPainter;
class QSize;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionMenuItem;
class QStyleOptionProgressBar;
class QStyleOptionSlider;

/// How Qt's own widgets are drawn in the look.
namespace velmora::controls {

void DrawMenuGround(const QRect& rect, QPainter& painter);
void DrawMenuRow(const QStyleOptionMenuItem& row, QPainter& painter);
/// `height` is that of a row, not of a separator.
QSize MenuRowSize(const QStyleOptionMenuItem& row, int height);
void DrawMenuBarItem(const QStyleOptionMenuItem& item, QPainter& painter);
void DrawPushButton(const QStyleOptionButton& button, QPainter& painter);
/// A check box, or a round one for one choice of several.
void DrawCheckBox(const QStyleOption& option, QPainter& painter, bool round);
void DrawProgressBar(const QStyleOptionProgressBar& bar, QPainter& painter);
inline constexpr int kLeastScrollThumb = 24;
QRect ScrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part);
/// The lane, and the thumb at `thumb` in it.
void DrawScrollBar(const QStyleOptionSlider& bar, const QRect& thumb, QPainter& painter);

} // namespace velmora::controls
