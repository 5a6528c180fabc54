#include "tests/soundlayer/EffectTools.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// Where in `sound` the phase of a tone of `hertz` stands at `frame`, in turns, from some 30 ms around it.
double PhaseAt(const std::vector<float>& sound, double hertz, std::size_t frame)
{
    constexpr std::size_t kHalf = 600;
    std::complex<double> sum = 0;
    for (std::size_t i = frame - kHalf; i <= frame + kHalf; ++i) {
        const double apart = static_cast<double>(i) - static_cast<double>(frame);
        const double window = 1 + std::cos(std::numbers::pi * apart / kHalf);
        sum += window * static_cast<double>(sound[i]) *
               std::polar(1.0, -2 * std::numbers::pi * hertz * static_cast<double>(i) / kRate);
    }
    return std::arg(sum) / (2 * std::numbers::pi);
}

/// By how many ms `side` is late at `frame` behind a sine of 50 Hz.
double DelayAt(const std::vector<float>& side, std::size_t frame)
{
    constexpr double kHertz = 50;
    const Sides tone = Sine(kHertz, 0.5, frame + 1000);
    const double turns = PhaseAt(tone.left, kHertz, frame) - PhaseAt(side, kHertz, frame);
    return (turns - std::floor(turns + 0.1)) / kHertz * 1000;
}

TEST(ModulatedDelay, SwingsAsTold)
{
    struct Case {
        std::int32_t waveform;
        std::int32_t phase;
        /// Where the right swing is when the left one is in the middle, at its top, in the middle, at its bottom.
        double right[4];
    };
    for (const Case& with : {Case{0, 2, {0, 1, 0, -1}}, Case{1, 2, {0, 1, 0, -1}}, Case{1, 3, {1, 0, -1, 0}},
                             Case{0, 1, {-1, 0, 1, 0}}, Case{1, 0, {0, -1, 0, 1}}, Case{0, 4, {0, -1, 0, 1}}}) {
        const BASS_DX8_CHORUS block{100, 50, 0, 0.5F, with.waveform, 8, with.phase};
        Sides sound = Sine(50, 0.5, 5 * kRate);
        Play(*EffectWith(BASS_FX_DX8_CHORUS, block), sound);
        const double left[] = {0, 1, 0, -1};
        for (std::size_t quarter = 0; quarter < 4; ++quarter) {
            const std::size_t frame = 2 * kRate + quarter * kRate / 2;
            EXPECT_NEAR(DelayAt(sound.left, frame), 8 + 4 * left[quarter], 0.1) << quarter;
            EXPECT_NEAR(DelayAt(sound.right, frame), 8 + 4 * with.right[quarter], 0.1) << quarter;
        }
        // A sine is ahead of a triangle between.
        EXPECT_NEAR(DelayAt(sound.left, 2 * kRate + kRate / 4), 8 + 4 * (with.waveform == 1 ? 0.707 : 0.5), 0.1);
    }
}

TEST(ModulatedDelay, StandsStillAtItsDelay)
{
    // Whole frames come exactly, and with nothing else; half of the sound is wet.
    const float milliseconds = 100.0F * 1000 / kRate;
    for (const float delay : {0.0F, milliseconds}) {
        for (const auto& effect : {EffectWith(BASS_FX_DX8_CHORUS, BASS_DX8_CHORUS{50, 0, 0, 7, 1, delay, 3}),
                                   EffectWith(BASS_FX_DX8_FLANGER, BASS_DX8_FLANGER{50, 80, 0, 0, 0, delay, 2})}) {
            Sides sound = Impulse(1000);
            Play(*effect, sound);
            Sides expected(1000);
            expected.left[0] = 0.5F;
            expected.left[delay > 0 ? 100 : 0] += 0.5F;
            for (std::size_t i = 0; i < 1000; ++i) {
                ASSERT_NEAR(sound.left[i], expected.left[i], 1e-4F) << i;
                ASSERT_NEAR(sound.right[i], expected.left[i], 1e-4F) << i;
            }
        }
    }
}

TEST(ModulatedDelay, FeedsBackItsShare)
{
    for (const float feedback : {-99.0F, -50.0F, 50.0F, 99.0F}) {
        const float share = feedback / 100;
        const BASS_DX8_FLANGER block{100, 0, feedback, 0, 0, 99.0F * 1000 / kRate, 2};
        Sides sound = Impulse(2000);
        Play(*EffectWith(BASS_FX_DX8_FLANGER, block), sound);
        // Each repeat comes a frame later than it was heard.
        float expected = std::sqrt(1 - share * share);
        for (std::size_t repeat = 0; repeat < 10; ++repeat) {
            EXPECT_NEAR(sound.left[99 + 100 * repeat], expected, 2e-3F) << feedback << ", " << repeat;
            expected *= share;
        }
    }
}

TEST(ModulatedDelay, KeepsHighTonesBetweenFrames)
{
    for (const double hertz : {1000.0, 5000.0, 10000.0, 12000.0}) {
        for (const float frames : {3.5F, 40.25F, 100.5F}) {
            const BASS_DX8_FLANGER block{100, 0, 0, 0, 0, frames * 1000 / kRate, 2};
            Sides sound = Sine(hertz, 0.5, 8000);
            Play(*EffectWith(BASS_FX_DX8_FLANGER, block), sound);
            EXPECT_NEAR(Decibels(AmplitudeAt(sound.left, hertz, 3000, 4000) / 0.5), -0.2, 0.22)
                << hertz << " Hz, " << frames;
        }
    }
}

TEST(ModulatedDelay, TurnsWithoutAStep)
{
    // The second difference of a low tone is small, that of a step as large as the step.
    const BASS_DX8_CHORUS from{50, 25, 30, 1, 1, 10, 3};
    for (const BASS_DX8_CHORUS& to :
         {BASS_DX8_CHORUS{100, 25, 30, 1, 1, 10, 3}, BASS_DX8_CHORUS{50, 100, 30, 1, 1, 10, 3},
          BASS_DX8_CHORUS{50, 25, -80, 1, 1, 10, 3}, BASS_DX8_CHORUS{50, 25, 30, 10, 1, 10, 3},
          BASS_DX8_CHORUS{50, 25, 30, 1, 0, 10, 3}, BASS_DX8_CHORUS{50, 25, 30, 1, 1, 20, 3},
          BASS_DX8_CHORUS{50, 25, 30, 1, 1, 0, 3}, BASS_DX8_CHORUS{50, 25, 30, 1, 1, 10, 0}}) {
        const auto effect = EffectWith(BASS_FX_DX8_CHORUS, from);
        Sides sound = Sine(60, 0.5, 2 * kRate);
        Play(*effect, sound, kRate, [&](std::size_t at) {
            if (at == kRate) {
                effect->SetParameters(&to);
            }
        });
        for (const auto* side : {&sound.left, &sound.right}) {
            for (std::size_t i = kRate - 2; i + 2 < sound.Frames(); ++i) {
                ASSERT_LT(std::abs((*side)[i] - 2 * (*side)[i + 1] + (*side)[i + 2]), 5e-4F) << i;
            }
        }
    }
}

} // namespace
} // namespace velmora::soundlayer
