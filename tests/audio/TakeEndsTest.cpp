#include "audio/AudioExport.h"
#include "core/Paths.h"
#include "tests/audio/RecorderFixture.h"
#include "tests/audio/SoundFixture.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/SmallDisk.h"

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

/// Takes that something else ends than their user, and what goes wrong in them.
class TakeEnds : public RecorderTest {};

TEST_F(TakeEnds, ATakeEndsBeforeItsChannelIsDeleted)
{
    for (const bool noted : {true, false}) {
        const std::string title = Voice(1).Title;
        Select(Voice(1).ClassID());
        SetLive(Voice(1).ClassID(), true);
        Start();
        ASSERT_TRUE(m_device.Deliver(100, 500));
        if (noted) {
            m_project->Undo->AddUndo("delete channel", project::kUndoProject);
        }
        SendToChannel(core::Msg_DeleteChannel, Voice(1).ClassID(), 0);
        EXPECT_FALSE(Recorder().isRecording() || Recorder().IsMonitoring());
        EXPECT_EQ(Recorder().RecordOnChannel(), core::kUnsetFloat);
        EXPECT_NE(Voice(1).Title, title);
        EXPECT_FALSE(InUse()) << "the device is free";
        if (noted) {
            m_project->Undo->Undo();
            EXPECT_EQ(Clips(Voice(1)).size(), 1U) << "the channel comes back with its take";
        }
        m_project->Undo->Undo();
        EXPECT_EQ(Voice(1).Title, title);
        EXPECT_THAT(Clips(Voice(1)), IsEmpty());
    }
}

