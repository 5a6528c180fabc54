#include "tests/soundlayer/EffectTools.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// What the room alone makes of an impulse on the sides asked for.
Sides RoomOf(float milliseconds, float ratio, std::uint32_t rate = kRate, bool left = true, bool right = true)
{
    const auto reverb = EffectWith(BASS_FX_DX8_REVERB, BASS_DX8_REVERB{0, 0, milliseconds, ratio}, rate);
    Sides sound(static_cast<std::size_t>((0.3 + 1.2 * static_cast<double>(milliseconds) / 1000) * rate));
    sound.left[0] = left ? 1.0F : 0.0F;
    sound.right[0] = right ? 1.0F : 0.0F;
    Play(*reverb, sound);
    sound.left[0] = sound.right[0] = 0.0F;
    return sound;
}

/// Seconds to -60 dB by the line through -5 and -35 dB of the power that is still to come (M. R. Schroeder, "New Method
/// of Measuring Reverberation Time", 1965).
double DecayTime(const std::vector<float>& room, std::uint32_t rate)
{
    std::vector<double> rest(room.size() + 1);
    for (std::size_t i = room.size(); i-- > 0;) {
        rest[i] = rest[i + 1] + static_cast<double>(room[i]) * static_cast<double>(room[i]);
    }
    const auto fallsTo = [&](double db) {
        const double power = rest[0] * std::pow(10.0, db / 10.0);
        return static_cast<double>(std::ranges::find_if(rest, [power](double r) { return r < power; }) - rest.begin());
    };
    return (fallsTo(-35) - fallsTo(-5)) / rate * 2.0;
}

/// `room` above 6 kHz or below 600 Hz, by four poles.
std::vector<float> Band(std::vector<float> room, std::uint32_t rate, bool high)
{
    const double pole = std::exp(-2 * std::numbers::pi * (high ? 6000.0 : 600.0) / rate);
    for (int pass = 0; pass < 4; ++pass) {
        double low = 0;
        for (float& sample : room) {
            low = static_cast<double>(sample) + pole * (low - static_cast<double>(sample));
            sample = static_cast<float>(high ? static_cast<double>(sample) - low : low);
        }
    }
    return room;
}

double Power(const std::vector<float>& sound)
{
    double sum = 0;
    for (const float sample : sound) {
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    }
    return sum;
}

double Correlation(const Sides& sound)
{
    double sum = 0;
    for (std::size_t i = 0; i < sound.Frames(); ++i) {
        sum += static_cast<double>(sound.left[i]) * static_cast<double>(sound.right[i]);
    }
    return sum / std::sqrt(Power(sound.left) * Power(sound.right));
}

TEST(Reverb, FallsInItsTime)
{
    for (const std::uint32_t rate : {22050U, 44100U, 96000U}) {
        for (const float milliseconds : {100.0F, 180.0F, 400.0F, 1000.0F, 3000.0F}) {
            const double seconds = static_cast<double>(milliseconds) / 1000;
            for (const float ratio : {0.001F, 0.999F}) {
                const Sides room = RoomOf(milliseconds, ratio, rate);
                for (const auto* side : {&room.left, &room.right}) {
                    EXPECT_NEAR(DecayTime(*side, rate), seconds, 0.1 * seconds) << rate << " Hz, " << ratio;
                }
            }
            const Sides half = RoomOf(milliseconds, 0.5F, rate);
            if (milliseconds >= 400) {
                EXPECT_NEAR(DecayTime(Band(half.left, rate, false), rate), seconds, 0.1 * seconds) << rate;
                EXPECT_NEAR(DecayTime(Band(half.left, rate, true), rate), 0.5 * seconds, 0.1 * seconds) << rate;
            }
        }
    }
}

