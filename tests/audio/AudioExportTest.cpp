#include "core/MsgIds.h"
#include "project/ChannelDataClass.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"

#include <algorithm>
#include <cstdlib>
#include <random>

namespace velmora::audio {
namespace {

/// Left counts frames, right is its negative: even, so that halves are exact.
std::int16_t CountAt(std::int64_t frame)
{
    return static_cast<std::int16_t>(2 * (frame % 5000) - 5000);
}

WavSound Counter(std::int64_t frames)
{
    WavSound sound;
    for (std::int64_t i = 0; i < frames; ++i) {
        sound.samples.push_back(CountAt(i));
        sound.samples.push_back(static_cast<std::int16_t>(-CountAt(i)));
    }
    return sound;
}

WavSound Noise(std::int32_t rate, std::size_t samples)
{
    std::mt19937 random(4711);
    WavSound sound{rate, 1, {}};
    for (std::size_t i = 0; i < samples; ++i) {
        sound.samples.push_back(static_cast<std::int16_t>(static_cast<std::int32_t>(random() % 20001) - 10000));
    }
    return sound;
}

WavSound Constant(std::int16_t level, std::size_t frames)
{
    return {44100, 1, std::vector<std::int16_t>(frames, level)};
}

std::int64_t FrameOf(std::int64_t ms)
{
    return ms * 441 / 10;
}

TEST_F(ExportTest, MixIsThatOfTheClipsToTheSample)
{
    const std::string file = m_environment.Path("sounds\\count.wav");
    constexpr std::int64_t kFileFrames = 70'000;
    WriteWav(file, Counter(kFileFrames));
    struct Clip {
        std::int64_t time, start, end;
        double factor;
    };
    // The last one outlasts its file.
    const std::vector<Clip> clips = {
        {15, 0, 500, 1}, {333, 777, 1778, 0.5}, {1001, 100, 1234, 0.5}, {900, 1400, 1950, 1}};
    project::Channel_Class& half = AddChannel(50);
    AddClip(*m_channel, file, 15, 0, 500);
    AddClip(*m_channel, file, 333, 777, 1778, 0.5);
    AddClip(half, file, 1001, 100, 1234);
    AddClip(*m_channel, file, 900, 1400, 1950);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);

    const WavSound mix = Mix();
    ASSERT_EQ(mix.Frames(), 94153u) << "the end of the last clip at 2135 ms";
    for (std::int64_t n = 0; n < 94153; ++n) {
        double expected = 0;
        for (const Clip& clip : clips) {
            // ceil of the distance between file and timeline, which may be below 0.
            const std::int64_t distance = (clip.start - clip.time) * 441;
            const std::int64_t fileFrame = n + (distance >= 0 ? (distance + 9) / 10 : distance / 10);
            if (n >= FrameOf(clip.time) && n < FrameOf(clip.time + clip.end - clip.start) && fileFrame < kFileFrames) {
                expected += CountAt(fileFrame) * clip.factor;
            }
        }
        const auto left = static_cast<std::size_t>(2 * n);
        ASSERT_EQ(mix.samples[left], expected) << "frame " << n;
        ASSERT_EQ(mix.samples[left + 1], -expected) << "frame " << n;
    }
    EXPECT_EQ(m_environment.ports.messages.LastText(), "Done");
    EXPECT_EQ(m_environment.ports.messages.shown.back().title, "Export project");
    EXPECT_EQ(FilesBesideTheMix(), (std::vector<std::string>{"mix.wav", "paths.cfg"}));
    EXPECT_EQ(m_progress.positions, (std::vector<std::int64_t>{300, 600, 900, 1200, 1500, 1800, 2100, 2135}));
    EXPECT_EQ(m_progress.total, 2135);
    EXPECT_GT(m_progress.loudest, 10);
    EXPECT_GE(m_environment.ports.pendingEvents.runs, 8);

    // The same bytes again, whoever decodes.
    Sound_SetThreads(1);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    Sound_SetThreads(0);
    EXPECT_EQ(Mix().samples, mix.samples);
}

TEST_F(ExportTest, FadesKeepWithinOneStepOfTheStraightLine)
{
    const std::string file = m_environment.Path("sounds\\constant.wav");
    WriteWav(file, Constant(10000, 88200));
    project::CDC_Event_Wave_Class& clip = AddClip(*m_channel, file, 23, 0, 1000);
    clip.FadeIn_EndMS = 200;
    clip.FadeOut_StartMS = 700;
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);

    const WavSound mix = Mix();
    ASSERT_EQ(mix.Frames(), static_cast<std::size_t>(FrameOf(1023)));
    for (std::size_t n = 0; n < mix.Frames(); ++n) {
        const double place = static_cast<double>(n) / 44.1 - 23;
        double ideal = place < 0 ? 0 : std::min(1.0, place / 200);
        ideal = place > 700 ? 1 - (place - 700) / 300 : ideal;
        const double slack = place < 220 ? 10000 * 10.0 / 200 : (place > 700 ? 10000 * 10.0 / 300 : 0);
        ASSERT_NEAR(mix.samples[2 * n], 10000 * ideal, slack + 0.5) << "at " << place << " ms of the clip";
    }

    // Starts and ends of others between its steps do not move a fade.
    WriteWav(m_environment.Path("sounds\\silence.wav"), Constant(0, 441));
    AddClip(*m_channel, m_environment.Path("sounds\\silence.wav"), 111, 0, 7);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    EXPECT_EQ(Mix().samples, mix.samples);
}

