#include "controls/LookStyle.h"

#include "controls/Accessibility.h"
#include "controls/Drawing.h"
#include "controls/FocusRing.h"
#include "controls/Icons.h"
#include "controls/Theme.h"
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
constexpr int kMenuSeparator = 7;
constexpr int kMenuTextLeft = 23; ///< in a row, which is 5 px inside the menu
constexpr int kMenuTextRight = 7;
constexpr int kShortcutGap = 24;
constexpr int kMenuIcon = 12;
constexpr int kArrow = 16;
constexpr int kMenuBarPadding = 9;
constexpr int kFieldPadding = 7; ///< a field adds 2 of its own
constexpr int kCheckBox = 14;

bool Is(const QStyleOption* option, QStyle::StateFlag flag)
{
    return option->state & flag;
}

/// Text of a menu's row and its shortcut, which a tab parts.
std::pair<QString, QString> RowTexts(const QString& text)
{
    const qsizetype tab = text.indexOf(QLatin1Char('\t'));
    return tab < 0 ? std::pair(text, QString()) : std::pair(text.left(tab), text.mid(tab + 1));
}

/// Without the marks of the access keys.
QString Plain(QString text)
{
    text.replace(QStringLiteral("&&"), QString(QChar::Null));
    text.remove(QLatin1Char('&'));
    return text.replace(QChar::Null, QLatin1Char('&'));
}

void DrawMenuRow(const QStyleOptionMenuItem& row, QPainter& painter)
{
    const QRectF rect(row.rect);
    if (row.menuItemType == QStyleOptionMenuItem::Separator) {
        QColor line = theme::Mark;
        line.setAlphaF(0.5F);
        const PixelGrid grid(painter);
        FillSharp(painter, grid.HairlineAlong({rect.left() + 5, rect.top() + 3, rect.width() - 10, 1}), line);
        return;
    }
    const bool enabled = Is(&row, QStyle::State_Enabled);
    const bool chosen = enabled && Is(&row, QStyle::State_Selected);
    if (chosen)
        FillRound(painter, rect, theme::kRadius, theme::Accent);
    const QColor ink = chosen ? theme::AccentInk : enabled ? theme::Text : theme::Text3;
    const QColor quietInk = chosen ? theme::AccentInk : enabled ? theme::Text2 : theme::Text3;
    if (row.checkType != QStyleOptionMenuItem::NotCheckable && row.checked)
        DrawIcon(painter, QStringLiteral("check"), {rect.left() + 6, rect.top() + (rect.height() - kMenuIcon) / 2},
                 kMenuIcon, ink);
    if (row.menuItemType == QStyleOptionMenuItem::SubMenu)
        DrawIcon(painter, QStringLiteral("right"),
                 {rect.right() - kMenuTextRight - kMenuIcon, rect.top() + (rect.height() - kArrow) / 2}, kArrow,
                 quietInk);
    const auto [text, shortcut] = RowTexts(row.text);
    painter.setFont(theme::Font(12));
    painter.setPen(ink);
    const QRectF textRect = rect.adjusted(kMenuTextLeft, 0, -kMenuTextRight, 0);
    DrawLine(painter, textRect, Qt::AlignLeft, Plain(text));
    painter.setFont(theme::Font(11));
    painter.setPen(quietInk);
    DrawLine(painter, textRect, Qt::AlignRight, shortcut);
}

void DrawMenuBarItem(const QStyleOptionMenuItem& item, QPainter& painter)
{
    const QRectF rect(item.rect);
    painter.fillRect(rect, theme::Deck);
    if (Is(&item, QStyle::State_Enabled) && (Is(&item, QStyle::State_Selected) || Is(&item, QStyle::State_Sunken)))
        FillRound(painter, rect.adjusted(0, 2, 0, -2), theme::kRadius, theme::Raised);
    painter.setFont(theme::Font(12));
    painter.setPen(Is(&item, QStyle::State_Enabled) ? theme::Text : theme::Text3);
    DrawLine(painter, rect, Qt::AlignHCenter, Plain(item.text));
}

