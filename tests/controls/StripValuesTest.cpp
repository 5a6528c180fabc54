#include "audio/Recorder_Class.h"
#include "controls/Labels.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"
#include "project/Undo_Class.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/controls/StripFixture.h"

#include <QtTest>

namespace velmora::controls {
namespace {

/// Presses, moves through `to` in steps of a pixel, and releases.
void Drag(imgScroll& slider, const QPoint& from, const QPoint& to)
{
    QTest::mousePress(&slider, Qt::LeftButton, {}, from);
    const QPoint way = to - from;
    const int steps = std::max(std::abs(way.x()), std::abs(way.y()));
    for (int i = 1; i <= steps; ++i) {
        const QPointF at = from + QPointF(way) * i / steps;
        QMouseEvent move(QEvent::MouseMove, at, slider.mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&slider, &move);
    }
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, to);
}

TEST_F(StripTest, SlidersFollowTheModelAndSendNothingBack)
{
    struct Case {
        QWidget& strip;
        const char* slider;
        std::int32_t msgID;
        double value;
        const char* text;
    };
    const Case cases[] = {
        {m_voice, "Voice_Vol_VScroll", core::Msg_Channel_SetVolume, 33, "33%"},
        {m_voice, "voice_Pan_HScroll", core::Msg_Channel_SetPan, -100, "-100%"},
        {m_voice, "voice_Gain_HScroll", core::Msg_Channel_SetGain, 7, "7dB"},
        {m_music, "Music_Vol_Vscroll", core::Msg_Channel_SetVolume, 0, "0%"},
        {m_music, "music_Pan_HScroll", core::Msg_Channel_SetPan, 12, "+12%"},
        {m_music, "music_pitch_HScroll", core::Msg_Channel_SetPitch, -3, "-3%"},
        {m_music, "music_VoiceRem_HScroll", core::Msg_Channel_SetVoiceRemoval, 100, "100%"},
    };
    for (const Case& one : cases) {
        const project::Channel_Class& channel = &one.strip == &m_voice ? Voice(0) : Music(0);
        m_passed.clear();
        SendTo(one.msgID, channel, one.value);
        auto& slider = Find<imgScroll>(one.strip, one.slider);
        EXPECT_EQ(slider.Value(), one.value) << one.slider;
        EXPECT_EQ(slider.ValueText(), one.text);
        EXPECT_EQ(m_passed.size(), 1U) << one.slider;
    }
    EXPECT_EQ(Find<ValueLabel>(m_voice, "voice_volLabel").text(), "33%");
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");

    // Another channel's values leave the strip alone.
    SendTo(core::Msg_Channel_SetVolume, Voice(1), 5);
    EXPECT_EQ(Find<imgScroll>(m_voice, "Voice_Vol_VScroll").Value(), 33);
}

TEST_F(StripTest, AValueThatASliderCannotShowIsNotSentBack)
{
    // Beyond the slider's range and between its steps, as files may say.
    for (const double gain : {40.0, -6.0, 5.4}) {
        SendTo(core::Msg_Channel_SetGain, Voice(0), gain);
        Send(core::Msg_Refresh);
        EXPECT_EQ(Voice(0).Gain, gain);
    }
    EXPECT_EQ(Count(core::Msg_Channel_SetGain), 3);
}

TEST_F(StripTest, ADragIsOneUndoStepAndAtMostOneMessagePerEvent)
{
    auto& gain = Find<imgScroll>(m_voice, "voice_Gain_HScroll");
    Drag(gain, {6, 10}, {178, 10});
    EXPECT_EQ(Voice(0).Gain, 12);
    EXPECT_EQ(Count(core::Msg_Channel_SetGain), 12); // one for each whole number on the way
    auto& pan = Find<imgScroll>(m_voice, "voice_Pan_HScroll");
    Drag(pan, {92, 10}, {20, 10});
    EXPECT_LE(Count(core::Msg_Channel_SetPan), 73);
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "Undo change channel properties");