TEST_F(ExportTest, SplitIsInaudible)
{
    for (const std::int32_t rate : {44100, 48000}) {
        const std::string file = m_environment.Path("sounds\\noise" + std::to_string(rate) + ".wav");
        WriteWav(file, Noise(rate, static_cast<std::size_t>(rate)));
        m_channel->ChannelData->DeleteAllEvents();
        AddClip(*m_channel, file, 7, 13, 900, 0.77);
        ASSERT_EQ(Export(), AudioExport::Outcome::Done);
        const WavSound whole = Mix();

        m_channel->ChannelData->DeleteAllEvents();
        std::int32_t begin = 13;
        for (const std::int32_t end : {14, 101, 444, 445, 827, 900}) {
            AddClip(*m_channel, file, 7 + begin - 13, begin, end, 0.77);
            begin = end;
        }
        ASSERT_EQ(Export(), AudioExport::Outcome::Done);
        const WavSound split = Mix();
        ASSERT_EQ(split.Frames(), whole.Frames());
        const int tolerance = rate == 44100 ? 0 : 1;
        for (std::size_t i = 0; i < whole.samples.size(); ++i) {
            ASSERT_NEAR(split.samples[i], whole.samples[i], tolerance) << "sample " << i << " at " << rate << " Hz";
        }
    }
}

TEST_F(ExportTest, MoreClipsAtOnceThanAreOpenedAhead)
{
    const std::string file = m_environment.Path("sounds\\constant.wav");
    WriteWav(file, Constant(100, 44100));
    for (int i = 0; i < 300; ++i) {
        AddClip(*m_channel, file, i, 0, 600);
    }
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    const WavSound mix = Mix();
    ASSERT_EQ(mix.Frames(), static_cast<std::size_t>(FrameOf(899)));
    EXPECT_EQ(mix.samples[2 * static_cast<std::size_t>(FrameOf(250))], 100 * 251);
    EXPECT_EQ(mix.samples[2 * static_cast<std::size_t>(FrameOf(450))], 100 * 300);
    EXPECT_EQ(mix.samples[2 * static_cast<std::size_t>(FrameOf(899)) - 2], 100);
}

TEST_F(ExportTest, FileHasTheRateAndChannelsAskedFor)
{
    const std::string file = m_environment.Path("sounds\\constant.wav");
    WriteWav(file, Constant(8000, 88200));
    AddClip(*m_channel, file, 0, 0, 2000);
    m_export->SampleRate = 22050;
    m_export->Channels = 1;
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    const WavSound mix = Mix();
    EXPECT_EQ(mix.rate, 22050);
    EXPECT_EQ(mix.channels, 1);
    EXPECT_EQ(mix.Frames(), 44100u);
    EXPECT_NEAR(mix.samples[22050], 8000, 1);
}

TEST_F(ExportTest, WmaHoldsTheMix)
{
    const std::string file = m_environment.Path("sounds\\noise.wav");
    WriteWav(file, Noise(44100, 88200));
    AddClip(*m_channel, file, 0, 0, 2000);
    m_export->encoder_Format(AudioExport::kWma);
    m_export->FilePath = m_environment.Path("mix.wma");
    m_export->Bitrate = 128000;
    ASSERT_EQ(Export(), AudioExport::Outcome::Done) << m_environment.ports.messages.LastText();

    const std::string posix = (m_environment.folder.Posix() / "mix.wma").string();
    const HSTREAM stream = BASS_WMA_StreamCreateFile(0, posix.c_str(), 0, 0, BASS_STREAM_DECODE);
    ASSERT_NE(stream, 0u);
    const double seconds = BASS_ChannelBytes2Seconds(stream, BASS_ChannelGetLength(stream, BASS_POS_BYTE));
    EXPECT_NEAR(seconds, 2, 0.2);
    std::vector<std::int16_t> block(44100);
    ASSERT_EQ(BASS_ChannelGetData(stream, block.data(), 88200), 88200u);
    EXPECT_GT(*std::ranges::max_element(block), 5000);
    BASS_StreamFree(stream);
    EXPECT_EQ(FilesBesideTheMix(), (std::vector<std::string>{"mix.wma", "paths.cfg"}));
}

TEST_F(ExportTest, CancelledExportKeepsWhatItHas)
{
    const std::string file = m_environment.Path("sounds\\constant.wav");
    WriteWav(file, Constant(8000, 88200));
    AddClip(*m_channel, file, 0, 0, 2000);
    m_progress.cancelAtMS = 900;
    EXPECT_EQ(Export(), AudioExport::Outcome::Cancelled);
    EXPECT_EQ(Mix().Frames(), static_cast<std::size_t>(FrameOf(900)));
    EXPECT_TRUE(m_environment.ports.messages.shown.empty());

    // A button that is pressed while the interface runs ends it too. What was set just before holds from frame 0.
    Send(core::Msg_Channel_SetVolume, m_channel->ClassID(), 50);
    m_progress.cancelAtMS = -1;
    m_environment.ports.pendingEvents.Post([this] { m_export->StopExport(); });
    EXPECT_EQ(Export(), AudioExport::Outcome::Cancelled);
    EXPECT_LT(Mix().Frames(), 88200u);
    EXPECT_EQ(Mix().samples.front(), 4000);
}

TEST_F(ExportTest, EmptyProjectGivesAFileWithoutSound)
{
    EXPECT_EQ(Export(), AudioExport::Outcome::Done);
    EXPECT_EQ(Mix().Frames(), 0u);
    EXPECT_EQ(m_environment.ports.messages.Texts(), (std::vector<std::string>{"Done"}));
}

} // namespace
} // namespace velmora::audio
