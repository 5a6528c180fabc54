#include "controls/ChannelFrame.h"
#include "controls/Drawing.h"
#include "controls/Labels.h"
#include "controls/QtText.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"

#include <QPainter>

namespace velmora::controls {

MusicFrame_UserCtrl::MusicFrame_UserCtrl(QWidget* parent)
    : ChannelFrame(StripKind::Music, parent)
{
    AddVolume("Music_Vol_Vscroll", "music_VolButton", "music_volLabel");
    AddRow(0, StripValue::Pan, "music_Pan_HScroll", "music_PanValue_Button");
    AddRow(1, StripValue::Pitch, "music_pitch_HScroll", "music_PitchValue_Button");
    AddRow(2, StripValue::VoiceRemoval, "music_VoiceRem_HScroll", "music_VoiceRemValue_Button");
    AddLowerPart(tr("Solo this channel"), QStringLiteral("Shift+"));
    AddCaption(tr("File:"), 313);
    m_file = new ReadOnlyField(Content());
    m_file->setObjectName("Text1");
    m_file->setGeometry(104, 300, 178, 26);
    m_file->setToolTip(tr("Current music file"));
    m_file->setAccessibleName(tr("Current music file"));
    m_file->setProperty(kTakesKeyboard, true);
    connect(m_file, &ReadOnlyField::KeyboardFocus, this, [this](bool got) { Presenter().KeyboardFocus(got); });
    connect(AddButton("open", "music_LoadFileButton", {286, 300, 34, 26}, tr("Load a music file")), &imgButton::clicked,
            this, [this] { Presenter().LoadMusicFile(); });
}

void MusicFrame_UserCtrl::ShowFile(const std::string& title)
{
    m_file->SetText(ToQt(title));
}

VoiceFrame_UserCtrl::VoiceFrame_UserCtrl(QWidget* parent)
    : ChannelFrame(StripKind::Voice, parent)
{
    AddVolume("Voice_Vol_VScroll", "voice_VolButton", "voice_volLabel");
    AddRow(0, StripValue::Pan, "voice_Pan_HScroll", "voice_PanValue_Button");
    AddRow(1, StripValue::Gain, "voice_Gain_HScroll", "voice_GainValue_Button");
    AddSwitch(StripSwitch::Live, "imgButton1", {104, 160, 106, 26}, tr("Hear yourself in the mix"),
              QStringLiteral("L"));
    // Solo's tool tip is that of Mute.
    AddLowerPart(tr("Mute this channel"), {});
    AddCaption(tr("Input:"), 313);
    m_inputMeter = AddMeter("RecVUMeter", {100, 306, 220, 14}, tr("Input"));
}

void VoiceFrame_UserCtrl::ShowInputLevel(std::int32_t level)
{
    m_inputMeter->SetValue(level);
}

void VoiceFrame_UserCtrl::PaintMore(QPainter& painter)
{
    const PixelGrid grid(painter);
    const double room = 96;
    const QFontMetricsF metrics(painter.font());
    painter.drawText(QPointF(224, grid.Y(170)), metrics.elidedText(tr("Hear yourself"), Qt::ElideRight, room));
    painter.drawText(QPointF(224, grid.Y(184)), metrics.elidedText(tr("in the mix"), Qt::ElideRight, room));
}

} // namespace velmora::controls
