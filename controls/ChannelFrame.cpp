#include "controls/ChannelFrame.h"

#include "controls/Combo.h"
#include "controls/Drawing.h"
#include "controls/Icons.h"
#include "controls/Labels.h"
#include "controls/QtText.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"

#include <QMenu>
#include <QPainter>

namespace velmora::controls {
namespace {

constexpr QRect kRules[] = {{16, 44, 304, 1}, {16, 232, 304, 1}};
constexpr QPointF kKindIcon(16, 14);
constexpr double kKindIconSize = 16;

const QString& KindIcon(StripKind kind)
{
    static const QString music = QStringLiteral("music");
    static const QString voice = QStringLiteral("mic");
    return kind == StripKind::Music ? music : voice;
}

} // namespace

/// Covers a strip that has nothing to show.
class ChannelFrame::NoChannelsPic : public QWidget {
public:
    NoChannelsPic(StripKind kind, QWidget* parent)
        : QWidget(parent)
        , m_kind(kind)
        , m_text(kind == StripKind::Music ? tr("No music channels present in the project.")
                                          : tr("No voice channels present in the project."))
        , m_hint(kind == StripKind::Music ? tr("Add one with Channels, Add channel, Music.")
                                          : tr("Add one with Channels, Add channel, Voice."))
    {
        setObjectName("NoChannelsPic");
        setAccessibleName(m_text);
        setAccessibleDescription(m_hint);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        constexpr double Icon = 24;
        constexpr double BlockHeight = 68;
        QPainter painter(this);
        const double top = (height() - BlockHeight) / 2;
        DrawIcon(painter, KindIcon(m_kind), {(width() - Icon) / 2, top}, Icon, theme::Text2);
        painter.setFont(theme::Font(12, QFont::Medium));
        painter.setPen(theme::Text);
        DrawElided(painter, {8, top + 36, width() - 16.0, 16}, Qt::AlignHCenter, m_text);
        painter.setFont(theme::Font(11));
        painter.setPen(theme::Text2);
        DrawElided(painter, {8, top + 56, width() - 16.0, 16}, Qt::AlignHCenter, m_hint);
    }

private:
    const StripKind m_kind;
    const QString m_text;
    const QString m_hint;
};

ChannelFrame::ChannelFrame(StripKind kind, QWidget* parent)
    : QWidget(parent)
    , m_presenter(kind, *this)
    , m_content(new QWidget(this))
    , m_noChannels(new NoChannelsPic(kind, this))
    , m_title(new TitleLabel(m_content))
{
    m_noChannels->hide();
    AddHead();
}

void ChannelFrame::Initialize_Class(project::ProjectFile_Class& project)
{
    m_presenter.Initialize_Class(project);
    // The new project's window counts from 0 who holds the keyboard.
    const QWidget* focus = focusWidget();
    if (focus && focus->hasFocus() && focus->property(kTakesKeyboard).toBool()) {
        m_presenter.KeyboardFocus(true);
    }
}

void ChannelFrame::paintEvent(QPaintEvent* /*event*/)
{
    if (m_content->isHidden()) {
        return;
    }
    QPainter painter(this);
    const PixelGrid grid(painter);
    for (const QRect& rule : kRules) {
        FillSharp(painter, grid.HairlineAlong(rule), theme::Line);
    }
    DrawIcon(painter, KindIcon(m_presenter.Kind()), kKindIcon, kKindIconSize, theme::Text2);
    painter.setFont(theme::Font(11));
    painter.setPen(theme::Text2);
    for (const Caption& caption : m_captions) {
        DrawLine(painter, {caption.left, caption.middle, 0, 0}, Qt::AlignLeft, caption.text);
    }
    PaintMore(painter);
}

void ChannelFrame::resizeEvent(QResizeEvent* /*event*/)
{
    m_content->setGeometry(rect());
    m_noChannels->setGeometry(rect());
}

void ChannelFrame::ShowNoChannels(bool none)
{
    m_content->setVisible(!none);
    m_noChannels->setVisible(none);
    update();
}

void ChannelFrame::ShowTitle(const std::string& title)
{
    m_title->setText(ToQt(title));
}

void ChannelFrame::ShowValue(StripValue which, double value)
{
    const auto& [slider, label] = m_values.at(which);
    slider->SetValue(value);
    label->SetText(ToQt(ValueText(which, value)));
}

void ChannelFrame::ShowSwitch(StripSwitch which, bool on)
{
    if (const auto found = m_switches.find(which); found != m_switches.end()) {
        found->second->SetValue(on);
    }
}

void ChannelFrame::ShowChannelButtons(const ChannelButtons& buttons)
{
    for (std::size_t i = 0; i < m_numbers.size(); ++i) {
        const ChannelButtons::Button& shown = buttons.buttons[i];
        m_numbers[i]->setEnabled(shown.exists);
        m_numbers[i]->SetValue(shown.shown);
        m_numbers[i]->SetRecordingDot(shown.recording);
    }
}

void ChannelFrame::ShowPacks(const std::vector<std::string>& names)
{
    QStringList items;
    for (const std::string& name : names) {
        items.append(ToQt(name));
    }
    m_packs->SetItems(items);
}

void ChannelFrame::ShowPack(const std::string& name)
{
    m_packs->SetText(ToQt(name));
}

void ChannelFrame::ShowLevel(std::int32_t level)
{
    m_meter->SetValue(level);
}

void ChannelFrame::ShowMoreChannels()
{
    QMenu menu(this);
    menu.setObjectName("mnuMoreChannels");
    for (const ChannelEntry& entry : m_presenter.MoreChannels()) {
        QAction* action = menu.addAction(ToQt(entry.title).replace('&', "&&"));
        action->setData(entry.id);
        action->setCheckable(true);
        action->setChecked(entry.id == m_presenter.SelectedChannelID());
    }
    if (menu.isEmpty()) {
        return;
    }
    const imgButton& button = *m_numbers.back();
    if (const QAction* chosen = menu.exec(button.mapToGlobal(QPoint(0, button.height() + 2)))) {
        m_presenter.SelectChannelID(chosen->data().toDouble());
    }
}

} // namespace velmora::controls
