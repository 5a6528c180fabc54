#include "controls/LookStyle.h"

#include "controls/Accessibility.h"
#include "controls/Drawing.h"
#include "controls/FocusRing.h"
#include "controls/Theme.h"
#include "controls/internal/LookParts.h"
#include "controls/internal/TextRendering.h"

#include <QApplication>
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
constexpr int kLeastThumb = 24;

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
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && bar) {
        DrawScrollBar(*bar, subControlRect(control, option, SC_ScrollBarSlider, widget), *painter);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect LookStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) {
        return QProxyStyle::subControlRect(control, option, part, widget);
    }
    // All of the bar is lane; there are no arrows.
    const bool across = bar->orientation == Qt::Horizontal;
    const QRect lane = bar->rect.adjusted(across ? 2 : 0, across ? 0 : 2, across ? -2 : 0, across ? 0 : -2);
    const int length = across ? lane.width() : lane.height();
    const double range = static_cast<double>(bar->maximum) - bar->minimum + bar->pageStep;
    const int thumb = std::clamp(static_cast<int>(length * bar->pageStep / std::max(range, 1.0)),
                                 std::min(kLeastThumb, length), length);
    const int at =
        sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb, bar->upsideDown);
    const QRect slider = across ? QRect(lane.left() + at, lane.top(), thumb, lane.height())
                                : QRect(lane.left(), lane.top() + at, lane.width(), thumb);
    switch (part) {
    case SC_ScrollBarGroove:
        return lane;
    case SC_ScrollBarSlider:
        return slider;
    case SC_ScrollBarSubPage:
        return across ? QRect(lane.topLeft(), QPoint(slider.left() - 1, lane.bottom()))
                      : QRect(lane.topLeft(), QPoint(lane.right(), slider.top() - 1));
    case SC_ScrollBarAddPage:
        return across ? QRect(QPoint(slider.right() + 1, lane.top()), lane.bottomRight())
                      : QRect(QPoint(lane.left(), slider.bottom() + 1), lane.bottomRight());
    default:
        return {};
    }
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
        return kLeastThumb;
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

void LookStyle::polish(QWidget* widget)
{
    if (qobject_cast<QMenu*>(widget) || widget->inherits("QTipLabel")) {
        // Round corners.
        widget->setAttribute(Qt::WA_TranslucentBackground);
        widget->setWindowFlag(Qt::NoDropShadowWindowHint);
    }
    if (widget->inherits("QTipLabel")) {
        widget->setContentsMargins(4, 0, 4, 0);
        widget->setFont(theme::Font(11));
    }
    QProxyStyle::polish(widget);
}

void InstallLook(QApplication& application)
{
    KeepFontWeights();
    QApplication::setStyle(new LookStyle);
    QApplication::setPalette(theme::Palette());
    application.setFont(theme::Font(12));
    for (const char* name : {"QMenu", "QMenuBar", "QLabel", "QCheckBox", "QRadioButton", "QPushButton", "QListView"}) {
        QApplication::setFont(theme::Font(12), name);
    }
    QApplication::setFont(theme::Font(11), "QLineEdit");
    QToolTip::setFont(theme::Font(11));
    QToolTip::setPalette(theme::Palette());
    FocusRing::Install();
    InstallAccessibility();
}

} // namespace velmora::controls
