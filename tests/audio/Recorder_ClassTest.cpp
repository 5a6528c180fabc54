#include "audio/AudioPlayer_Class.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/RecorderFixture.h"
#include "tests/audio/SoundFixture.h"

#include <algorithm>
#include <chrono>

#include <gmock/gmock.h>

namespace velmora::audio {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace std::chrono_literals;
constexpr double kMegabyte = 1'048'576;

class RecorderClass : public RecorderTest {
protected:
    float Loudness() const
    {
        core::ClassID channel = 0;
        std::uint32_t stream = 0;
        m_project->Recorder->GetLiveData(channel, stream);
        float volume = -1;
        BASS_ChannelGetAttribute(stream, BASS_ATTRIB_VOL, &volume);
        return volume;
    }
};

TEST_F(RecorderClass, CounterIsKeptInTheProject)
{
    const std::string text = "<Recorder_Class>\r\n  <recordCounter>int: 12</recordCounter>\r\n</Recorder_Class>\r\n";
    ASSERT_TRUE(Recorder().LoadXMLData(text));
    EXPECT_EQ(Recorder().GetXMLData(), text);
    EXPECT_FALSE(Recorder().LoadXMLData(""));
    EXPECT_EQ(Recorder().recordCounter(), 12);
    ASSERT_TRUE(Recorder().LoadXMLData("<Recorder_Class></Recorder_Class>"));
    EXPECT_EQ(Recorder().recordCounter(), 1);
}

TEST_F(RecorderClass, TakeLandsWhereAndOnTheChannelItBegan)
{
    m_environment->config.Global_Rec_RecordAsMono = true;
    Seek(3000);
    const core::MsgParametersClass started = Start();
    EXPECT_FALSE(started.CancelDelivery);
    EXPECT_EQ(started.ChannelID, Voice(0).ClassID());
    EXPECT_EQ(started.TimePosMS, 3000);
    ASSERT_TRUE(Recorder().isRecording());
    EXPECT_TRUE(m_project->Player->isPlaying());
    EXPECT_THAT(Files(), ElementsAre("a0- Record 1.take", "a0- Record 1.wav"));
    EXPECT_TRUE(Start().CancelDelivery) << "one at a time";
    Select(Voice(2).ClassID());
    Seek(0);
    m_project->Undo->Undo();
    EXPECT_GE(m_project->Player->GetTimePos(), 3000) << "the cursor cannot be moved";
    EXPECT_TRUE(Recorder().isRecording()) << "nothing can be undone";
    ASSERT_TRUE(m_device.Deliver(700, 500));
    Stop();

    EXPECT_FALSE(Recorder().isRecording());
    EXPECT_FALSE(m_project->Player->isPlaying());
    EXPECT_EQ(m_project->Player->GetTimePos(), 3000);
    ASSERT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 1.wav at 3000"));
    const auto& clip = *Voice(0).ChannelData->InTimeOrder().front()->EventOBJ;
    EXPECT_EQ(clip.Title, "Record 1");
    const WavSound file = ReadWav(m_project->FixAudioFilePath("a0- Record 1.wav"));
    EXPECT_EQ(file.channels, 1);
    EXPECT_EQ(std::ranges::count(file.samples, 500), 30'870);
    EXPECT_NEAR(clip.EndMS, static_cast<double>(file.Frames()) / 44.1, 1);
    EXPECT_THAT(Journal("a0- Record 1.wav"), HasSubstr("<StartMS>int: " + std::to_string(clip.StartMS) + "</StartMS>"));
    EXPECT_EQ(Recorder().RecordOnChannel(), Voice(2).ClassID());
    EXPECT_EQ(Recorder().recordCounter(), 2);
    EXPECT_THAT(m_environment.ports.views.calls, Contains("EnableMainWindow true"));
    EXPECT_THAT(Messages().shown, IsEmpty());
    Stop();
    EXPECT_EQ(Recorder().recordCounter(), 2);

    ASSERT_TRUE(m_project->SaveProject(m_environment.Path("Song.audioproj")));
    EXPECT_THAT(Files(), ElementsAre("a0- Record 1.wav"));
}

TEST_F(RecorderClass, TheJournalKnowsThePlaceFromTheStartOn)
{
    // An output that has just begun has not told yet when it is heard.
    ASSERT_TRUE(testing::Becomes([] { return Sound_MixedFrames() > 44'100 / 5; }));
    m_device.latency = 400ms;
    Seek(1000);
    Start();
    const std::string wav = m_project->FixAudioFilePath("a0- Record 1.wav");
    const TakeJournal early = TakeJournal::Read(m_environment.disk, wav);
    ASSERT_TRUE(m_device.Deliver(500, 500));
    Stop();
    const std::int32_t startMS = Voice(0).ChannelData->InTimeOrder().front()->EventOBJ->StartMS;
    EXPECT_GE(startMS, 400);
    EXPECT_NEAR(early.StartMS, startMS, 100) << "a kill would leave it";
    EXPECT_EQ(early.TimePosMS, 1000);

    // Set so that the take would begin before its file does.
    m_environment->config.Recording_OffsetMS = -2000;
    Select(Voice(1).ClassID());
    Record(1000, 700);
    const project::EventRow& row = *Voice(1).ChannelData->InTimeOrder().front();
    EXPECT_EQ(row.EventOBJ->StartMS, 0);
    EXPECT_NEAR(row.TimePos, 1000 + 2000 - startMS, 100);
}

TEST_F(RecorderClass, PlaysAcrossTheProjectsEnd)
{
    Record(0, 200);
    Seek(150);
    Start();
    EXPECT_TRUE(testing::Becomes([this] {
        m_environment.ports.timers.Advance(50ms);
        return m_project->Player->GetTimePos() > 400;
    })) << "the project was 200 ms long";
    EXPECT_TRUE(Recorder().isRecording());
    Stop();
}

TEST_F(RecorderClass, MonitoringFollowsTheButtonAndTheTarget)
{
    const core::ClassID voice = Voice(0).ClassID();
    SetLive(Voice(1).ClassID(), true);
    EXPECT_EQ(m_device.starts, 0) << "not the target";
    SetLive(voice, true);
    EXPECT_TRUE(Recorder().IsMonitoring());
    EXPECT_EQ(m_device.starts, 1);
    EXPECT_EQ(SetLive(voice, true).Value, 0);
    EXPECT_EQ(Messages().LastText(), "LiveInput_Class::MsgHandler\nLive input already set");
    SetLive(Voice(1).ClassID(), false);
    EXPECT_TRUE(Recorder().IsMonitoring());
    SetLive(voice, false);
    EXPECT_FALSE(Recorder().IsMonitoring());
    EXPECT_FALSE(InUse()) << "the device is free";

    SetLive(voice, true);
    Select(Voice(1).ClassID());
    EXPECT_FALSE(Recorder().IsMonitoring());
    EXPECT_FALSE(Voice(0).LiveStatus);
}

TEST_F(RecorderClass, MonitoringGoesThroughATake)
{
    const core::ClassID voice = Voice(0).ClassID();
    SetLive(voice, true);
    Start();
    EXPECT_EQ(m_device.starts, 2);
    EXPECT_EQ(Loudness(), 1);
    SetLive(voice, false);
    EXPECT_EQ(Loudness(), 0);
    SetLive(voice, true);
    EXPECT_EQ(Loudness(), 1);
    ASSERT_TRUE(m_device.Deliver(100, 500));
    Stop();
    EXPECT_TRUE(Recorder().IsMonitoring()) << "comes back";
    EXPECT_EQ(m_device.starts, 3);

    SetLive(voice, false);
    Start();
    EXPECT_EQ(Loudness(), 0);
    Select(Voice(1).ClassID());
    EXPECT_TRUE(SetLive(Voice(1).ClassID(), true).CancelDelivery) << "the input goes to another channel";
    ASSERT_TRUE(m_device.Deliver(100, 500));
    Stop();
    EXPECT_FALSE(Recorder().IsMonitoring());
    EXPECT_EQ(m_device.starts, 4);

    // A channel that is left in mid-take is heard until its end, and then no longer shown as live.
    Select(voice);
    SetLive(voice, true);
    Start();
    Select(Voice(1).ClassID());
    EXPECT_TRUE(Voice(0).LiveStatus);
    ASSERT_TRUE(m_device.Deliver(100, 500));
    Stop();
    EXPECT_FALSE(Recorder().IsMonitoring() || Voice(0).LiveStatus);
}

TEST_F(RecorderClass, MonitoringEndsWithWhatUndoTakesAway)
{
    const core::ClassID voice = Voice(0).ClassID();
    m_project->Undo->AddUndo("before", project::kUndoProject);
    SetLive(voice, true);
    m_project->Undo->Undo();
    EXPECT_FALSE(Recorder().IsMonitoring());
    EXPECT_EQ(Recorder().RecordOnChannel(), voice);
    m_project->Undo->Redo();
    EXPECT_FALSE(Recorder().IsMonitoring() || Voice(0).LiveStatus) << "no undo turns the microphone on";

    m_project->Undo->AddUndo("before", project::kUndoProject);
    Select(Send(core::Msg_AddVoiceChannel).NewChannelID);
    SetLive(Recorder().RecordOnChannel(), true);
    ASSERT_TRUE(Recorder().IsMonitoring());
    m_project->Undo->Undo();
    EXPECT_FALSE(Recorder().IsMonitoring());
    EXPECT_EQ(Recorder().RecordOnChannel(), core::kUnsetFloat);
    EXPECT_FALSE(InUse()) << "the device is free";
}

TEST_F(RecorderClass, FailedStartsLeaveAllAsItWas)
{
    const core::ClassID voice = Voice(0).ClassID();
    SetLive(voice, true);
    m_project->Undo->AddUndo("edit", project::kUndoProject);
    m_project->Undo->Undo();
    m_project->Modified = false;
    const auto fails = [&] {
        EXPECT_TRUE(Start().CancelDelivery);
        EXPECT_FALSE(Recorder().isRecording());
        EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");
        EXPECT_EQ(m_project->Undo->CurRedo_Title(), "Redo edit");
        EXPECT_FALSE(m_project->Modified);
        EXPECT_EQ(m_project->LastRecTimePos, core::kUnset);
        EXPECT_THAT(Files(), IsEmpty());
        EXPECT_FALSE(m_project->Player->isPlaying());
        return Messages().shown.empty() ? std::string() : Messages().shown.back().title + ": " + Messages().LastText();
    };

    m_environment.files.freeBytes = 100 * kMegabyte - 1;
    EXPECT_THAT(fails(), HasSubstr("You need at least 100 MB of free disk space to record.\n"
                                   "Current free space: 99.99 MB"));
    EXPECT_EQ(m_device.starts, 1) << "monitoring was not touched";
    m_environment.files.freeBytes.reset();

    m_environment.files.FailEach(testing::FileOperation::WriteText);
    EXPECT_THAT(fails(), HasSubstr("Error [Rec]: No journal of the recording can be written"));
    EXPECT_TRUE(Recorder().IsMonitoring() && Voice(0).LiveStatus);
    m_environment.files.Repair();

    const std::string folder = Recorder().ProjectFolder;
    Recorder().ProjectFolder = m_environment.Path("nowhere");
    EXPECT_EQ(fails(), "Error [Rec]: AudioInput_Class::StartCapture\nError starting encoder [Error creating file]");
    EXPECT_TRUE(Recorder().IsMonitoring() && Voice(0).LiveStatus);
    Recorder().ProjectFolder = folder;

    Select(-7);
    EXPECT_THAT(fails(), HasSubstr("Select a voice channel"));
    Select(Music(0).ClassID());
    EXPECT_THAT(fails(), HasSubstr("Select a voice channel"));
    Select(voice);
    SetLive(voice, true);
    Recorder().InputDeviceOverride = 99;
    EXPECT_EQ(fails(), "Error [Rec]: RecordInit: The device number specified is invalid.");
    EXPECT_FALSE(Recorder().IsMonitoring() || Voice(0).LiveStatus) << "the device is gone for monitoring too";
    EXPECT_TRUE(SetLive(voice, true).CancelDelivery);
    EXPECT_EQ(Messages().shown.back().title, "Error [Set Live]");
    EXPECT_FALSE(Voice(0).LiveStatus);

    const ScriptedCapture refusing({}, true);
    Recorder().InputDeviceOverride = refusing.Number();
    EXPECT_THAT(fails(), HasSubstr("Error [Rec]: RecordStart: \n"));
    Use();
    m_environment.files.freeBytes = 100 * kMegabyte;
    EXPECT_FALSE(Start().CancelDelivery) << "just enough";
}

TEST_F(RecorderClass, NamesRunOut)
{
    m_environment.files.alsoThere = [](std::string_view path) {
        return path.ends_with("- Record 1.wav") && path.find("a10000-") == path.npos;
    };
    Record(0);
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a10000- Record 1.wav at 0"));
    ASSERT_TRUE(Recorder().LoadXMLData("<Recorder_Class></Recorder_Class>"));
    EXPECT_TRUE(Start().CancelDelivery);
    EXPECT_EQ(m_environment.ports.messages.beeps, 1);
}

TEST_F(RecorderClass, ATakeIsOneStepWhateverWasEditedMeanwhile)
{
    Record(1000);
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "Undo recording");
    m_project->Undo->Undo();
    EXPECT_THAT(Clips(Voice(0)), IsEmpty());
    EXPECT_THAT(Files(), ElementsAre("a0- Record 1.wav"));
    m_project->Undo->Redo();
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 1.wav at 1000"));
    EXPECT_THAT(Files(), ElementsAre("a0- Record 1.take", "a0- Record 1.wav"));

    Start();
    ASSERT_TRUE(m_device.Deliver(100, 500));
    m_project->Undo->AddUndo("move event", project::kUndoProject);
    core::MsgParametersClass move;
    move.ChannelID = Voice(0).ClassID();
    move.EventID = Voice(0).ChannelData->GetFirstEvent_ID();
    move.NewTimePosMS = 500;
    Send(core::Msg_EventEdit_Move, move);
    Stop();
    const std::vector<std::string> all = {"a0- Record 2.wav at 1000", "a0- Record 1.wav at 1500"};
    EXPECT_EQ(Clips(Voice(0)), all);
    m_project->Undo->Undo();
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 1.wav at 1500"));
    m_project->Undo->Undo();
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 1.wav at 1000")) << "the edit, without another step";
    m_project->Undo->Redo();
    m_project->Undo->Redo();
    EXPECT_EQ(Clips(Voice(0)), all);
}

TEST_F(RecorderClass, RepeatsTheLastTakeInItsPlace)
{
    EXPECT_FALSE(m_project->util_RepeatLastRecording());
    Record(2000);
    Select(Voice(1).ClassID());
    Seek(100);
    ASSERT_TRUE(m_project->util_RepeatLastRecording());
    EXPECT_TRUE(Recorder().isRecording());
    EXPECT_EQ(Recorder().RecStartTimeMS(), 2000);
    ASSERT_TRUE(m_device.Deliver(100, 500));
    ASSERT_TRUE(m_project->util_RepeatLastRecording()) << "in mid-take";
    ASSERT_TRUE(m_device.Deliver(100, 500));
    Stop();
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 3.wav at 2000"));
    EXPECT_THAT(Clips(Voice(1)), IsEmpty());
    EXPECT_THAT(Files(), ElementsAre("a0- Record 1.wav", "a0- Record 2.wav", "a0- Record 3.take", "a0- Record 3.wav"));

    m_environment.files.freeBytes = 0;
    ASSERT_TRUE(m_project->util_RepeatLastRecording());
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 3.wav at 2000")) << "the take is dropped for another only";
    m_environment.files.freeBytes.reset();
    ASSERT_TRUE(m_project->util_RepeatLastRecording());
    EXPECT_TRUE(Recorder().isRecording());
    Stop();
    m_project->Undo->AddUndo("edit", project::kUndoMarks);
    EXPECT_FALSE(m_project->util_RepeatLastRecording()) << "other edits came since";
}

} // namespace
} // namespace velmora::audio
