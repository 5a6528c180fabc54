#include "core/Units.h"
#include "engine/internal/Engine.h"
#include "soundlayer/soundlayer.h"
#include "tests/engine/NoiseFiles.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

constexpr std::int32_t kRate = NoiseFiles::kRate;
using Samples = std::vector<std::int16_t>;

/// The engine over one channel's mixer, mixed by hand, with noise files of ten seconds.
class Playback : public ::testing::Test {
protected:
    Playback()
    {
        BASS_SetConfig(BASS_CONFIG_BUFFER, 100);
        mixer = BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
        engine.planner.Start();
        engine.planner.Edit([this](EngineTables& tables) { tables.AddChannel(1, mixer); });
    }
    ~Playback() override
    {
        engine.planner.Stop();
        BASS_StreamFree(mixer);
    }

    std::string File(std::uint32_t seed) const { return m_files.Path(seed); }

    void Put(std::int32_t id, EventRow row)
    {
        engine.planner.Edit([&](EngineTables& tables) { tables.PutEvent({1, id}, row); });
        rows[{1, id}] = row;
    }

    void Seek(std::int32_t ms)
    {
        engine.SetTimePos(ms);
        engine.planner.Settle();
    }

    Samples Mix(std::size_t frames, std::uint32_t blockFrames = 512)
    {
        Samples all;
        for (std::size_t done = 0; done < frames;) {
            if (done % 20 == 0) {
                engine.planner.Settle();
            }
            const auto wanted = static_cast<std::uint32_t>(std::min<std::size_t>(blockFrames, frames - done));
            const std::uint32_t now = engine.mixSide.BeforeBlock(wanted);
            Samples block(std::size_t{2} * now);
            BASS_ChannelGetData(mixer, block.data(), now * 4);
            all.insert(all.end(), block.begin(), block.end());
            done += now;
        }
        return all;
    }

    void ExpectMix(const Samples& heard, std::int64_t fromFrame) const
    {
        for (std::size_t i = 0; i < heard.size(); ++i) {
            const std::int64_t frame = fromFrame + static_cast<std::int64_t>(i / 2);
            ASSERT_EQ(heard[i], NoiseFiles::Sum(rows, frame, i % 2)) << "frame " << frame;
        }
    }

    Engine engine;
    HSTREAM mixer = 0;
    NoiseFiles::Rows rows;

private:
    NoiseFiles m_files;
};

TEST_F(Playback, ClipsSoundAtTheirSampleInBlocksOfAnySize)
{
    std::mt19937 random(3);
    for (std::int32_t id = 10; id < 22; ++id) {
        const auto time = static_cast<std::int32_t>(random() % 4000);
        const auto start = static_cast<std::int32_t>(random() % 2000);
        Put(id, {1.0, File(id % 3), time, start, start + 1 + static_cast<std::int32_t>(random() % 3000), core::kUnset,
                 core::kUnset});
    }
    Seek(0);
    engine.Play();
    ExpectMix(Mix(8 * kRate), 0);
    EXPECT_EQ(engine.mixSide.MissedVoices(), 0U);

    // With gains and fades the blocks' size is not heard either.
    for (auto [key, row] : NoiseFiles::Rows(rows)) {
        const std::int32_t id = key.eventId;
        row.gainFactor = 0.3 + id * 0.05;
        row.fadeInEndMS = id % 2 ? 333 : core::kUnset;
        row.fadeOutStartMS = id % 3 ? 250 : core::kUnset;
        Put(id, row);
    }
    Seek(0);
    const Samples whole = Mix(5 * kRate, 4096);
    for (const std::uint32_t blockFrames : {64U, 441U, 1000U}) {
        Seek(0);
        EXPECT_EQ(Mix(5 * kRate, blockFrames), whole) << blockFrames;
    }
    EXPECT_EQ(engine.mixSide.MissedVoices(), 0U);
}

