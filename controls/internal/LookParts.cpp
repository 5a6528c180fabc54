#include "controls/internal/LookParts.h"

#include "controls/Drawing.h"
#include "controls/Icons.h"
#include "controls/Theme.h"

#include <QPainter>
#include <QStyleOption>
#include <algorithm>

namespace velmora::controls {
namespace {

constexpr int kMenuSeparator = 7;
constexpr int kMenuTextLeft = 23; ///< in a row, which is 5 px inside the menu
constexpr int kMenuTextRight = 7;
constexpr int kShortcutGap = 24;
constexpr int kMenuIcon = 12;
constexpr int kArrow = 16;
constexpr double kBar = 6;
constexpr double kThumb = 7;

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

} // namespace

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
    if (chosen) {
        FillRound(painter, rect, theme::kRadius, theme::Accent);
    }
    const QColor ink = chosen ? theme::AccentInk : enabled ? theme::Text : theme::Text3;
    const QColor quietInk = chosen ? theme::AccentInk : enabled ? theme::Text2 : theme::Text3;
    if (row.checkType != QStyleOptionMenuItem::NotCheckable && row.checked) {
        DrawIcon(painter, QStringLiteral("check"), {rect.left() + 6, rect.top() + (rect.height() - kMenuIcon) / 2},
                 kMenuIcon, ink);
    }
    if (row.menuItemType == QStyleOptionMenuItem::SubMenu) {
        DrawIcon(painter, QStringLiteral("right"),
                 {rect.right() - kMenuTextRight - kMenuIcon, rect.top() + (rect.height() - kArrow) / 2}, kArrow,
                 quietInk);
    }
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
    if (Is(&item, QStyle::State_Enabled) && (Is(&item, QStyle::State_Selected) || Is(&item, QStyle::State_Sunken))) {
        FillRound(painter, rect.adjusted(0, 2, 0, -2), theme::kRadius, theme::Raised);
    }
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
    if (!enabled) {
        OutlineRound(painter, rect, theme::kRadius, theme::Line);
    } else if (isDefault) {
        FillRound(painter, rect, theme::kRadius, sunken ? theme::AccentLo : hover ? theme::AccentHi : theme::Accent);
    } else {
        DrawRaised(painter, rect, sunken ? theme::Pressed : hover ? theme::Hover : theme::Raised, !sunken);
    }
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
        if (round) {
            FillRound(painter, box.adjusted(4, 4, -4, -4), 3, theme::AccentInk);
        } else {
            DrawIcon(painter, QStringLiteral("check"), box.topLeft(), box.width(), theme::AccentInk);
        }
        return;
    }
    if (hover || sunken) {
        FillRound(painter, box, radius, sunken ? theme::Pressed : theme::Hover);
    }
    OutlineRound(painter, box, radius, enabled ? theme::Mark : theme::Text3);
}

void DrawMenuGround(const QRect& rect, QPainter& painter)
{
    FillRound(painter, rect, theme::kMenuRadius, theme::Raised);
    OutlineRound(painter, rect, theme::kMenuRadius, theme::Mark);
}

QSize MenuRowSize(const QStyleOptionMenuItem& row, int height)
{
    if (row.menuItemType == QStyleOptionMenuItem::Separator) {
        return {1, kMenuSeparator}; // a row without width would be left out
    }
    const auto [text, shortcut] = RowTexts(row.text);
    const double right = !shortcut.isEmpty() ? kShortcutGap + QFontMetricsF(theme::Font(11)).horizontalAdvance(shortcut)
                         : row.menuItemType == QStyleOptionMenuItem::SubMenu ? kShortcutGap
                                                                             : kMenuTextRight;
    const double width = QFontMetricsF(theme::Font(12)).horizontalAdvance(Plain(text));
    return {static_cast<int>(kMenuTextLeft + width + right + kMenuTextRight + 1), height};
}

void DrawProgressBar(const QStyleOptionProgressBar& bar, QPainter& painter)
{
    const QRectF rect(bar.rect);
    const QRectF groove(rect.left(), rect.center().y() - kBar / 2, rect.width(), kBar);
    FillRound(painter, groove, kBar / 2, theme::Well);
    const double range = static_cast<double>(bar.maximum) - bar.minimum;
    const double part = range > 0 ? std::clamp((bar.progress - bar.minimum) / range, 0.0, 1.0) : 0;
    if (part > 0) {
        FillRound(painter, {groove.topLeft(), QSizeF(groove.width() * part, kBar)}, kBar / 2, theme::Accent);
    }
}

QRect ScrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part)
{
    // All of the bar is lane; there are no arrows.
    const bool across = bar.orientation == Qt::Horizontal;
    const QRect lane = bar.rect.adjusted(across ? 2 : 0, across ? 0 : 2, across ? -2 : 0, across ? 0 : -2);
    const int length = across ? lane.width() : lane.height();
    const double range = static_cast<double>(bar.maximum) - bar.minimum + bar.pageStep;
    const int thumb = std::clamp(static_cast<int>(length * bar.pageStep / std::max(range, 1.0)),
                                 std::min(kLeastScrollThumb, length), length);
    const int at =
        QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - thumb, bar.upsideDown);
    const QRect slider = across ? QRect(lane.left() + at, lane.top(), thumb, lane.height())
                                : QRect(lane.left(), lane.top() + at, lane.width(), thumb);
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return lane;
    case QStyle::SC_ScrollBarSlider:
        return slider;
    case QStyle::SC_ScrollBarSubPage:
        return across ? QRect(lane.topLeft(), QPoint(slider.left() - 1, lane.bottom()))
                      : QRect(lane.topLeft(), QPoint(lane.right(), slider.top() - 1));
    case QStyle::SC_ScrollBarAddPage:
        return across ? QRect(QPoint(slider.right() + 1, lane.top()), lane.bottomRight())
                      : QRect(QPoint(lane.left(), slider.bottom() + 1), lane.bottomRight());
    default:
        return {};
    }
}

void DrawScrollBar(const QStyleOptionSlider& bar, const QRect& thumb, QPainter& painter)
{
    painter.fillRect(bar.rect, theme::Deck);
    if (bar.maximum <= bar.minimum) {
        return;
    }
    QRectF shape(thumb);
    if (bar.orientation == Qt::Horizontal) {
        shape = {shape.left(), shape.center().y() - kThumb / 2, shape.width(), kThumb};
    } else {
        shape = {shape.center().x() - kThumb / 2, shape.top(), kThumb, shape.height()};
    }
    const bool lit = Is(&bar, QStyle::State_MouseOver) || Is(&bar, QStyle::State_Sunken);
    FillRound(painter, shape, kThumb / 2, lit ? theme::Text2 : theme::Mark);
}

} // namespace velmora::controls
