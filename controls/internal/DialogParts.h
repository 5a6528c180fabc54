#pragma once

#include <QIcon>
#include <QRect>
#include <QStyle>

class QPainter;
class QStyleOptionComboBox;
class QStyleOptionHeader;
class QStyleOptionToolButton;

/// What the dialogs that Qt brings along consist of, as that for files.
namespace velmora::controls {

/// The ground and the chevron; the text is another part.
void DrawDialogCombo(const QStyleOptionComboBox& combo, QPainter& painter);
/// Where the text of such a combo stands.
QRect DialogComboText(const QRect& combo);
void DrawHeaderGround(const QStyleOptionHeader& header, QPainter& painter);
/// Flat, with an icon.
void DrawDialogToolButton(const QStyleOptionToolButton& button, QPainter& painter);
/// Null where we have none of our own.
QIcon DialogIcon(QStyle::StandardPixmap which);

} // namespace velmora::controls
