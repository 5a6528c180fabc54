#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QPointF>
#include <QString>

class QPainter;

/// The product's icons, by the names of their files without the ending, drawn from vectors at the device's size.
namespace velmora::controls {

/// A square of `size` logical pixels in one colour; made once per name, colour, size and scale. An unknown name is a
/// fault of the caller and gives an empty pixmap. Interface thread only.
QPixmap IconPixmap(const QString& name, const QColor& colour, double size, double scale);

/// Draws the icon with its left top corner at `at`, moved to whole device pixels.
void DrawIcon(QPainter& painter, const QString& name, const QPointF& at, double size, const QColor& colour);

/// For widgets that take icons: normal and disabled looks at 100, 150 and 200 %.
QIcon MakeIcon(const QString& name, int size);

/// The program's own icon, at the sizes that desktops ask for.
QIcon ProgramIcon();

} // namespace velmora::controls
