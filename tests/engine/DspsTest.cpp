#include "engine/internal/Dsps.h"

#include <vector>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

using Samples = std::vector<std::int16_t>;

TEST(Dsps, GainRoundsToTheNearestAndLimits)
{
    // 0.5 of odd samples lies on a half: the even neighbour is taken.
    Samples half{1, 3, -1, -3, 32'767, -32'768, 100};
    ApplyGain(half, 5000);
    EXPECT_EQ(half, (Samples{0, 2, 0, -2, 16'384, -16'384, 50}));

    Samples loud{20'000, -20'000, 16'383, -16'384, 1};
    ApplyGain(loud, 20'000);
    EXPECT_EQ(loud, (Samples{32'767, -32'768, 32'766, -32'768, 2}));

    Samples unit{-32'768, 32'767, 12'345};
    ApplyGain(unit, kUnitGain);
    EXPECT_EQ(unit, (Samples{-32'768, 32'767, 12'345}));
}

TEST(Dsps, VocalsGoAsFarAsAsked)
{
    const Samples sound{1000, 1000, 3000, 1000, -32'768, 32'767};
    Samples all = sound;
    RemoveVocals(all, kUnitGain);
    EXPECT_EQ(all, (Samples{0, 0, 2000, 2000, -32'768, -32'768}));
    Samples none = sound;
    RemoveVocals(none, 0);
    EXPECT_EQ(none, sound);
    Samples half = sound;
    RemoveVocals(half, 5000);
    EXPECT_EQ(half, (Samples{500, 500, 2500, 1500, -32'768, -16'384}));
}

TEST(Dsps, LevelIsKeptByStream)
{
    Samples block(882, 0);
    for (std::size_t i = 0; i < block.size(); i += 2) {
        block[i] = 1000;
    }
    const Samples before = block;
    LevelDsp(1, 77, block.data(), static_cast<std::uint32_t>(block.size() * 2), 0);
    EXPECT_EQ(block, before);
    EXPECT_EQ(Levels().Read(77), (StereoLevel{1000, 0}));
    EXPECT_EQ(Levels().Read(78), StereoLevel{});
}

} // namespace
} // namespace velmora::engine
