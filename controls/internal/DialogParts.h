#pragma once

#include <QIcon>
#include <QRect>
#include <QStyle>

class QPainter;
class QStyleOptionComboBox;
class QStyleOptionHeader;
class QStyleOptionToolButton;

/// Combos, and what else the dialogs that Qt brings along consist of, as that for files.
namespace velmora::controls {

struct ComboState {
    bool enabled = true;
    bool hover = false;
    bool open = false;
};
/// The ground and the chevron of a combo of ours.
void DrawCombo(const QRectF& shape, const ComboState& state, QPainter& painter);
void DrawDialogCombo(const QStyleOptionComboBox& combo, QPainter& painter);
/// Where the text of a combo stands.
QRect ComboText(const QRect& combo);
void DrawHeaderGround(const QStyleOptionHeader& header, QPainter& painter);
/// Flat, with an icon.
void DrawDialogToolButton(const QStyleOptionToolButton& button, QPainter& painter);
/// Null where we have none of our own.
QIcon DialogIcon(QStyle::StandardPixmap which);

} // namespace velmora::controls