TEST(Reverb, IsDenseAsNoise)
{
    // A small dark room has too few tones left for statistics.
    for (const float milliseconds : {150.0F, 1000.0F, 3000.0F}) {
        for (const float ratio : {milliseconds > 150 ? 0.001F : 0.5F, 0.999F}) {
            const Sides room = RoomOf(milliseconds, ratio);
            // Windows of 20 ms, from 50 ms on. Gaussian noise has a kurtosis of 3; ten separate echoes in such a
            // window would have 88.
            constexpr std::size_t kWindow = kRate / 50;
            double sum = 0;
            int windows = 0;
            for (std::size_t start = kRate / 20; start < kRate / 5; start += kWindow / 2, ++windows) {
                double square = 0;
                double fourth = 0;
                for (std::size_t i = start; i < start + kWindow; ++i) {
                    // As if it did not fall.
                    const double fall = std::pow(1000.0, static_cast<double>(i) / (kRate * milliseconds / 1000.0));
                    const double sample = static_cast<double>(room.left[i]) * fall;
                    square += sample * sample / kWindow;
                    fourth += sample * sample * sample * sample / kWindow;
                }
                const double kurtosis = fourth / (square * square);
                EXPECT_LT(kurtosis, 4.5) << milliseconds << " ms, " << ratio << ", frame " << start;
                sum += kurtosis;
            }
            EXPECT_NEAR(sum / windows, 3.0, 0.35) << milliseconds << " ms, " << ratio;
        }
    }
}

TEST(Reverb, HasNoToneOfItsOwn)
{
    // In a flat room the late sound is white; a ringing line would stand out of its autocorrelation.
    const Sides room = RoomOf(1000, 0.999F);
    std::vector<double> late;
    for (std::size_t i = kRate / 10; i < 6 * kRate / 10; ++i) {
        late.push_back(static_cast<double>(room.left[i]) * std::pow(1000.0, static_cast<double>(i) / kRate));
    }
    const auto product = [&late](std::size_t lag) {
        double sum = 0;
        for (std::size_t i = lag; i < late.size(); ++i) {
            sum += late[i] * late[i - lag];
        }
        return sum;
    };
    for (std::size_t lag = 1; lag < kRate / 10; ++lag) {
        ASSERT_LT(std::abs(product(lag)), 0.2 * product(0)) << lag;
    }
}

TEST(Reverb, KeepsTheSidesAlikeButApart)
{
    for (const float milliseconds : {200.0F, 1000.0F, 3000.0F}) {
        const Sides both = RoomOf(milliseconds, 0.999F);
        EXPECT_NEAR(10 * std::log10(Power(both.left) / Power(both.right)), 0.0, 0.5);
        EXPECT_NEAR(Correlation(both), 0.0, 0.15);
        for (const bool left : {true, false}) {
            const Sides one = RoomOf(milliseconds, 0.999F, kRate, left, !left);
            EXPECT_NEAR(10 * std::log10(Power(one.left) / Power(one.right)), 0.0, 0.5);
            EXPECT_NEAR(Correlation(one), 0.0, 0.2);
            EXPECT_NEAR(10 * std::log10(2 * Power(one.left) / Power(both.left)), 0.0, 0.7);
        }
    }
}

TEST(Reverb, GainsAreThoseOfItsParameters)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> noise(-0.5F, 0.5F);
    Sides sound(2 * kRate);
    for (std::size_t i = 0; i < sound.Frames(); ++i) {
        sound.left[i] = noise(random);
        sound.right[i] = noise(random);
    }
    const auto heard = [&sound](const BASS_DX8_REVERB& block) {
        Sides copy = sound;
        Play(*EffectWith(BASS_FX_DX8_REVERB, block), copy);
        return copy;
    };
    EXPECT_EQ(heard({0, -96, 1000, 0.5F}), sound);
    EXPECT_EQ(Power(heard({-96, 0, 1000, 0.5F}).left), 0);
    // Dry and room are added; in the second second the room is as loud as it gets.
    const Sides full = heard({0, 0, 500, 0.999F});
    const Sides quiet = heard({-20, 0, 500, 0.999F});
    const Sides little = heard({0, -20, 500, 0.999F});
    std::vector<float> room(kRate);
    for (std::size_t i = 0; i < kRate; ++i) {
        const std::size_t at = kRate + i;
        room[i] = full.left[at] - sound.left[at];
        ASSERT_NEAR(quiet.left[at], 0.1F * full.left[at], 1e-5F);
        ASSERT_NEAR(little.left[at], sound.left[at] + 0.1F * room[i], 1e-5F);
    }
    EXPECT_NEAR(10 * std::log10(Power(room) / Power({sound.left.begin() + kRate, sound.left.end()})), 0.0, 1.0);
}

} // namespace
} // namespace velmora::soundlayer