    // A run of drags on one channel is one step; another channel begins the next.
    auto& musicVolume = Find<imgScroll>(m_music, "Music_Vol_Vscroll");
    Drag(musicVolume, {14, 30}, {14, 60});
    EXPECT_EQ(UndoSteps(), 2);
    EXPECT_EQ(Voice(0).Gain, 0);
    EXPECT_EQ(gain.Value(), 0);
    EXPECT_EQ(pan.ValueText(), "+0%");
    EXPECT_EQ(musicVolume.Value(), 80);
}

TEST_F(StripTest, StepButtonsMoveTheirSliderByOne)
{
    struct Case {
        QWidget& strip;
        const char* slider;
        const char* buttons;
    };
    for (const Case& one : {Case{m_voice, "Voice_Vol_VScroll", "voice_VolButton"},
                            Case{m_voice, "voice_Pan_HScroll", "voice_PanValue_Button"},
                            Case{m_music, "music_pitch_HScroll", "music_PitchValue_Button"}}) {
        auto& slider = Find<imgScroll>(one.strip, one.slider);
        const double before = slider.Value();
        const QByteArray name(one.buttons);
        QTest::mouseClick(&Find<imgButton>(one.strip, name + "0"), Qt::LeftButton);
        EXPECT_EQ(slider.Value(), before + 1) << one.slider;
        QTest::mouseClick(&Find<imgButton>(one.strip, name + "1"), Qt::LeftButton);
        QTest::mouseClick(&Find<imgButton>(one.strip, name + "1"), Qt::LeftButton);
        EXPECT_EQ(slider.Value(), before - 1) << one.slider;
    }
    EXPECT_EQ(Voice(0).Volume, 79);
    EXPECT_EQ(Voice(0).Pan, -1);
    EXPECT_EQ(Music(0).Pitch, -1);
}

TEST_F(StripTest, SwitchesSendAndShowWhatTheModelSays)
{
    auto& mute = Find<imgButton>(m_voice, "MuteButton");
    auto& live = Find<imgButton>(m_voice, "imgButton1");
    QTest::mouseClick(&mute, Qt::LeftButton);
    EXPECT_TRUE(Voice(0).Mute);
    EXPECT_TRUE(mute.Value());
    SendTo(core::Msg_Channel_SetMute, Voice(0), core::kFalse);
    EXPECT_FALSE(mute.Value());
    QTest::mouseClick(&Find<imgButton>(m_music, "soloButton"), Qt::LeftButton);
    EXPECT_TRUE(Music(0).Solo);
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");

    // A device may refuse to be heard.
    const audio::ScriptedCapture refusing({}, true);
    audio::ScriptedCapture willing;
    m_project->Recorder->InputDeviceOverride = refusing.Number();
    QTest::mouseClick(&live, Qt::LeftButton);
    EXPECT_FALSE(Voice(0).LiveStatus);
    EXPECT_FALSE(live.Value());
    m_project->Recorder->InputDeviceOverride = willing.Number();
    QTest::mouseClick(&live, Qt::LeftButton);
    EXPECT_TRUE(Voice(0).LiveStatus);
    EXPECT_TRUE(live.Value());
    Send(core::Msg_AllChannelsLiveOff);
    EXPECT_FALSE(live.Value());
}

TEST(StripValues, TextsAndMeterAreAsTold)
{
    EXPECT_EQ(ValueText(StripValue::Pan, 0), "+0%");
    EXPECT_EQ(ValueText(StripValue::Pitch, 0), "+0%");
    EXPECT_EQ(ValueText(StripValue::Gain, -0.4), "0dB");
    EXPECT_EQ(ShownPackName(""), "(Custom)");
    EXPECT_EQ(ShownPackName("warm  HALL (big)"), "Warm  Hall (big)");

    EXPECT_EQ(MeterValue(32768, 32768, 1), 40);
    EXPECT_EQ(MeterValue(3277, 3277, 1), 20);
    EXPECT_EQ(MeterValue(32768, 32768, 0.1), 20);
    EXPECT_EQ(MeterValue(32768, 32768, 0), 0);
    // A level of 330 is just -40 dB; one side below the gate does not close it, both do.
    EXPECT_EQ(MeterValue(1000, 40, 1), 4);
    EXPECT_EQ(MeterValue(49, 49, 1), 0);
}

} // namespace
} // namespace velmora::controls
