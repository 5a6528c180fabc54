#include "controls/CoolToolBar.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"
#include "controls/imgButton.h"
#include "core/Assert.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace velmora::controls {
namespace {

constexpr int kButtonWidth = 28;
constexpr int kSeparatorHeight = 14;

struct MainButton {
    const char* icon;
    const char* caption;
    const char* key;
    int left;
};

constexpr MainButton kMainButtons[] = {
    {"new", QT_TRANSLATE_NOOP("MainToolBar", "New Project"), "Ctrl+N", 6},
    {"open", QT_TRANSLATE_NOOP("MainToolBar", "Open Project"), "Ctrl+O", 34},
    {"save", QT_TRANSLATE_NOOP("MainToolBar", "Save Project"), "Ctrl+S", 62},
    {"undo", QT_TRANSLATE_NOOP("MainToolBar", "Undo"), "Ctrl+Z", 100},
    {"redo", QT_TRANSLATE_NOOP("MainToolBar", "Redo"), "", 128},
    {"play", QT_TRANSLATE_NOOP("MainToolBar", "Play"), "P", 166},
    {"stop", QT_TRANSLATE_NOOP("MainToolBar", "Stop"), "P", 194},
    {"rewind", QT_TRANSLATE_NOOP("MainToolBar", "Rewind"), "W", 222},
    {"back5", QT_TRANSLATE_NOOP("MainToolBar", "Jump back 5 seconds"), "B", 250},
    {"ahead5", QT_TRANSLATE_NOOP("MainToolBar", "Jump ahead 5 seconds"), "N", 278},
    {"record", QT_TRANSLATE_NOOP("MainToolBar", "Record"), "R", 426},
    {"retake", QT_TRANSLATE_NOOP("MainToolBar", "Repeat last recording"), "Ctrl+R", 454},
    {"addmark", QT_TRANSLATE_NOOP("MainToolBar", "Add mark"), "", 588},
};

} // namespace

CoolToolBar::CoolToolBar(QWidget* parent)
    : QWidget(parent)
{
}

int CoolToolBar::AddButton(const Button& button)
{
    const auto free = std::find(m_buttons.begin(), m_buttons.end(), nullptr);
    VERIFY_OR(free != m_buttons.end(), return -1);
    auto* widget = new imgButton(button.isRecord ? ButtonLook::Record : ButtonLook::Tool, this);
    widget->SetIcon(button.icon);
    widget->SetToolTip(button.caption, button.key);
    if (button.hasOnLook) {
        widget->SetShowsValue();
    }
    widget->setGeometry(button.place);
    widget->installEventFilter(this);
    *free = widget;
    const int index = static_cast<int>(free - m_buttons.begin());
    connect(widget, &imgButton::clicked, this, [this, index] { emit ButtonClicked(index); });
    return index;
}

void CoolToolBar::DeleteButton(int index)
{
    if (imgButton* button = GetButton(index)) {
        m_buttons[static_cast<std::size_t>(index)] = nullptr;
        button->deleteLater();
        button->hide();
    }
}

imgButton* CoolToolBar::GetButton(int index) const
{
    VERIFY_OR(index >= 0 && index < Const_Max_Buttons, return nullptr);
    return m_buttons[static_cast<std::size_t>(index)];
}

bool CoolToolBar::ButtonEnabled(int index) const
{
    const imgButton* button = GetButton(index);
    return button && button->isEnabled();
}

void CoolToolBar::SetButtonEnabled(int index, bool enabled)
{
    if (imgButton* button = GetButton(index)) {
        button->setEnabled(enabled);
    }
}

void CoolToolBar::SetButtonOn(int index, bool on)
{
    if (imgButton* button = GetButton(index)) {
        button->SetValue(on);
    }
}

void CoolToolBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    for (const QPoint& at : m_separators) {
        FillSharp(painter, PixelGrid(painter).HairlineAlong({QPointF(at), QSizeF(1, kSeparatorHeight)}), theme::Line);
    }
}

bool CoolToolBar::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Left:
        case Qt::Key_Up:
            FocusNeighbour(object, -1);
            return true;
        case Qt::Key_Right:
        case Qt::Key_Down:
            FocusNeighbour(object, 1);
            return true;
        default:
            break;
        }
    }
    return QWidget::eventFilter(object, event);
}

void CoolToolBar::FocusNeighbour(const QObject* button, int step)
{
    const auto at = std::find(m_buttons.begin(), m_buttons.end(), button) - m_buttons.begin();
    for (auto i = at + step; i >= 0 && i < Const_Max_Buttons; i += step) {
        imgButton* next = m_buttons[static_cast<std::size_t>(i)];
        if (next && next->isEnabled()) {
            next->setFocus(step > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        }
    }
}

MainToolBar::MainToolBar(QWidget* parent)
    : CoolToolBar(parent)
{
    for (const MainButton& button : kMainButtons) {
        const QString icon = QString::fromLatin1(button.icon);
        const bool isRecord = icon == QLatin1String("record");
        AddButton({icon, tr(button.caption), QString::fromLatin1(button.key),
                   QRect(button.left, 0, kButtonWidth, theme::kControlHeight), isRecord,
                   isRecord || icon == QLatin1String("play")});
    }
    AddSeparator({95, 6});
    AddSeparator({161, 6});
}

} // namespace velmora::controls