TEST_F(Playback, ASeekGivesWhatPlayingThereGives)
{
    for (std::int32_t id = 0; id < 8; ++id) {
        Put(id, {1.0, File(id % 2), id * 700, id * 100, id * 100 + 1500, core::kUnset, core::kUnset});
    }
    Seek(0);
    engine.Play();
    std::mt19937 random(5);
    for (int i = 0; i < 60; ++i) {
        const auto ms = static_cast<std::int32_t>(random() % 7000);
        Seek(ms);
        EXPECT_EQ(engine.TimePos(), ms);
        ExpectMix(Mix(700 + random() % 3000), core::FrameOfMS(ms, kRate));
    }
    EXPECT_EQ(engine.mixSide.MissedVoices(), 0U);
    // Held, the clips wait where they are.
    Seek(1000);
    Mix(500);
    engine.mixSide.clock.Pause();
    EXPECT_EQ(Mix(600), Samples(1200, 0));
    engine.Play();
    engine.planner.Settle();
    ExpectMix(Mix(4000), core::FrameOfMS(1000, kRate) + 500);
}

TEST_F(Playback, AJumpThatComesABlockLateShiftsNoVoiceThatSounds)
{
    MixSide side;
    const ClipToPlay clip{{1, 1}, {1.0, File(1), 0, 0, 5000, core::kUnset, core::kUnset}, mixer};
    const auto voice = std::make_shared<Voice>(clip, 0, kRate);
    const auto jump = [&](std::int64_t to) {
        auto plan = std::make_unique<PlaybackPlan>();
        plan->voices = {voice};
        plan->jumpTo = to;
        side.Publish(std::move(plan));
        side.BeforeBlock(512);
    };
    side.Play(0);
    jump(0);
    jump(512);
    EXPECT_TRUE(voice->Started());
    EXPECT_FALSE(voice->Missed());
    jump(512);
    EXPECT_TRUE(voice->Missed());
    EXPECT_EQ(side.MissedVoices(), 1U);
}

TEST_F(Playback, EditsAreHeardWhileItPlays)
{
    Put(1, {1.0, File(1), 0, 0, 9000, core::kUnset, core::kUnset});
    Seek(0);
    engine.Play();
    ExpectMix(Mix(kRate), 0);

    // Moved, trimmed, another file: soon the mix is what it would be had the clock run with it.
    for (const EventRow& row : {EventRow{1.0, File(1), 100, 0, 9000, core::kUnset, core::kUnset},
                                EventRow{1.0, File(2), 100, 50, 8000, core::kUnset, core::kUnset}}) {
        Put(1, row);
        Put(2, {1.0, File(3), engine.TimePos() + 900, 0, 400, core::kUnset, core::kUnset});
        const Samples passage = Mix(kRate / 2);
        EXPECT_EQ(std::ranges::count(passage, 0) < 2000, true) << "no gap between the old and the new";
        const std::int64_t from = engine.mixSide.clock.Frames();
        ExpectMix(Mix(2 * kRate), from);
    }
    engine.planner.Edit([](EngineTables& tables) { tables.ClearEvents(); });
    engine.planner.Settle();
    EXPECT_EQ(Mix(1000), Samples(2000, 0));
    EXPECT_TRUE(engine.mixSide.clock.Playing());
}

TEST_F(Playback, UnreadableFilesAreSilentAndTheRestPlaysOn)
{
    Put(1, {1.0, "Z:\\no\\such.wav", 0, 0, 5000, core::kUnset, core::kUnset});
    Put(2, {1.0, "C:\\elsewhere.wav", 0, 0, 5000, core::kUnset, core::kUnset});
    Put(3, {1.0, File(3), 0, 0, 5000, core::kUnset, core::kUnset});
    rows.erase({1, 1});
    rows.erase({1, 2});
    Seek(0);
    engine.Play();
    ExpectMix(Mix(kRate), 0);
}

} // namespace
} // namespace velmora::engine
