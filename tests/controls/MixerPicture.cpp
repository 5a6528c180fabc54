#include "tests/controls/MixerPicture.h"

#include "audio/Recorder_Class.h"
#include "controls/ChannelFrame.h"
#include "controls/Drawing.h"
#include "controls/MasterPanel.h"
#include "controls/Theme.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/project/ProjectFixture.h"

#include <QPainter>

namespace velmora::controls {
namespace {

class Deck : public QWidget {
protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), theme::Deck);
        for (const double x : {345.0, 700.0}) {
            FillSharp(painter, PixelGrid(painter).HairlineAlong({x, 12, 1, 312}), theme::Line);
        }
    }
};

class Song : public project::ProjectTest {
public:
    ~Song() override { m_project.reset(); } // before its device

    QPixmap Picture()
    {
        Deck deck;
        deck.setFixedSize(820, 335);
        MusicFrame_UserCtrl music(&deck);
        VoiceFrame_UserCtrl voice(&deck);
        MasterPanel master(&deck);
        music.setGeometry(0, 0, 327, 333);
        voice.setGeometry(355, 0, 327, 332);
        master.setGeometry(710, 0, 97, 333);
        master.SetVolume(90);
        Restart();
        music.Initialize_Class(*m_project);
        voice.Initialize_Class(*m_project);
        m_project->CreateNewProject();
        if (m_withChannels) {
            Fill();
        } else {
            Empty();
        }
        const QPixmap picture = deck.grab();
        Send(core::Msg_Recorder_Stop);
        music.Release();
        voice.Release();
        return picture;
    }

    bool m_withChannels = true;
    audio::ScriptedCapture m_device;

private:
    void TestBody() override {}

    void Fill()
    {
        m_project->Recorder->InputDeviceOverride = m_device.Number();
        Send(core::Msg_AddMusicChannel);
        const core::ClassID band = Music(0).ClassID();
        const core::ClassID vocal = Voice(0).ClassID();
        Title(band, "Band track");
        Title(vocal, "Lead vocal");
        SendToChannel(core::Msg_Channel_SetVolume, band, 78);
        SendToChannel(core::Msg_Channel_SetVoiceRemoval, band, 35);
        SendToChannel(core::Msg_Channel_SetSolo, band, core::kTrue);
        SendToChannel(core::Msg_Channel_SetVolume, vocal, 84);
        SendToChannel(core::Msg_Channel_SetPan, vocal, -30);
        SendToChannel(core::Msg_Channel_SetGain, vocal, 5);
        SendToChannel(core::Msg_Channel_SetLive, vocal, core::kTrue);
        Send(core::Msg_Recorder_Start);
        WriteSound("Rainy days - band.wav");
        AddClip(Music(0), 0, "Rainy days - band.wav");
    }

    void Empty()
    {
        while (m_project->Chn_GetChannelClass_TotalN() > 0) {
            core::MsgParametersClass params;
            params.ChannelID = m_project->util_GetFirstChannelID();
            Send(core::Msg_DeleteChannel, params);
        }
    }

    void Title(core::ClassID channel, const char* title)
    {
        core::MsgParametersClass params;
        params.ChannelID = channel;
        params.Text = title;
        Send(core::Msg_Channel_SetTitle, params);
    }
};

} // namespace

QPixmap MixerPicture()
{
    return Song().Picture();
}

QPixmap EmptyMixerPicture()
{
    Song song;
    song.m_withChannels = false;
    return song.Picture();
}

} // namespace velmora::controls