TEST_F(TakeEnds, EndsByItselfWhenTheDeviceGoes)
{
    Start();
    ASSERT_TRUE(m_device.Deliver(300, 500));
    m_device.Skip(250);
    ASSERT_TRUE(m_device.Deliver(600, 501));
    m_environment.ports.timers.Advance(1s);
    EXPECT_TRUE(Recorder().isRecording());
    m_device.Lose();
    EXPECT_TRUE(EndsByItself());
    ASSERT_EQ(Clips(Voice(0)).size(), 1U);
    ASSERT_EQ(Messages().shown.size(), 2U);
    EXPECT_THAT(Messages().shown[0].text, HasSubstr("the input device is gone.\nWhat was recorded until then is on "
                                                    "the channel \"Voice 1\""));
    EXPECT_THAT(Messages().shown[1].text, HasSubstr("left out 250 ms"));
    const WavSound file = ReadWav(m_project->FixAudioFilePath("a0- Record 1.wav"));
    const auto first = std::ranges::find(file.samples, 500);
    const auto after = std::ranges::find(file.samples, 501);
    EXPECT_EQ((after - first) / 2, 44'100 * 550 / 1000) << "what follows the gap is in time";
}

TEST_F(TakeEnds, EndsByItselfWhenTheDiskIsFull)
{
    Start();
    {
        const testing::FileSizeLimit limit(1'000'000);
        ASSERT_TRUE(m_device.Deliver(20'000, 500));
        EXPECT_TRUE(EndsByItself());
    }
    EXPECT_THAT(Messages().LastText(),
                HasSubstr("its file could not be written:\n" + m_project->FixAudioFilePath("a0- Record 1.wav")));
    ASSERT_EQ(Clips(Voice(0)).size(), 1U);
    EXPECT_GT(Voice(0).ChannelData->InTimeOrder().front()->EventOBJ->EndMS, 4000);
}

TEST_F(TakeEnds, KeepsATakeOnADiskThatIsReallyFull)
{
    const testing::SmallDisk disk(core::PosixPath(m_project->GetAudioPath()), 110'000'000);
    if (!disk.Mounted()) {
        GTEST_SKIP() << "no disk can be mounted here";
    }
    Seek(1000);
    Start();
    ASSERT_TRUE(Recorder().isRecording()) << Messages().LastText();
    disk.FillBut(1'000'000);
    ASSERT_TRUE(m_device.Deliver(20'000, 500));
    EXPECT_TRUE(EndsByItself());
    ASSERT_EQ(Messages().shown.size(), 1U);
    EXPECT_THAT(Messages().LastText(), HasSubstr("its file could not be written"));
    EXPECT_THAT(Clips(Voice(0)), ElementsAre("a0- Record 1.wav at 1000"));
    EXPECT_GT(Voice(0).ChannelData->InTimeOrder().front()->EventOBJ->EndMS, 4000);
    EXPECT_THAT(Files(), ElementsAre("a0- Record 1.take", "a0- Record 1.wav", "filler"));
    EXPECT_THAT(Journal("a0- Record 1.wav"), HasSubstr("<TimePosMS>float: 1000</TimePosMS>"));
    EXPECT_TRUE(Start().CancelDelivery);
    EXPECT_THAT(Messages().LastText(), HasSubstr("You need at least 100 MB of free disk space to record."));

    disk.MakeRoom();
    Record(6000);
    EXPECT_EQ(Clips(Voice(0)).size(), 2U);
}

TEST_F(TakeEnds, TellsOfADeadAndOfALoudInput)
{
    EXPECT_FALSE(Recorder().InputIsSilent());
    Start();
    ASSERT_TRUE(m_device.Deliver(2500, 1));
    EXPECT_FALSE(Recorder().InputIsSilent() || Recorder().InputClipped());
    ASSERT_TRUE(m_device.Deliver(3500, 0));
    EXPECT_TRUE(testing::Becomes([&] { return Recorder().InputIsSilent(); }));
    ASSERT_TRUE(m_device.Deliver(50, 32'767));
    EXPECT_TRUE(testing::Becomes([&] { return Recorder().InputClipped(); }));
    EXPECT_FALSE(Recorder().InputIsSilent());
    Stop();
    EXPECT_FALSE(Recorder().InputClipped());
}

TEST_F(TakeEnds, ATakeAndTheProjectsFile)
{
    const std::string path = SaveSong();
    Use(2);
    Start();
    ASSERT_TRUE(m_device.Deliver(100, 500));
    ASSERT_TRUE(m_project->SaveProject(""));
    EXPECT_TRUE(Recorder().isRecording());
    EXPECT_THAT(Files(), Contains("a0- Record 1.take"));
    ASSERT_TRUE(m_project->SaveProject(m_environment.Path("Other.audioproj")));
    EXPECT_FALSE(Recorder().isRecording()) << "its file cannot move while it grows";
    EXPECT_THAT(Clips(Voice(2)), ElementsAre("a0- Record 1.wav at 0"));

    // The end of the program in mid-take: what a crash leaves is no more than this.
    ASSERT_TRUE(Load(path));
    Use(1);
    Seek(1234);
    Start();
    ASSERT_TRUE(m_device.Deliver(300, 500));
    m_project.reset();
    EXPECT_FALSE(InUse()) << "the device is free";
    Messages().Expect(core::Answer::Yes);
    ASSERT_TRUE(Load(path));
    ASSERT_TRUE(Messages().AllAsked());
    const auto clips = Clips(Voice(1));
    ASSERT_EQ(clips.size(), 1U);
    EXPECT_THAT(clips[0], HasSubstr(" at 1234"));
}

TEST_F(TakeEnds, ExportEndsATakeAndOpensNoDeviceForSavedButtons)
{
    ScriptedProgress progress;
    const auto exported = [&] {
        AudioExport run(*m_environment, *m_project, progress);
        run.SampleRate = 44100;
        run.Channels = 2;
        run.FilePath = m_environment.Path("mix.wav");
        run.encoder_Format(AudioExport::kWav);
        run.StartExport();
        return run.Result() == AudioExport::Outcome::Done;
    };
    Start();
    ASSERT_TRUE(m_device.Deliver(500, 500));
    ASSERT_TRUE(exported());
    EXPECT_FALSE(Recorder().isRecording());
    EXPECT_GT(ReadWav(m_environment.Path("mix.wav")).Frames(), 0U);

    SetLive(Voice(0).ClassID(), true);
    const std::string path = m_environment.Path("Song.audioproj");
    ASSERT_TRUE(m_project->SaveProject(path));
    ASSERT_TRUE(Load(path, project::OpenMode::ReadOnly));
    Recorder().InputDeviceOverride = m_device.Number();
    ASSERT_TRUE(Voice(0).LiveStatus);
    const int starts = m_device.starts;
    ASSERT_TRUE(exported());
    EXPECT_EQ(m_device.starts, starts);
    EXPECT_TRUE(Voice(0).LiveStatus);
}

} // namespace
} // namespace velmora::audio
