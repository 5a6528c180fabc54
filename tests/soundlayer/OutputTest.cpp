#include "soundlayer/internal/Output.h"

#include "tests/soundlayer/TestStreams.h"
#include "tests/support/Becomes.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// A device that the test drives block by block.
class HandDriven final : public AudioDevice {
public:
    bool Start(std::uint32_t, Callback callback) override
    {
        m_callback = std::move(callback);
        return true;
    }
    void Stop() override { m_callback = nullptr; }
    std::uint32_t LatencyMS() const override { return 0; }
    std::uint32_t MinBufferMS() const override { return 10; }
    void SetMayRest(bool may) override { mayRest = may; }

    std::atomic<bool> mayRest{false};

    std::vector<std::int16_t> Ask(std::size_t frames)
    {
        std::vector<std::int16_t> block(2 * frames);
        m_callback(block.data(), frames, SoundClock::now());
        return block;
    }

private:
    Callback m_callback;
};

/// Counts up in every frame, so that a frame lost or given twice is seen.
class Counting final : public Stream {
public:
    Counting()
        : Stream(44'100, 2, 0)
    {
    }

protected:
    Block Generate(std::int16_t* out, std::size_t frames) override
    {
        for (std::size_t i = 0; i < frames; ++i) {
            ++m_count;
            out[2 * i] = static_cast<std::int16_t>(m_count & 0x7FFF);
            out[2 * i + 1] = static_cast<std::int16_t>(m_count >> 15);
        }
        return {frames, false, false};
    }

private:
    std::int32_t m_count = 0;
};

TEST(Output, TheDeviceGetsEveryFrameOnceAndCountsWhatIsMissing)
{
    GraphEdits edits;
    auto owned = std::make_unique<HandDriven>();
    HandDriven& device = *owned;
    Output output(std::move(owned), 44'100, edits);
    output.SetBuffer(100, 5);
    ASSERT_TRUE(output.Start());
    EXPECT_EQ(device.Ask(1000), std::vector<std::int16_t>(2000, 0));
    EXPECT_EQ(output.MissedFrames(), 0U) << "nothing plays, so nothing is missed";

    std::atomic<std::uint64_t> beats{0};
    output.SetHeartbeat(
        [](std::uint32_t frames, SOUND_USER user) {
            const std::uint32_t now = (frames + 1) / 2;
            *reinterpret_cast<std::atomic<std::uint64_t>*>(user) += now;
            return now;
        },
        reinterpret_cast<SOUND_USER>(&beats));
    output.Play(std::make_shared<Counting>());
    std::int32_t last = 0;
    std::uint64_t heard = 0;
    while (heard < 100'000) {
        const auto block = device.Ask(64);
        for (std::size_t i = 0; i < block.size(); i += 2) {
            const std::int32_t count = block[i] + (block[i + 1] << 15);
            if (count != 0) {
                ASSERT_EQ(count, last + 1);
                last = count;
                ++heard;
            }
        }
    }
    EXPECT_GE(beats, heard);
    EXPECT_LE(beats, heard + 5 * 4410) << "the ring holds no more than its buffer";
}

TEST(Output, MixesWhenToldToWhateverItsPeriod)
{
    GraphEdits edits;
    auto owned = std::make_unique<HandDriven>();
    HandDriven& device = *owned;
    Output output(std::move(owned), 44'100, edits);
    output.SetBuffer(100, 3'600'000);
    ASSERT_TRUE(output.Start());
    const auto mixes = [&](std::uint64_t frames) {
        while (output.MixedFrames() < frames) {
            std::this_thread::yield();
        }
    };
    output.Play(std::make_shared<Counting>());
    mixes(4410);
    device.Ask(441);
    output.MixNow();
    mixes(4851);
    output.MixNow();
    device.Ask(441);
    mixes(5292);
    EXPECT_EQ(output.MixedFrames(), 5292U);
}

TEST(Output, TheDeviceMayRestAfterTenSecondsOfSilenceUnlessSomebodyIsAwake)
{
    GraphEdits edits;
    auto owned = std::make_unique<HandDriven>();
    HandDriven& device = *owned;
    Output output(std::move(owned), 44'100, edits);
    output.SetBuffer(100, 1);
    ASSERT_TRUE(output.Start());
    const auto mixMore = [&](std::uint64_t frames) {
        const std::uint64_t end = output.MixedFrames() + frames;
        while (output.MixedFrames() < end) {
            device.Ask(441);
        }
    };
    output.Play(std::make_shared<MixerStream>(44'100, BASS_MIXER_NONSTOP));
    output.SetAwake(true);
    mixMore(15 * 44'100);
    output.SetAwake(false);
    mixMore(9 * 44'100);
    EXPECT_FALSE(device.mayRest);
    mixMore(2 * 44'100);
    EXPECT_TRUE(testing::Becomes([&] { return device.mayRest.load(); }));
    output.Play(std::make_shared<Counting>());
    mixMore(2 * 4410);
    EXPECT_TRUE(testing::Becomes([&] { return !device.mayRest; })) << "whoever it was";
}

TEST(Output, StoppingHandsTheStreamBack)
{
    ASSERT_TRUE(BASS_Init(0, 44'100, 0, nullptr, nullptr));
    const HSTREAM device = BASS_Mixer_StreamCreate(44'100, 2, BASS_MIXER_NONSTOP);
    TestMixer master;
    BASS_Mixer_StreamAddChannel(device, master.handle, 0);
    ASSERT_TRUE(BASS_ChannelPlay(device, 0));
    EXPECT_TRUE(PullFrames(master.handle, 10).empty());
    EXPECT_EQ(BASS_ErrorGetCode(), SOUND_ERROR_DECODE);

    ASSERT_TRUE(BASS_ChannelStop(device));
    ASSERT_TRUE(BASS_Mixer_ChannelRemove(master.handle));
    TestStream source([](std::int64_t, std::uint32_t) { return std::int16_t{5}; });
    BASS_Mixer_StreamAddChannel(master.handle, source.handle, 0);
    EXPECT_EQ(PullFrames(master.handle, 10), std::vector<std::int16_t>(20, 5));
    EXPECT_TRUE(BASS_Free());
    EXPECT_FALSE(BASS_Free());
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_INIT);
}

TEST(Output, RefusesDevicesThatAreNotThere)
{
    EXPECT_FALSE(BASS_Init(7, 44'100, 0, nullptr, nullptr));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);
    ASSERT_TRUE(BASS_Init(-1, 44'100, 0, nullptr, nullptr));
    EXPECT_EQ(BASS_GetDevice(), 0);
    EXPECT_FALSE(BASS_Init(0, 44'100, 0, nullptr, nullptr));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_ALREADY);
    EXPECT_TRUE(BASS_Free());
}

} // namespace
} // namespace velmora::soundlayer