void DrawPushButton(const QStyleOptionButton& button, QPainter& painter)
{
    const QRectF rect(button.rect);
    const bool enabled = Is(&button, QStyle::State_Enabled);
    const bool sunken = Is(&button, QStyle::State_Sunken);
    const bool hover = Is(&button, QStyle::State_MouseOver);
    const bool isDefault = button.features & QStyleOptionButton::DefaultButton;
    if (!enabled)
        OutlineRound(painter, rect, theme::kRadius, theme::Line);
    else if (isDefault)
        FillRound(painter, rect, theme::kRadius, sunken ? theme::AccentLo : hover ? theme::AccentHi : theme::Accent);
    else
        DrawRaised(painter, rect, sunken ? theme::Pressed : hover ? theme::Hover : theme::Raised, !sunken);
    painter.setFont(theme::Font(12, isDefault ? QFont::DemiBold : QFont::Medium));
    painter.setPen(!enabled ? theme::Text3 : isDefault ? theme::AccentInk : theme::Text);
    DrawElided(painter, rect.adjusted(6, sunken ? 1 : 0, -6, sunken ? 1 : 0), Qt::AlignHCenter, Plain(button.text));
}

void DrawCheckBox(const QStyleOption& option, QPainter& painter, bool round)
{
    const QRectF box(option.rect);
    const bool enabled = Is(&option, QStyle::State_Enabled);
    const bool hover = enabled && Is(&option, QStyle::State_MouseOver);
    const bool sunken = enabled && Is(&option, QStyle::State_Sunken);
    const double radius = round ? box.height() / 2 : theme::kSmallRadius;
    if (Is(&option, QStyle::State_On)) {
        FillRound(painter, box, radius, !enabled ? theme::Text3 : hover ? theme::AccentHi : theme::Accent);
        if (round)
            FillRound(painter, box.adjusted(4, 4, -4, -4), 3, theme::AccentInk);
        else
            DrawIcon(painter, QStringLiteral("check"), box.topLeft(), box.width(), theme::AccentInk);
        return;
    }
    if (hover || sunken)
        FillRound(painter, box, radius, sunken ? theme::Pressed : theme::Hover);
    OutlineRound(painter, box, radius, enabled ? theme::Mark : theme::Text3);
}

void DrawMenuGround(const QRect& rect, QPainter& painter)
{
    FillRound(painter, rect, theme::kMenuRadius, theme::Raised);
    OutlineRound(painter, rect, theme::kMenuRadius, theme::Mark);
}

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
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame && frame->lineWidth > 0)
            FillRound(*painter, option->rect, theme::kRadius, theme::Well);
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
        if (const auto* row = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            DrawMenuRow(*row, *painter);
        return;
    case CE_MenuEmptyArea:
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            DrawMenuBarItem(*item, *painter);
        return;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, theme::Deck);
        return;
    case CE_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            DrawPushButton(*button, *painter);
        return;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
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
        return 0;
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
            if (row->menuItemType == QStyleOptionMenuItem::Separator)
                return {1, kMenuSeparator}; // a row without width would be left out
            const auto [text, shortcut] = RowTexts(row->text);
            const double right = !shortcut.isEmpty()
                                     ? kShortcutGap + QFontMetricsF(theme::Font(11)).horizontalAdvance(shortcut)
                                 : row->menuItemType == QStyleOptionMenuItem::SubMenu ? kShortcutGap
                                                                                      : kMenuTextRight;
            const double width = QFontMetricsF(theme::Font(12)).horizontalAdvance(Plain(text));
            // A list of a combo asks for rows of its own height.
            const QVariant rowHeight = widget ? widget->property("rowHeight") : QVariant();
            return {static_cast<int>(kMenuTextLeft + width + right + kMenuTextRight + 1),
                    rowHeight.isValid() ? rowHeight.toInt() : kMenuRow};
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
    if (element == SE_LineEditContents)
        return option->rect.adjusted(kFieldPadding, 0, -kFieldPadding, 0);
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
    for (const char* name : {"QMenu", "QMenuBar", "QLabel", "QCheckBox", "QRadioButton", "QPushButton", "QListView"})
        QApplication::setFont(theme::Font(12), name);
    QApplication::setFont(theme::Font(11), "QLineEdit");
    QToolTip::setFont(theme::Font(11));
    QToolTip::setPalette(theme::Palette());
    FocusRing::Install();
    InstallAccessibility();
}

} // namespace velmora::controls
