#include "controls/LookStyle.h"

#include "controls/Accessibility.h"
#include "controls/Drawing.h"
#include "controls/FocusRing.h"
#include "controls/Theme.h"
#include "controls/internal/AccentCaret.h"
#include "controls/internal/DialogParts.h"
#include "controls/internal/LookParts.h"
#include "controls/internal/PopupShape.h"
#include "controls/internal/TextRendering.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>
#include <algorithm>

namespace velmora::controls {
namespace {

constexpr int kMenuRow = 22;
constexpr int kMenuBarPadding = 9;
constexpr int kFieldPadding = 7; ///< a field adds 2 of its own
constexpr int kCheckBox = 14;
constexpr int kScrollBar = 12;
constexpr int kDialogMargin = 20;
constexpr int kAboveButtons = 8;

} // namespace

LookStyle::LookStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{
}

void LookStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    switch (element) {
    case PE_PanelMenu:
        DrawMenuGround(option->rect, *painter);
        return;
    case PE_FrameMenu:
    case PE_FrameLineEdit:
    case PE_FrameFocusRect:
    case PE_PanelMenuBar:
        return;
    case PE_PanelTipLabel:
        FillRound(*painter, option->rect, theme::kRadius, theme::Hover);
        OutlineRound(*painter, option->rect, theme::kRadius, theme::Mark);
        return;
    case PE_PanelLineEdit:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame && frame->lineWidth > 0) {
            FillRound(*painter, option->rect, theme::kRadius, theme::Well);
        }
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        DrawCheckBox(*option, *painter, false);
        return;
    case PE_IndicatorRadioButton:
        DrawCheckBox(*option, *painter, true);
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void LookStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    switch (element) {
    case CE_MenuItem:
        if (const auto* row = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            DrawMenuRow(*row, *painter);
        }
        return;
    case CE_MenuEmptyArea:
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            DrawMenuBarItem(*item, *painter);
        }
        return;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, theme::Deck);
        return;
    case CE_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            DrawPushButton(*button, *painter);
        }
        return;
    case CE_HeaderSection:
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
            DrawHeaderGround(*header, *painter);
        }
        return;
    case CE_ProgressBar:
        if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
            DrawProgressBar(*bar, *painter);
        }
        return;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void LookStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                   const QWidget* widget) const
{
    if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option); control == CC_ScrollBar && bar) {
        DrawScrollBar(*bar, subControlRect(control, option, SC_ScrollBarSlider, widget), *painter);
        return;
    }
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option); control == CC_ComboBox && combo) {
        DrawDialogCombo(*combo, *painter);
        return;
    }
    if (const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
        control == CC_ToolButton && button) {
        DrawDialogToolButton(*button, *painter);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect LookStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const
{
    if (control == CC_ComboBox && part == SC_ComboBoxEditField) {
        return ComboText(option->rect);
    }
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) {
        return QProxyStyle::subControlRect(control, option, part, widget);
    }
    return ScrollBarPart(*bar, part);
}

int LookStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuHMargin:
        return 4;
    case PM_MenuVMargin:
        return 5;
    case PM_SubMenuOverlap:
    case PM_MenuBarPanelWidth:
    case PM_MenuBarItemSpacing:
    case PM_MenuBarVMargin:
        return 0;
    case PM_MenuBarHMargin:
        return 6;
    case PM_ToolTipLabelFrameWidth:
        return 5; // and 1 that a tool tip adds
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return kCheckBox;
    case PM_CheckBoxLabelSpacing:
        return 8;
    case PM_ScrollBarExtent:
        return kScrollBar;
    case PM_ScrollBarSliderMin:
        return kLeastScrollThumb;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return qobject_cast<const QDialog*>(widget) ? kDialogMargin : QProxyStyle::pixelMetric(metric, option, widget);
    case PM_TextCursorWidth: // AccentCaret stands there
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int LookStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const
{
    switch (hint) {
    case SH_Menu_MouseTracking:
    case SH_MenuBar_MouseTracking:
        return 1;
    case SH_EtchDisabledText:
    case SH_UnderlineShortcut:
    case SH_Menu_Scrollable:
        return hint == SH_Menu_Scrollable ? 1 : 0;
    case SH_ToolTipLabel_Opacity:
        return 255;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

QSize LookStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const
{
    switch (type) {
    case CT_MenuItem:
        if (const auto* row = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            // The list of a combo asks for rows of its own height.
            const QVariant height = widget ? widget->property("rowHeight") : QVariant();
            return MenuRowSize(*row, height.isValid() ? height.toInt() : kMenuRow);
        }
        break;
    case CT_MenuBarItem:
        return {size.width() + 2 * kMenuBarPadding, theme::kControlHeight};
    case CT_LineEdit:
        return {size.width() + 2 * kFieldPadding, theme::kControlHeight};
    case CT_ComboBox:
        return {size.width() + 32, theme::kControlHeight};
    case CT_PushButton:
        return {std::max(80, size.width() + 32), theme::kControlHeight};
    default:
        break;
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

QRect LookStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const
{
    if (element == SE_LineEditContents) {
        return option->rect.adjusted(kFieldPadding, 0, -kFieldPadding, 0);
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QIcon LookStyle::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const
{
    const QIcon icon = DialogIcon(which);
    return icon.isNull() ? QProxyStyle::standardIcon(which, option, widget) : icon;
}

void LookStyle::polish(QWidget* widget)
{
    if (qobject_cast<QMenu*>(widget)) {
        PopupShape::Attach(widget, theme::kMenuRadius, PopupShape::Shadow::Below);
    }
    if (widget->inherits("QTipLabel")) {
        PopupShape::Attach(widget, theme::kRadius, PopupShape::Shadow::None);
        widget->setContentsMargins(3, 0, 3, 0);
        widget->setFont(theme::Font(11));
    }
    if (const auto* box = qobject_cast<QDialogButtonBox*>(widget); box && box->orientation() == Qt::Horizontal) {
        widget->setContentsMargins(0, kAboveButtons, 0, 0);
    }
    QProxyStyle::polish(widget);
}

void InstallLook(QApplication& application)
{
    KeepFontWeights();
    QApplication::setStyle(new LookStyle);
    QApplication::setPalette(theme::Palette());
    application.setFont(theme::Font(12));
    for (const char* name : {"QMenu", "QMenuBar", "QLabel", "QCheckBox", "QRadioButton", "QPushButton", "QListView",
                             "QTreeView", "QHeaderView", "QComboBox"}) {
        QApplication::setFont(theme::Font(12), name);
    }
    QApplication::setFont(theme::Font(11), "QLineEdit");
    QToolTip::setFont(theme::Font(11));
    QToolTip::setPalette(theme::Palette());
    AccentCaret::Install();
    FocusRing::Install();
    InstallAccessibility();
}

} // namespace velmora::controls
