#include "controls/internal/DialogParts.h"

#include "controls/Drawing.h"
#include "controls/Icons.h"
#include "controls/Theme.h"

#include <QPainter>
#include <QStyleOption>

namespace velmora::controls {
namespace {

constexpr int kTextLeft = 9;
constexpr int kChevron = 16;
constexpr int kChevronRight = 4;
constexpr int kIcon = 16;

} // namespace

void DrawCombo(const QRectF& shape, const ComboState& state, QPainter& painter)
{
    if (!state.enabled) {
        OutlineRound(painter, shape, theme::kRadius, theme::Line);
    } else {
        DrawRaised(painter, shape,
                   state.open    ? theme::Pressed
                   : state.hover ? theme::Hover
                                 : theme::Raised,
                   !state.open);
    }
    DrawIcon(painter, QStringLiteral("down"),
             {shape.right() - kChevronRight - kChevron, shape.top() + (shape.height() - kChevron) / 2}, kChevron,
             state.enabled ? theme::Text2 : theme::Text3);
}

void DrawDialogCombo(const QStyleOptionComboBox& combo, QPainter& painter)
{
    const auto has = [&combo](QStyle::StateFlag flag) -> bool { return combo.state & flag; };
    DrawCombo(QRectF(combo.rect), {has(QStyle::State_Enabled), has(QStyle::State_MouseOver), has(QStyle::State_On)},
              painter);
}

QRect ComboText(const QRect& combo)
{
    return combo.adjusted(kTextLeft, 0, -kChevron - kChevronRight - 2, 0);
}

void DrawHeaderGround(const QStyleOptionHeader& header, QPainter& painter)
{
    const QRectF rect(header.rect);
    FillSharp(painter, rect, theme::Headers);
    const PixelGrid grid(painter);
    FillSharp(painter, grid.HairlineAlong({rect.left(), rect.bottom() - 1, rect.width(), 1}), theme::Line);
}

void DrawDialogToolButton(const QStyleOptionToolButton& button, QPainter& painter)
{
    const QRectF shape(button.rect);
    const bool enabled = button.state & QStyle::State_Enabled;
    const bool pressed = enabled && button.state & (QStyle::State_Sunken | QStyle::State_On);
    if (pressed || (enabled && button.state & QStyle::State_MouseOver)) {
        FillRound(painter, shape, theme::kRadius, pressed ? theme::Pressed : theme::Hover);
    }
    button.icon.paint(&painter, button.rect, Qt::AlignCenter, enabled ? QIcon::Normal : QIcon::Disabled);
}

QIcon DialogIcon(QStyle::StandardPixmap which)
{
    switch (which) {
    case QStyle::SP_ArrowBack:
    case QStyle::SP_FileDialogBack:
        return MakeIcon(QStringLiteral("left"), kIcon);
    case QStyle::SP_ArrowForward:
        return MakeIcon(QStringLiteral("right"), kIcon);
    case QStyle::SP_FileDialogToParent:
        return MakeIcon(QStringLiteral("up"), kIcon);
    case QStyle::SP_FileDialogNewFolder:
        return MakeIcon(QStringLiteral("newfolder"), kIcon);
    case QStyle::SP_FileDialogListView:
        return MakeIcon(QStringLiteral("listview"), kIcon);
    case QStyle::SP_FileDialogDetailedView:
        return MakeIcon(QStringLiteral("detailview"), kIcon);
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirOpenIcon:
    case QStyle::SP_DirClosedIcon:
    case QStyle::SP_DirLinkIcon:
    case QStyle::SP_DirHomeIcon:
        return MakeIcon(QStringLiteral("open"), kIcon);
    case QStyle::SP_FileIcon:
    case QStyle::SP_FileLinkIcon:
        return MakeIcon(QStringLiteral("file"), kIcon);
    case QStyle::SP_ComputerIcon:
        return MakeIcon(QStringLiteral("computer"), kIcon);
    case QStyle::SP_DriveHDIcon:
    case QStyle::SP_DriveNetIcon:
        return MakeIcon(QStringLiteral("drive"), kIcon);
    default:
        return {};
    }
}

} // namespace velmora::controls
