#include "tests/soundlayer/TestStreams.h"

#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using Samples = std::vector<std::int16_t>;

/// Reproducible noise; the same for a frame and side whenever it is asked for.
std::int16_t Noise(std::int64_t frame, std::uint32_t side)
{
    auto x = static_cast<std::uint32_t>(frame) * 2654435761U + side * 40503U;
    x ^= x >> 15;
    x *= 2246822519U;
    return static_cast<std::int16_t>(x >> 16);
}

TestStream::Samples Constant(std::int16_t left, std::int16_t right)
{
    return [=](std::int64_t, std::uint32_t side) { return side == 0 ? left : right; };
}

TEST(Mixer, HandsASingleSourceThroughAndIsSilentWithoutOne)
{
    TestMixer mixer;
    EXPECT_EQ(PullFrames(mixer.handle, 700), Samples(1400, 0));

    TestStream source(Noise);
    ASSERT_TRUE(BASS_Mixer_StreamAddChannel(mixer.handle, source.handle, 0));
    const Samples heard = PullFrames(mixer.handle, 10'000);
    for (std::size_t i = 0; i < heard.size(); ++i) {
        ASSERT_EQ(heard[i], Noise(static_cast<std::int64_t>(i / 2), i % 2)) << i;
    }

    // What a source does not give in time is silence, and nothing of it is lost.
    source.maxFrames = 100;
    const Samples starved = PullFrames(mixer.handle, 441);
    EXPECT_EQ(starved[2 * 99], Noise(10'099, 0));
    EXPECT_EQ(starved[2 * 100], 0);
    EXPECT_EQ(PullFrames(mixer.handle, 1)[0], Noise(10'100, 0));
}

TEST(Mixer, SumsWithVolumeAndBalanceRoundedAndLimitedOnce)
{
    TestMixer mixer;
    TestStream a(Constant(1001, -1001));
    TestStream b(Constant(30'000, -30'000));
    BASS_ChannelSetAttribute(a.handle, BASS_ATTRIB_VOL, 0.5F);
    BASS_ChannelSetAttribute(b.handle, BASS_ATTRIB_PAN, 0.5F);
    BASS_Mixer_StreamAddChannel(mixer.handle, a.handle, 0);
    BASS_Mixer_StreamAddChannel(mixer.handle, b.handle, 0);
    // 500.5 + 15000 and -500.5 - 30000, halves to the even one.
    EXPECT_EQ(PullFrames(mixer.handle, 1), (Samples{15'500, -30'500}));

    TestStream c(Constant(32'000, -32'000));
    BASS_Mixer_StreamAddChannel(mixer.handle, c.handle, 0);
    EXPECT_EQ(PullFrames(mixer.handle, 3)[4], 32'767);
    EXPECT_EQ(PullFrames(mixer.handle, 3)[5], -32'768);
    // A volume acts within 0..1, whatever it is set to.
    BASS_Mixer_ChannelRemove(c.handle);
    BASS_Mixer_ChannelRemove(b.handle);
    BASS_ChannelSetAttribute(a.handle, BASS_ATTRIB_VOL, 7.0F);
    EXPECT_EQ(PullFrames(mixer.handle, 1000)[1998], 1001);
    EXPECT_FALSE(BASS_ChannelSetAttribute(a.handle, BASS_ATTRIB_VOL, std::nanf("")));
}

/// A mix in which volumes and pans change every 4096 frames, pulled in blocks of one size.
Samples MixInBlocks(std::size_t blockFrames)
{
    TestMixer inner;
    TestMixer outer;
    TestStream a(Noise);
    TestStream b(
        [](std::int64_t frame, std::uint32_t side) { return static_cast<std::int16_t>(Noise(frame, side) / 3); });
    TestStream c(Constant(9000, -9000), 48'000);
    BASS_Mixer_StreamAddChannel(inner.handle, a.handle, 0);
    BASS_Mixer_StreamAddChannel(inner.handle, b.handle, 0);
    BASS_Mixer_StreamAddChannel(outer.handle, inner.handle, 0);
    BASS_Mixer_StreamAddChannelEx(outer.handle, c.handle, 0, 4000, 12'000);
    Samples all;
    for (int section = 0; section < 6; ++section) {
        BASS_ChannelSetAttribute(a.handle, BASS_ATTRIB_VOL, section % 2 ? 0.0F : 0.8F);
        BASS_ChannelSetAttribute(inner.handle, BASS_ATTRIB_PAN, section % 3 ? -0.4F : 0.0F);
        for (std::size_t left = 4096; left > 0;) {
            const std::size_t now = std::min(left, blockFrames);
            const Samples block = PullFrames(outer.handle, now);
            all.insert(all.end(), block.begin(), block.end());
            left -= now;
        }
    }
    return all;
}

TEST(Mixer, TheSizeOfBlocksIsNotHeard)
{
    const Samples whole = MixInBlocks(4096);
    ASSERT_EQ(whole.size(), 6 * 2 * 4096U);
    for (const std::size_t blockFrames : {64, 441, 1024}) {
        EXPECT_EQ(MixInBlocks(blockFrames), whole) << blockFrames;
    }
}

TEST(Mixer, VolumeGlidesInAStraightLineOfTenMilliseconds)
{
    TestMixer mixer;
    TestStream source(Constant(20'000, 20'000));
    BASS_ChannelSetAttribute(source.handle, BASS_ATTRIB_VOL, 0.25F);
    BASS_Mixer_StreamAddChannel(mixer.handle, source.handle, 0);
    EXPECT_EQ(PullFrames(mixer.handle, 1)[0], 5000) << "the first block starts at its volume";

    BASS_ChannelSetAttribute(source.handle, BASS_ATTRIB_VOL, 1.0F);
    const Samples heard = PullFrames(mixer.handle, 882);
    for (int frame = 0; frame < 441; ++frame) {
        ASSERT_NEAR(heard[2 * static_cast<std::size_t>(frame)], 5000 + 15'000 * (frame + 1) / 441.0, 1) << frame;
    }
    EXPECT_EQ(heard[2 * 441], 20'000);
}

TEST(Mixer, ResamplesOtherRatesAndSpreadsMono)
{
    constexpr double kTone = 1000;
    const auto tone = [](double rate) {
        return [rate](std::int64_t frame, std::uint32_t) {
            return static_cast<std::int16_t>(
                std::lrint(20'000 * std::sin(2 * std::numbers::pi * kTone * static_cast<double>(frame) / rate)));
        };
    };
    for (const std::uint32_t rate : {48'000U, 22'050U, 44'099U}) {
        TestMixer mixer;
        TestStream source(tone(rate), rate, 1);
        BASS_Mixer_StreamAddChannel(mixer.handle, source.handle, 0);
        const Samples heard = PullFrames(mixer.handle, 44'100);
        double error = 0;
        for (std::size_t frame = 2000; frame < 40'000; ++frame) {
            const double expected =
                20'000 * std::sin(2 * std::numbers::pi * kTone * static_cast<double>(frame) / 44'100);
            error = std::max(error, std::abs(heard[2 * frame] - expected));
            ASSERT_EQ(heard[2 * frame], heard[2 * frame + 1]);
        }
        EXPECT_LT(error, 2.0) << rate;
    }
}

TEST(Mixer, RunsDspsByPriorityAndKeepsTheirSoundAfterSilence)
{
    TestMixer mixer;
    const auto add = [](HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user) {
        auto* samples = static_cast<std::int16_t*>(buffer);
        for (std::uint32_t i = 0; i < length / 2; ++i) {
            samples[i] = static_cast<std::int16_t>(samples[i] * 10 + static_cast<int>(user));
        }
    };
    const HDSP late = BASS_ChannelSetDSP(mixer.handle, add, 3, -5);
    BASS_ChannelSetDSP(mixer.handle, add, 1, 100);
    BASS_ChannelSetDSP(mixer.handle, add, 2, 100);
    EXPECT_EQ(PullFrames(mixer.handle, 1)[0], 123);
    EXPECT_TRUE(BASS_ChannelRemoveDSP(mixer.handle, late));
    EXPECT_FALSE(BASS_ChannelRemoveDSP(mixer.handle, late));
    TestMixer outer;
    BASS_Mixer_StreamAddChannel(outer.handle, mixer.handle, 0);
    EXPECT_EQ(PullFrames(outer.handle, 1)[0], 12);
}

TEST(Mixer, RefusesWhatCannotBeAndSaysWhy)
{
    TestMixer a;
    TestMixer b;
    TestStream source(Noise);
    ASSERT_TRUE(BASS_Mixer_StreamAddChannel(a.handle, b.handle, 0));
    EXPECT_FALSE(BASS_Mixer_StreamAddChannel(b.handle, a.handle, 0)) << "a circle";
    EXPECT_FALSE(BASS_Mixer_StreamAddChannel(a.handle, a.handle, 0));
    ASSERT_TRUE(BASS_Mixer_StreamAddChannel(b.handle, source.handle, 0));
    EXPECT_FALSE(BASS_Mixer_StreamAddChannel(a.handle, source.handle, 0));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_ALREADY);

    const HSTREAM gone = BASS_Mixer_StreamCreate(44'100, 2, BASS_STREAM_DECODE);
    ASSERT_TRUE(BASS_Mixer_StreamAddChannel(gone, a.handle, 0));
    EXPECT_TRUE(BASS_StreamFree(gone));
    EXPECT_FALSE(BASS_StreamFree(gone));
    EXPECT_EQ(BASS_ErrorGetCode(), SOUND_ERROR_HANDLE);
    EXPECT_EQ(BASS_ChannelGetData(gone, nullptr, 0), UINT32_MAX);
    EXPECT_EQ(BASS_ChannelSetDSP(gone, nullptr, 0, 0), 0U);
    // Its sources are free again.
    TestMixer c;
    EXPECT_TRUE(BASS_Mixer_StreamAddChannel(c.handle, a.handle, 0));
    EXPECT_FALSE(BASS_Mixer_StreamAddChannel(source.handle, c.handle, 0)) << "no mixer";
    EXPECT_EQ(BASS_Mixer_StreamCreate(44'100, 6, 0), 0U);

    // Handles are not used again.
    std::vector<HSTREAM> seen;
    for (int i = 0; i < 40'000; ++i) {
        seen.push_back(BASS_Mixer_StreamCreate(44'100, 2, BASS_STREAM_DECODE));
        BASS_StreamFree(seen.back());
    }
    std::ranges::sort(seen);
    EXPECT_EQ(std::ranges::adjacent_find(seen), seen.end());
}

} // namespace
} // namespace velmora::soundlayer
