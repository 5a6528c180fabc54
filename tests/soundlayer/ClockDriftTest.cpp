#include "soundlayer/internal/ClockDrift.h"

#include "soundlayer/internal/DriftCompensator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numbers>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

constexpr std::uint32_t kRate = 44'100;

TEST(ClockDrift, IsToldFromWhatScattersAndFromWhatMoves)
{
    std::mt19937 random(3);
    std::normal_distribution<double> scatter(0, 0.0003);
    ClockDrift still;
    ClockDrift moving;
    ClockDrift absurd;
    for (int second = 0; second < 120; ++second) {
        still.Add(second, scatter(random), false);
        // At every 25th second something moves by 20 ms.
        moving.Add(second, 80e-6 * second + scatter(random) + 0.02 * (second / 25), second % 25 == 0);
        absurd.Add(second, 0.01 * second, false);
        if (second < 15) {
            EXPECT_EQ(moving.Rate(), 0) << second;
        }
        EXPECT_EQ(still.Rate(), 0) << second;
    }
    EXPECT_NEAR(moving.Rate(), 80e-6, 8e-6);
    EXPECT_EQ(absurd.Rate(), 0);
}

/// The sample at `time` in frames.
double Tone(double time)
{
    return 16'000 * std::sin(2 * std::numbers::pi * 1000 * time / kRate);
}

TEST(DriftCompensator, PassesFramesThroughAndThenStretchesThemWithoutASeam)
{
    constexpr int kBlock = 441;
    constexpr int kMore = 20;
    DriftCompensator compensator(kRate);
    std::vector<std::int16_t> out;
    const auto take = [&](std::span<const std::int16_t> frames) {
        out.insert(out.end(), frames.begin(), frames.end());
    };
    std::vector<std::int16_t> in;
    for (int block = 0; block < 300; ++block) {
        if (block == 50) {
            ASSERT_EQ(out, in);
            ASSERT_TRUE(compensator.Compensate(kMore, kRate));
        }
        std::vector<std::int16_t> frames;
        for (int i = 0; i < kBlock; ++i) {
            const auto sample = static_cast<std::int16_t>(std::lround(Tone(block * kBlock + i)));
            frames.insert(frames.end(), {sample, static_cast<std::int16_t>(-sample)});
        }
        in.insert(in.end(), frames.begin(), frames.end());
        take(compensator.Convert(frames));
        take(compensator.Convert({}));
    }
    take(compensator.Flush());

    const int begin = 50 * kBlock;
    ASSERT_EQ(out.size() / 2, in.size() / 2 + kMore);
    for (int i = 0; i + kBlock < static_cast<int>(out.size() / 2); ++i) {
        // It runs slower for a second, and is late by what was put in from then on.
        const double late = std::clamp(static_cast<double>(i - begin) / kRate, 0.0, 1.0) * kMore;
        ASSERT_NEAR(out[2 * i], Tone(i - late), 100) << i - begin;
        ASSERT_EQ(out[2 * i + 1], -out[2 * i]) << i - begin;
    }
}

} // namespace
} // namespace velmora::soundlayer
