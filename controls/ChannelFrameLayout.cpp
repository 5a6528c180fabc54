#include "controls/ChannelFrame.h"
#include "controls/Combo.h"
#include "controls/Labels.h"
#include "controls/QtText.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"

// Where the controls of a strip stand, and what they are joined to.
namespace velmora::controls {
namespace {

constexpr int kRowTop = 54;
constexpr int kRowStep = 44;
constexpr int kNumberLeft = 182;
constexpr int kNumberStep = 28;

/// A caption without its colon.
QString Name(const char* caption)
{
    QString name = QString::fromLatin1(caption);
    name.chop(1);
    return name;
}

} // namespace

void ChannelFrame::AddHead()
{
    const bool music = m_presenter.Kind() == StripKind::Music;
    setAccessibleName(music ? tr("Music channel") : tr("Voice channel"));
    m_title->setObjectName("Label_ChannelTitle");
    m_title->setGeometry(39, 10, 139, 24);
    const QString rename = tr("Double click to rename");
    m_title->setToolTip(music ? tr("Channel's name") + '\n' + rename : rename);
    connect(m_title, &TitleLabel::RenameWanted, this, [this] { m_presenter.Rename(); });
    for (int i = 0; i < static_cast<int>(m_numbers.size()); ++i) {
        auto* button = new imgButton(ButtonLook::Number, m_content);
        button->setObjectName(QStringLiteral("ChnlN_Button%1").arg(i));
        button->setGeometry(kNumberLeft + kNumberStep * i, 10, 26, 24);
        if (i < ChannelButtons::kNumbers) {
            const QString toolTip = tr("Select channel %1").arg(i + 1);
            button->SetToolTip(toolTip, (music ? QStringLiteral("Shift+%1") : QStringLiteral("%1")).arg(i + 1));
            button->SetCaption(QString::number(i + 1));
            button->setAccessibleName(toolTip);
            connect(button, &imgButton::clicked, this, [this, i] { m_presenter.SelectChannel(i); });
        } else {
            button->SetIcon("more");
            button->SetToolTip(tr("More channels"));
            connect(button, &imgButton::clicked, this, [this] { ShowMoreChannels(); });
        }
        m_numbers[static_cast<std::size_t>(i)] = button;
    }
}

void ChannelFrame::AddCaption(const QString& text, double middle)
{
    m_captions.append({text, 16, middle});
}

void ChannelFrame::ConnectValue(imgScroll& slider, ValueLabel& label, StripValue which)
{
    const StripValueInfo& info = InfoOf(which);
    slider.SetRange(info.minimum, info.maximum);
    slider.SetDefaultValue(info.standard);
    slider.SetValueText([which](double value) { return ToQt(ValueText(which, value)); });
    slider.setAccessibleName(Name(info.caption));
    slider.setToolTip(Name(info.caption));
    m_values[which] = {&slider, &label};
    connect(&slider, &imgScroll::Change, this, [this, which, &label](double value) {
        label.SetText(ToQt(ValueText(which, value)));
        m_presenter.ChangeValue(which, value);
    });
}

void ChannelFrame::AddSteps(imgScroll& slider, const char* name, const QPoint& plus, const QPoint& minus, bool upright,
                            const QString& caption)
{
    const auto add = [&](int index, const QPoint& place, const char* icon, const QString& toolTip, double step) {
        auto* button = new imgButton(ButtonLook::Step, m_content);
        button->setObjectName(QString::fromLatin1(name) + QString::number(index));
        button->SetIcon(icon);
        button->SetToolTip(toolTip);
        button->SetRepeats();
        button->setGeometry(QRect(place, QSize(theme::kSmallHeight, theme::kSmallHeight)));
        connect(button, &imgButton::clicked, &slider, [&slider, step] { slider.StepBy(step); });
        return button;
    };
    const bool pan = caption == Name(InfoOf(StripValue::Pan).caption);
    const QString more = pan ? tr("%1 to the right").arg(caption) : tr("%1 up").arg(caption);
    const QString less = pan ? tr("%1 to the left").arg(caption) : tr("%1 down").arg(caption);
    QWidget* first = add(0, plus, upright ? "up" : "right", more, 1);
    QWidget* second = add(1, minus, upright ? "down" : "left", less, -1);
    if (upright) {
        setTabOrder(&slider, first);
        setTabOrder(first, second);
    } else {
        setTabOrder(second, &slider);
        setTabOrder(&slider, first);
    }
}

void ChannelFrame::AddVolume(const char* slider, const char* buttons, const char* label)
{
    AddCaption(tr("Volume:"), 60);
    auto* fader = new imgVScroll(m_content);
    fader->setObjectName(slider);
    fader->setGeometry(16, 74, 36, 106);
    auto* value = new ValueLabel(theme::Font(13, QFont::DemiBold), Qt::AlignLeft, m_content);
    value->setObjectName(label);
    value->setGeometry(16, 198, 72, 18);
    ConnectValue(*fader, *value, StripValue::Volume);
    AddSteps(*fader, buttons, {58, 72}, {58, 162}, true, Name(InfoOf(StripValue::Volume).caption));
}

void ChannelFrame::AddRow(int row, StripValue which, const char* slider, const char* buttons)
{
    const int top = kRowTop + kRowStep * row;
    const StripValueInfo& info = InfoOf(which);
    m_captions.append({tr(info.caption), 104, top + 6.0});
    auto* value = new ValueLabel(theme::Font(11, QFont::Medium), Qt::AlignRight, m_content);
    value->setGeometry(220, top - 1, 100, 14);
    auto* scroll = new imgHScroll(m_content);
    scroll->setObjectName(slider);
    scroll->setGeometry(120, top + 16, 184, 20);
    scroll->SetCentred(info.centred);
    ConnectValue(*scroll, *value, which);
    AddSteps(*scroll, buttons, {307, top + 16}, {96, top + 16}, false, Name(info.caption));
}

imgButton* ChannelFrame::AddSwitch(StripSwitch which, const char* name, const QRect& place, const QString& toolTip,
                                   const QString& key)
{
    static const std::map<StripSwitch, std::pair<const char*, QString>> looks{
        {StripSwitch::Mute, {"mute", tr("Mute")}},
        {StripSwitch::Solo, {"solo", tr("Solo")}},
        {StripSwitch::Live, {"monitor", tr("Live")}}};
    auto* button = new imgButton(which == StripSwitch::Mute ? ButtonLook::Mute : ButtonLook::Raised, m_content);
    button->setObjectName(name);
    button->SetMode(ButtonMode_Switch);
    button->SetIcon(looks.at(which).first);
    button->SetCaption(looks.at(which).second);
    button->SetToolTip(toolTip, key);
    button->setGeometry(place);
    connect(button, &imgButton::clicked, this, [this, which] { m_presenter.Toggle(which); });
    m_switches[which] = button;
    return button;
}

imgButton* ChannelFrame::AddButton(const char* icon, const char* name, const QRect& place, const QString& toolTip)
{
    auto* button = new imgButton(ButtonLook::Raised, m_content);
    button->setObjectName(name);
    button->SetIcon(icon);
    button->SetToolTip(toolTip);
    button->setGeometry(place);
    return button;
}

VUMeter_UserCtrl* ChannelFrame::AddMeter(const char* name, const QRect& place, const QString& accessibleName)
{
    auto* meter = new VUMeter_UserCtrl(m_content);
    meter->setObjectName(name);
    meter->setAccessibleName(accessibleName);
    meter->setGeometry(place);
    return meter;
}

void ChannelFrame::AddLowerPart(const QString& soloToolTip, const QString& keyPrefix)
{
    AddSwitch(StripSwitch::Mute, "MuteButton", {104, 194, 106, 26}, tr("Mute this channel"), keyPrefix + 'M');
    AddSwitch(StripSwitch::Solo, "soloButton", {214, 194, 106, 26}, soloToolTip, keyPrefix + 'S');
    AddCaption(tr("Effects:"), 255);
    m_packs = new Combo(m_content);
    m_packs->setObjectName("Combo2");
    m_packs->setGeometry(104, 242, 140, 26);
    m_packs->setToolTip(tr("FX List"));
    m_packs->setAccessibleName(tr("FX List"));
    m_packs->setProperty(kTakesKeyboard, true);
    m_packs->SetText(tr("(Custom)"));
    connect(m_packs, &Combo::KeyboardFocus, this, [this](bool got) { m_presenter.KeyboardFocus(got); });
    connect(m_packs, &QComboBox::activated, this,
            [this](int index) { m_presenter.ChoosePack(static_cast<std::size_t>(index)); });
    imgButton* setup = AddButton("fx", "button_SetupFX", {248, 242, 34, 26}, tr("Set up the effects"));
    // Its window is still to come.
    setup->setEnabled(false);
    connect(setup, &imgButton::clicked, this, [this] { m_presenter.SetupFX(); });
    connect(AddButton("save", "button_SaveFX", {286, 242, 34, 26}, tr("Save the effects as a pack")),
            &imgButton::clicked, this, [this] { m_presenter.SavePack(); });
    AddCaption(tr("Level:"), 284);
    m_meter = AddMeter("VUMeter", {100, 277, 220, 14}, tr("Level"));
}

} // namespace velmora::controls
