#include "engine/internal/MetronomeClick.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::engine {
namespace {

constexpr std::int32_t kRate = 44'100;
/// Not a whole number of frames: 19894.7 of them.
constexpr double kPeriodMS = 60'000.0 / 133;
using Samples = std::vector<std::int16_t>;

/// The click of a file over a clock that is driven by hand.
class Click : public ::testing::Test {
protected:
    ~Click() override
    {
        click.Set(false, 0, 0, kRate);
        BASS_StreamFree(m_file);
        std::filesystem::remove(m_path);
    }

    /// A file whose frame n has n + 1 on the left and its negative on the right, as the click's plain stream.
    HSTREAM File(std::int32_t frames)
    {
        const auto count = [](HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user) {
            auto& frame = *reinterpret_cast<std::int16_t*>(user);
            auto* out = static_cast<std::int16_t*>(buffer);
            for (std::uint32_t i = 0; i < length / 4; ++i) {
                ++frame;
                out[2 * i] = frame;
                out[2 * i + 1] = static_cast<std::int16_t>(-frame);
            }
            return length;
        };
        BASS_StreamFree(m_file);
        std::int16_t frame = 0;
        const HSTREAM source =
            BASS_StreamCreate(kRate, 2, BASS_STREAM_DECODE, count, reinterpret_cast<SOUND_USER>(&frame));
        const WAVEFORMATEX format{1, 2, kRate, kRate * 4, 4, 16, 0};
        const HENCODE encoder = BASS_Encode_StartACMFile(source, &format, 0, m_path.c_str());
        Samples samples(2 * static_cast<std::size_t>(frames));
        BASS_ChannelGetData(source, samples.data(), static_cast<std::uint32_t>(samples.size() * 2));
        EXPECT_TRUE(BASS_Encode_Stop(encoder));
        BASS_StreamFree(source);
        clickFrames = frames;
        return m_file = BASS_StreamCreateFile(0, m_path.c_str(), 0, 0, 0);
    }

    void Seek(std::int64_t frame)
    {
        auto plan = std::make_unique<PlaybackPlan>();
        plan->jumpTo = frame;
        mixSide.Publish(std::move(plan));
    }

    /// The next block, or nothing while the click gives none.
    Samples Mix(std::uint32_t frames)
    {
        Samples block(2 * std::size_t{mixSide.BeforeBlock(frames)});
        const std::uint32_t bytes =
            BASS_ChannelGetData(click.Stream(), block.data(), static_cast<std::uint32_t>(block.size() * 2));
        block.resize(bytes == UINT32_MAX ? 0 : bytes / 2);
        return block;
    }

    /// The left sample at a frame of the timeline: that many frames after the last tick.
    std::int16_t Expected(std::int64_t frame, double periodMS) const
    {
        const double period = periodMS * kRate / 1000;
        auto tick = static_cast<std::int64_t>(static_cast<double>(frame) / period) + 2;
        while (std::floor(static_cast<double>(tick) * period) > static_cast<double>(frame)) {
            --tick;
        }
        const std::int64_t since = frame - static_cast<std::int64_t>(static_cast<double>(tick) * period);
        return static_cast<std::int16_t>(since < clickFrames ? since + 1 : 0);
    }

    void ExpectTicks(const Samples& heard, std::int64_t from, double periodMS) const
    {
        for (std::size_t i = 0; i < heard.size(); i += 2) {
            const std::int64_t frame = from + static_cast<std::int64_t>(i / 2);
            ASSERT_EQ(heard[i], Expected(frame, periodMS)) << frame;
            ASSERT_EQ(heard[i + 1], -heard[i]) << frame;
        }
    }

    MixSide mixSide;
    MetronomeClick click{mixSide};
    std::int64_t clickFrames = 0;

private:
    const std::string m_path =
        (std::filesystem::temp_directory_path() / ("velmora-click-" + std::to_string(getpid()) + ".wav")).string();
    HSTREAM m_file = 0;
};

TEST_F(Click, TicksFallOnTheirSampleFromPositionZeroInBlocksOfAnySize)
{
    click.Set(true, kPeriodMS, File(3000), kRate);
    EXPECT_TRUE(Mix(512).empty()) << "the clock is held";
    mixSide.clock.Play();
    std::mt19937 random(1);
    for (std::int64_t at = 0; at < 12 * kRate;) {
        const Samples block = Mix(1 + static_cast<std::uint32_t>(random() % 4096));
        ASSERT_FALSE(block.empty());
        ExpectTicks(block, at, kPeriodMS);
        at += static_cast<std::int64_t>(block.size() / 2);
    }
    // Seeks, into ticks and between them, do not move the ticks.
    for (int i = 0; i < 200; ++i) {
        const auto to = static_cast<std::int64_t>(random() % (3 * 3600) * kRate + random() % kRate);
        Seek(to);
        ExpectTicks(Mix(4096), to, kPeriodMS);
    }
    mixSide.clock.Pause();
    EXPECT_TRUE(Mix(512).empty());
    // A new tempo counts from position 0 as well; a click longer than its period starts anew at each tick.
    mixSide.clock.Play();
    click.Set(true, 10, File(3000), kRate);
    const std::int64_t at = mixSide.clock.Frames();
    ExpectTicks(Mix(4000), at, 10);
}

TEST_F(Click, VolumeFollowsItsStreamAndWhatCannotSoundIsSilent)
{
    const HSTREAM file = File(100);
    click.Set(true, 500, file, kRate);
    mixSide.clock.Play();
    BASS_ChannelSetAttribute(file, BASS_ATTRIB_VOL, 0.25F);
    Mix(100);
    float volume = 0;
    BASS_ChannelGetAttribute(click.Stream(), BASS_ATTRIB_VOL, &volume);
    EXPECT_EQ(volume, 0.25F);

    const HSTREAM sounding = click.Stream();
    click.Set(false, 500, file, kRate);
    EXPECT_EQ(click.Stream(), 0U);
    EXPECT_FALSE(BASS_StreamFree(sounding)) << "freed already";
    const HSTREAM noFile = BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE);
    for (const auto& [period, stream] : std::vector<std::pair<double, HSTREAM>>{
             {500, 0}, {500, 0xFFFFFFFF}, {500, noFile}, {0, file}, {-5, file}, {NAN, file}, {1e-300, file}}) {
        click.Set(true, period, stream, kRate);
        EXPECT_TRUE(Mix(100).empty()) << period;
    }
    BASS_StreamFree(noFile);
    // One tick, at position 0, and never another.
    click.Set(true, 1e300, file, kRate);
    Seek(0);
    ExpectTicks(Mix(4000), 0, 1e9);
}

} // namespace
} // namespace velmora::engine
