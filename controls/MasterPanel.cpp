#include "controls/MasterPanel.h"

#include "controls/Drawing.h"
#include "controls/Labels.h"
#include "controls/QtText.h"
#include "controls/StripValues.h"
#include "controls/Theme.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"

#include <QPainter>
#include <algorithm>

namespace velmora::controls {
namespace {

constexpr int kFullVolume = 100;
constexpr int kButtonStep = 10;

} // namespace

MasterPanel::MasterPanel(QWidget* parent)
    : QWidget(parent)
    , m_fader(new imgVScroll(this))
    , m_value(new ValueLabel(theme::Font(13, QFont::DemiBold), Qt::AlignLeft, this))
{
    setAccessibleName(tr("Master"));
    m_fader->setObjectName("Master_Vol_VScroll");
    m_fader->setGeometry(16, 74, 36, 180);
    m_fader->SetRange(0, kFullVolume);
    m_fader->SetDefaultValue(kFullVolume);
    m_fader->SetValueText([](double value) { return ToQt(ValueText(StripValue::Volume, value)); });
    m_fader->setAccessibleName(tr("Master volume"));
    m_fader->setToolTip(tr("Master volume"));
    m_value->setGeometry(16, 272, 72, 18);
    connect(m_fader, &imgScroll::Change, this, [this](double value) {
        ShowText();
        emit VolumeChosen(static_cast<int>(value));
    });
    AddStep(0, 72, "up", tr("Master volume up"), kButtonStep);
    AddStep(1, 236, "down", tr("Master volume down"), -kButtonStep);
    m_mute = new imgButton(ButtonLook::Mute, this);
    m_mute->setObjectName("master_MuteButton");
    m_mute->SetMode(ButtonMode_Switch);
    m_mute->SetIcon("mute");
    m_mute->SetCaption(tr("Mute"));
    m_mute->SetToolTip(tr("Mute master"));
    m_mute->setAccessibleName(tr("Mute master"));
    m_mute->setGeometry(16, 300, 66, 26);
    connect(m_mute, &imgButton::clicked, this, [this] { emit MuteChosen(m_mute->Value()); });
    SetVolume(kFullVolume);
}

void MasterPanel::AddStep(int index, int top, const char* icon, const QString& toolTip, int step)
{
    auto* button = new imgButton(ButtonLook::Step, this);
    button->setObjectName(QStringLiteral("Button_MasterVol%1").arg(index));
    button->SetIcon(icon);
    button->SetToolTip(toolTip);
    button->SetRepeats();
    button->setGeometry(58, top, theme::kSmallHeight, theme::kSmallHeight);
    connect(button, &imgButton::clicked, this, [this, step] {
        const int volume = std::clamp(static_cast<int>(m_fader->Value()) + step, 0, kFullVolume);
        SetVolume(volume);
        emit VolumeChosen(volume);
    });
}

void MasterPanel::SetVolume(std::int32_t volume)
{
    m_fader->SetValue(volume);
    ShowText();
}

void MasterPanel::SetMute(bool mute)
{
    m_mute->SetValue(mute);
}

void MasterPanel::ShowText()
{
    m_value->SetText(m_fader->ValueText());
}

void MasterPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const PixelGrid grid(painter);
    painter.setFont(theme::Font(15, QFont::DemiBold));
    painter.setPen(theme::Text);
    DrawElided(painter, {16, 10, 80, 24}, Qt::AlignLeft, tr("Master"));
    FillSharp(painter, grid.HairlineAlong({16, 44, 66, 1}), theme::Line);
    painter.setFont(theme::Font(11));
    painter.setPen(theme::Text2);
    DrawLine(painter, {16, 60, 0, 0}, Qt::AlignLeft, tr("Volume:"));
}

} // namespace velmora::controls
