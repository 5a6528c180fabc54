#include "engine/audioplayer.h"
#include "engine/internal/Engine.h"
#include "engine/internal/LevelStore.h"
#include "soundlayer/soundlayer.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

TEST(LevelStoreStress, LevelsOfManyWritersStayWholeAndApart)
{
    constexpr std::int32_t kBlocks = 300'000;
    constexpr std::uint32_t kWriters = 3;
    LevelStore store;
    std::atomic<std::uint32_t> running{kWriters};
    std::vector<std::thread> writers;
    for (std::uint32_t handle = 1; handle <= kWriters; ++handle) {
        writers.emplace_back([&, handle] {
            // Each writes only levels that leave its own number as a remainder.
            for (std::int32_t i = 0; i < kBlocks; ++i) {
                const auto level = static_cast<std::int32_t>(handle) + 4 * (i & 0xFFF);
                store.Store(handle, {level, level});
            }
            --running;
        });
    }
    int wrong = 0;
    for (int round = 0; running > 0; ++round) {
        for (std::uint32_t handle = 1; handle <= kWriters; ++handle) {
            const StereoLevel level = store.Read(handle);
            const bool own = level.left % 4 == static_cast<std::int32_t>(handle);
            wrong += level != StereoLevel{} && (level.left != level.right || !own);
        }
        if (round % 64 == 0) {
            store.Clear();
        }
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(wrong, 0);
    const std::int32_t last = 4 * ((kBlocks - 1) & 0xFFF);
    for (std::int32_t handle = 1; handle <= static_cast<std::int32_t>(kWriters); ++handle) {
        store.Store(static_cast<std::uint32_t>(handle), {handle + last, 0});
        EXPECT_EQ(store.Read(static_cast<std::uint32_t>(handle)), (StereoLevel{handle + last, 0}));
    }
}

constexpr std::int64_t kPeriod = 8192;

/// Frame n is n on both sides, over and over.
std::uint32_t Ramp(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& next = *reinterpret_cast<std::int64_t*>(user);
    auto* out = static_cast<std::int16_t*>(buffer);
    for (std::uint32_t i = 0; i < length / 4; ++i, ++next) {
        out[2 * i] = out[2 * i + 1] = static_cast<std::int16_t>(next % kPeriod);
    }
    return length;
}

struct Heard {
    std::int64_t frames = 0;
    std::int64_t wrong = 0;
    /// The clock's lead from its start on; it does not start with the sound.
    std::optional<std::int64_t> lead;
    std::int64_t drifted = 0;
};

/// Two copies of the ramp sound together: frame n is 2n.
void Listen(HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& heard = *reinterpret_cast<Heard*>(user);
    const auto* in = static_cast<const std::int16_t*>(buffer);
    for (std::uint32_t i = 0; i < length / 4; ++i, ++heard.frames) {
        const std::int64_t expected = 2 * (heard.frames % kPeriod);
        heard.wrong += in[2 * i] != expected || in[2 * i + 1] != expected;
    }
    const MixSide& mixSide = Engine::Get().mixSide;
    if (mixSide.BlockStart() < 0) {
        return;
    }
    const std::int64_t lead = mixSide.clock.Frames() - heard.frames;
    heard.drifted += lead != heard.lead.value_or(lead);
    heard.lead = lead;
}

TEST(EngineStress, CopiesAreMadeAnewInMidPlayWithoutAFrameLostAndTheClockKeepsStep)
{
    constexpr std::uint32_t kRate = 44'100;
    constexpr std::uint32_t kBufferMS = 20;
    constexpr std::uint32_t kPeriodMS = 5;
    constexpr int kRounds = 150;
    initdata();
    ASSERT_TRUE(BASS_SetConfig(BASS_CONFIG_BUFFER, kBufferMS));
    ASSERT_TRUE(BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, kPeriodMS));
    ASSERT_TRUE(BASS_Init(0, kRate, 0, nullptr, nullptr));
    std::int64_t next = 0;
    Heard heard;
    const HSTREAM source = BASS_StreamCreate(kRate, 2, BASS_STREAM_DECODE, &Ramp, reinterpret_cast<SOUND_USER>(&next));
    const HSTREAM mixer = BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    const HSTREAM device = BASS_Mixer_StreamCreate(kRate, 2, BASS_MIXER_NONSTOP);
    ASSERT_TRUE(BASS_Mixer_StreamAddChannel(device, mixer, 0));
    ASSERT_NE(BASS_ChannelSetDSP(mixer, &Listen, reinterpret_cast<SOUND_USER>(&heard), 0), 0U);

    std::vector<HSTREAM> copies;
    const auto start = [&] {
        EXPECT_NE(StreamCopy_AddSourceStream(source, kRate), 0);
        for (int i = 0; i < 2; ++i) {
            copies.push_back(StreamCopy_AddDestStream(source, kRate, 0x200010));
            EXPECT_TRUE(BASS_Mixer_StreamAddChannel(mixer, copies.back(), 0));
        }
    };
    const auto stop = [&] {
        for (const HSTREAM copy : copies) {
            StreamCopy_RemoveDestStream(copy);
        }
        StreamCopy_RemoveSourceStream(source);
        copies.clear();
    };
    start();
    player_Play();
    ASSERT_TRUE(BASS_ChannelPlay(device, 0));
    for (int round = 0; round < kRounds; ++round) {
        Sound_BeginEdit();
        stop();
        start();
        Sound_EndEdit();
        const std::int64_t before = Engine::Get().mixSide.clock.Frames();
        while (Engine::Get().mixSide.clock.Frames() == before) {
            std::this_thread::yield();
        }
    }
    BASS_ChannelStop(device);
    player_Pause();
    EXPECT_EQ(heard.wrong, 0);
    EXPECT_GT(heard.frames, kRounds);
    EXPECT_EQ(heard.drifted, 0);
    EXPECT_TRUE(heard.lead.has_value());

    stop();
    freedata();
    BASS_Free();
}

} // namespace
} // namespace velmora::engine
