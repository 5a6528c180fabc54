#include "audio/Recorder_Class.h"
#include "controls/Combo.h"
#include "controls/Labels.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"
#include "project/Undo_Class.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/controls/StripFixture.h"

#include <QtTest>
#include <chrono>
#include <thread>

namespace velmora::controls {
namespace {

TEST_F(StripTest, ButtonsChooseAmongTheFirstFourAndTheMenuAmongTheRest)
{
    EXPECT_EQ(m_voice.Presenter().SelectedChannelID(), Voice(0).ClassID());
    EXPECT_FALSE(Find<imgButton>(m_voice, "ChnlN_Button4").isEnabled());
    EXPECT_FALSE(Find<imgButton>(m_music, "ChnlN_Button1").isEnabled());

    Send(core::Msg_AddVoiceChannel);
    auto& more = Find<imgButton>(m_voice, "ChnlN_Button4");
    EXPECT_TRUE(more.isEnabled());
    const auto entries = m_voice.Presenter().MoreChannels();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].title, Voice(4).Title);
    m_voice.Presenter().SelectChannelID(entries[0].id);
    EXPECT_EQ(m_project->Selected_VoiceChannel(), Voice(4).ClassID());
    EXPECT_TRUE(more.Value());
    EXPECT_EQ(Find<TitleLabel>(m_voice, "Label_ChannelTitle").text(), QString::fromStdString(Voice(4).Title));

    SendTo(core::Msg_Channel_SetVolume, Voice(2), 11);
    QTest::mouseClick(&Find<imgButton>(m_voice, "ChnlN_Button2"), Qt::LeftButton);
    EXPECT_EQ(m_project->Selected_VoiceChannel(), Voice(2).ClassID());
    EXPECT_EQ(Find<ValueLabel>(m_voice, "voice_volLabel").text(), "11%");
    EXPECT_TRUE(Find<imgButton>(m_voice, "ChnlN_Button2").Value());
    EXPECT_FALSE(more.Value());
}

TEST_F(StripTest, ShowsTheFirstChannelWhenTheSelectedOneGoesAndSaysWhenNoneIsLeft)
{
    m_voice.Presenter().SelectChannel(2);
    DeleteChannel(Voice(2).ClassID());
    EXPECT_EQ(m_voice.Presenter().SelectedChannelID(), Voice(0).ClassID());
    EXPECT_EQ(m_project->Selected_VoiceChannel(), Voice(0).ClassID());

    auto& none = Find<QWidget>(m_music, "NoChannelsPic");
    EXPECT_TRUE(none.isHidden());
    m_project->Undo->AddUndo("delete channel", 4);
    DeleteChannel(Music(0).ClassID());
    EXPECT_FALSE(none.isHidden());
    EXPECT_FALSE(Find<imgButton>(m_music, "MuteButton").isVisible());
    m_music.Presenter().SelectChannel(0);
    EXPECT_EQ(Messages().LastText(), "musicFrame_Usercontrol: No music channels available");

    m_project->Undo->Undo();
    EXPECT_TRUE(none.isHidden());
    EXPECT_EQ(m_music.Presenter().SelectedChannelID(), Music(0).ClassID());
}

TEST_F(StripTest, RenamesAsOneStepAndNotToNothing)
{
    auto& title = Find<TitleLabel>(m_voice, "Label_ChannelTitle");
    const std::string before = Voice(0).Title;
    m_environment.ports.input.Expect("Lead");
    QTest::mouseDClick(&title, Qt::LeftButton);
    EXPECT_EQ(m_environment.ports.input.asked.back().suggestion, before);
    EXPECT_EQ(title.text(), "Lead");
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "Undo change name");
    m_project->Undo->Undo();
    EXPECT_EQ(title.text().toStdString(), before);

    m_environment.ports.input.Expect("");
    m_environment.ports.input.Expect(std::nullopt);
    QTest::keyClick(&title, Qt::Key_F2);
    QTest::keyClick(&title, Qt::Key_Return);
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");
}

TEST_F(StripTest, TheChannelThatIsRecordedHasAMarkAndItsInputIsMetered)
{
    audio::ScriptedCapture device;
    m_project->Recorder->InputDeviceOverride = device.Number();
    auto& first = Find<imgButton>(m_voice, "ChnlN_Button0");
    auto& meter = Find<VUMeter_UserCtrl>(m_voice, "RecVUMeter");
    // The input reaches the meter through the mixing thread.
    const auto showsWithin = [&](int seconds) {
        for (int i = 0; i < seconds * 100 && meter.Value() == 0; ++i) {
            device.Deliver(10, 8000);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            m_environment.ports.timers.Advance(std::chrono::milliseconds(40));
        }
        return meter.Value();
    };
    Send(core::Msg_Recorder_Start);
    ASSERT_TRUE(m_project->Recorder->isRecording()) << Messages().LastText();
    EXPECT_EQ(first.accessibleDescription(), "Recording");
    EXPECT_GT(showsWithin(10), 0);

    // The meter belongs to the channel, not to the strip.
    m_voice.Presenter().SelectChannel(1);
    m_environment.ports.timers.Advance(std::chrono::milliseconds(40));
    EXPECT_EQ(meter.Value(), 0);
    EXPECT_EQ(first.accessibleDescription(), "Recording");
    m_voice.Presenter().SelectChannel(0);
    Send(core::Msg_Recorder_Stop);
    EXPECT_EQ(first.accessibleDescription(), "");
    EXPECT_EQ(meter.Value(), 0);
}

TEST_F(StripTest, OutputMetersStandAtNothingWhenPlaybackStops)
{
    auto& meter = Find<VUMeter_UserCtrl>(m_music, "VUMeter");
    Send(core::Msg_Player_Play);
    meter.SetValue(30);
    Send(core::Msg_Player_Stop);
    EXPECT_EQ(meter.Value(), 0);
    // A strip that has let go of its project does nothing, whatever the user does.
    m_music.Release();
    QTest::mouseClick(&Find<imgButton>(m_music, "MuteButton"), Qt::LeftButton);
    QTest::mouseClick(&Find<imgButton>(m_music, "button_SaveFX"), Qt::LeftButton);
    EXPECT_FALSE(Music(0).Mute);
    m_music.Initialize_Class(*m_project);
    EXPECT_EQ(m_music.Presenter().SelectedChannelID(), Music(0).ClassID());
}

TEST_F(StripTest, TextControlsClaimTheKeyboardWhileTheyHaveIt)
{
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    const auto held = [this] { return Count(core::Msg_KeyboardFocusGot) - Count(core::Msg_KeyboardFocusLost); };
    Find<Combo>(m_voice, "Combo2").setFocus(Qt::TabFocusReason);
    EXPECT_EQ(held(), 1);
    Find<ReadOnlyField>(m_music, "Text1").setFocus(Qt::TabFocusReason);
    EXPECT_EQ(held(), 1);
    Find<imgButton>(m_music, "MuteButton").setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(held(), 0);
    EXPECT_EQ(Count(core::Msg_KeyboardFocusGot), 2);
}

} // namespace
} // namespace velmora::controls
