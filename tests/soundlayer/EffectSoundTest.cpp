#include "tests/soundlayer/EffectTools.h"

#include <array>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// The gain in dB of peakingEQ in the Audio EQ Cookbook, from the biquad's own coefficients.
double CookbookPeak(double rate, const BASS_DX8_PARAMEQ& block, double hertz)
{
    const double w0 = 2 * std::numbers::pi * static_cast<double>(block.fCenter) / rate;
    const double a = std::pow(10.0, static_cast<double>(block.fGain) / 40);
    const double octaves = static_cast<double>(block.fBandwidth) / 12;
    const double alpha = std::sin(w0) * std::sinh(std::numbers::ln2 / 2 * octaves * w0 / std::sin(w0));
    const std::complex<double> z = std::polar(1.0, -2 * std::numbers::pi * hertz / rate);
    const std::complex<double> above = 1 + alpha * a - 2 * std::cos(w0) * z + (1 - alpha * a) * z * z;
    const std::complex<double> below = 1 + alpha / a - 2 * std::cos(w0) * z + (1 - alpha / a) * z * z;
    return Decibels(std::abs(above / below));
}

/// The gain in dB at `hertz` of an impulse response that has come to its end.
double Response(const std::vector<float>& impulse, double rate, double hertz)
{
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < impulse.size(); ++i) {
        sum += static_cast<double>(impulse[i]) *
               std::polar(1.0, -2 * std::numbers::pi * hertz * static_cast<double>(i) / rate);
    }
    return Decibels(std::abs(sum));
}

TEST(ParametricEq, AnswersAsTheCookbookSays)
{
    for (const std::uint32_t rate : {44100U, 48000U, 96000U}) {
        for (const BASS_DX8_PARAMEQ block :
             {BASS_DX8_PARAMEQ{80, 1, 15}, BASS_DX8_PARAMEQ{80, 36, -15}, BASS_DX8_PARAMEQ{1000, 12, 3},
              BASS_DX8_PARAMEQ{4600, 9, -7.5F}, BASS_DX8_PARAMEQ{16000, 9, 15}, BASS_DX8_PARAMEQ{16000, 36, -15}}) {
            const auto effect = EffectWith(BASS_FX_DX8_PARAMEQ, block, rate);
            Sides sound = Impulse(rate);
            Play(*effect, sound);
            for (double hertz = 20; hertz < 0.499 * rate; hertz *= 1.5) {
                ASSERT_NEAR(Response(sound.left, rate, hertz), CookbookPeak(rate, block, hertz), 0.02)
                    << hertz << " Hz at " << block.fCenter << " Hz, " << block.fBandwidth << ", " << block.fGain;
            }
            EXPECT_EQ(sound.left, sound.right);
        }
    }
}

TEST(ParametricEq, RowsSoundAsOneBehindTheOther)
{
    // The Graphic EQ's seven bands, of which some glide.
    const std::array<BASS_DX8_PARAMEQ, 7> bands{
        {{80, 6, 3}, {200, 12, -4}, {600, 12, 5}, {2000, 13, 15}, {4600, 9, -15}, {8200, 6, 2}, {16000, 9, 9}}};
    for (std::size_t count = 1; count <= bands.size(); ++count) {
        std::vector<std::unique_ptr<Effect>> together;
        std::vector<std::unique_ptr<Effect>> alone;
        std::vector<Effect*> row;
        for (std::size_t i = 0; i < count; ++i) {
            together.push_back(EffectWith(BASS_FX_DX8_PARAMEQ, bands[i]));
            alone.push_back(EffectWith(BASS_FX_DX8_PARAMEQ, bands[i]));
            row.push_back(together.back().get());
        }
        Sides expected = Sine(997, 0.5, 3000);
        std::fill_n(expected.right.begin(), 1500, 0.25F);
        Sides heard = expected;
        for (std::size_t done = 0; done < 3000; done += 100) {
            if (done == 1500) {
                const BASS_DX8_PARAMEQ turned{300, 20, -9};
                together[count / 2]->SetParameters(&turned);
                alone[count / 2]->SetParameters(&turned);
            }
            EXPECT_EQ(row[0]->ProcessRow(row, heard.left.data() + done, heard.right.data() + done, 100), count);
            for (const auto& effect : alone) {
                effect->Process(expected.left.data() + done, expected.right.data() + done, 100);
            }
        }
        EXPECT_EQ(heard, expected) << count;
    }
}

using Repeats = std::vector<std::pair<std::size_t, float>>;

/// The frames that are not zero, with their values.
Repeats Heard(const std::vector<float>& side)
{
    Repeats heard;
    for (std::size_t i = 0; i < side.size(); ++i) {
        if (side[i] != 0) {
            heard.emplace_back(i, side[i]);
        }
    }
    return heard;
}

TEST(Echo, RepeatsAtItsFrames)
{
    // 10.02 ms are 441.88 frames, 1 ms is 44.1.
    const auto effect = EffectWith(BASS_FX_DX8_ECHO, BASS_DX8_ECHO{25, 50, 10.02F, 1, 0});
    Sides sound = Impulse(1000);
    Play(*effect, sound, 1000);
    EXPECT_EQ(Heard(sound.left), (Repeats{{0, 0.75F}, {442, 0.25F}, {884, 0.125F}}));
    ASSERT_GT(Heard(sound.right).size(), 3U);
    EXPECT_EQ(Heard(sound.right)[3], (std::pair<std::size_t, float>{132, 0.0625F}));

    // The right side's repeats go to and fro, each after the delay of the side that it comes from.
    const auto swapping = EffectWith(BASS_FX_DX8_ECHO, BASS_DX8_ECHO{100, 50, 2000, 100, -1});
    Sides right(200'000);
    right.right[0] = 1;
    Play(*swapping, right);
    EXPECT_EQ(Heard(right.right), (Repeats{{4410, 1.0F}, {97'020, 0.25F}, {189'630, 0.0625F}}));
    EXPECT_EQ(Heard(right.left), (Repeats{{92'610, 0.5F}, {185'220, 0.125F}}));

    // Feedback never reaches 1.
    const auto longest = EffectWith(BASS_FX_DX8_ECHO, BASS_DX8_ECHO{100, 100, 1, 1, 0});
    Sides repeats = Impulse(44 * 101);
    Play(*longest, repeats);
    EXPECT_LT(repeats.left[44 * 100], std::pow(0.995, 99));
    EXPECT_GT(repeats.left[44 * 100], std::pow(0.99, 99));
}

TEST(Compressor, LevelsFollowTheCurve)
{
    for (const BASS_DX8_COMPRESSOR block :
         {BASS_DX8_COMPRESSOR{0, 0.2F, 50, -10, 10, 0}, BASS_DX8_COMPRESSOR{6, 20, 50, -40, 2, 4},
          BASS_DX8_COMPRESSOR{-12, 0.01F, 500, -60, 100, 1}, BASS_DX8_COMPRESSOR{60, 5, 100, -20, 1, 0}}) {
        for (const double level : {-70.0, -41.0, -21.0, -9.0, -1.0}) {
            const auto effect = EffectWith(BASS_FX_DX8_COMPRESSOR, block);
            Sides sound = Sine(1000, std::pow(10, level / 20), 2 * kRate);
            // The louder side leads, the other one follows it.
            for (float& sample : sound.right) {
                sample *= 0.1F;
            }
            Play(*effect, sound);
            const double threshold = block.fThreshold;
            const double wanted =
                block.fGain + (level < threshold ? level : threshold + (level - threshold) / block.fRatio);
            const double heard = Decibels(AmplitudeAt(sound.left, 1000, kRate, kRate / 2));
            EXPECT_NEAR(heard, wanted, 0.2) << level << " dB above " << threshold;
            EXPECT_NEAR(Decibels(AmplitudeAt(sound.right, 1000, kRate, kRate / 2)), heard - 20, 0.01);
        }
    }
}

/// The frames, from `first` on, after which the gain of a tone has gone the share 1 - 1/e of its way in dB.
double TimeOfWay(const std::vector<float>& heard, const std::vector<float>& played, std::size_t first)
{
    // Only near the tone's peaks the gain is known well.
    std::vector<std::pair<double, double>> gains;
    for (std::size_t i = first; i < heard.size(); ++i) {
        if (std::abs(played[i]) > 0.7F * std::abs(played[first])) {
            gains.emplace_back(static_cast<double>(i - first), Decibels(std::abs(heard[i] / played[i])));
        }
    }
    const double from = gains.front().second;
    const double to = gains.back().second;
    const double reached = from + (to - from) * (1 - std::exp(-1.0));
    for (const auto& [frame, gain] : gains) {
        if ((to < from) == (gain <= reached)) {
            return frame;
        }
    }
    return -1;
}

TEST(Compressor, KeepsItsTimes)
{
    for (const auto& [attack, release] :
         {std::pair{1.0F, 50.0F}, {5.0F, 100.0F}, {50.0F, 50.0F}, {500.0F, 50.0F}, {10.0F, 3000.0F}}) {
        const auto effect = EffectWith(BASS_FX_DX8_COMPRESSOR, BASS_DX8_COMPRESSOR{0, attack, release, -30, 4, 0});
        // A square wave whose height steps up and down again.
        const std::size_t half = static_cast<std::size_t>(10 * std::max(attack, 20.0F)) * kRate / 1000;
        const std::size_t rest = static_cast<std::size_t>(10 * release) * kRate / 1000;
        Sides sound(half + half + rest);
        for (std::size_t i = 0; i < sound.Frames(); ++i) {
            const float height = i >= half && i < 2 * half ? 0.5F : 0.05F;
            sound.left[i] = sound.right[i] = i / 20 % 2 == 0 ? height : -height;
        }
        const Sides played = sound;
        Play(*effect, sound);
        const std::vector<float> attackHeard(sound.left.begin(), sound.left.begin() + static_cast<long>(2 * half));
        const double attackMs = TimeOfWay(attackHeard, played.left, half) * 1000 / kRate;
        EXPECT_NEAR(attackMs, attack, 0.1 * attack);
        // The level holds for a moment before it falls.
        const double releaseMs = TimeOfWay(sound.left, played.left, 2 * half) * 1000 / kRate;
        EXPECT_NEAR(releaseMs, release, 0.1 * release);
    }
}

TEST(Compressor, LooksAhead)
{
    const auto play = [](float preDelay) {
        const auto effect = EffectWith(BASS_FX_DX8_COMPRESSOR, BASS_DX8_COMPRESSOR{0, 1, 50, -20, 100, preDelay});
        Sides sound(4000);
        sound.left[100] = 0.05F;
        std::fill(sound.left.begin() + 2000, sound.left.end(), 1.0F);
        Play(*effect, sound);
        return sound.left;
    };
    const std::vector<float> plain = play(0);
    const std::vector<float> ahead = play(4);
    EXPECT_EQ(plain[100], 0.05F);
    EXPECT_EQ(ahead[100 + 176], 0.05F);
    EXPECT_GT(*std::ranges::max_element(plain), 0.9F);
    EXPECT_LT(*std::ranges::max_element(ahead), 0.13F);
}

/// How loud an overtone of tanh(drive x sine) is beside the tone itself.
double OvertoneOfTanh(double drive, int overtone)
{
    double tone = 0;
    double over = 0;
    for (int i = 0; i < 10'000; ++i) {
        const double angle = 2 * std::numbers::pi * i / 10'000;
        const double wave = std::tanh(drive * std::sin(angle));
        tone += wave * std::sin(angle);
        over += wave * std::sin(overtone * angle);
    }
    return std::abs(over / tone);
}

TEST(Distortion, BendsTheWaveWithoutFoldingOvertonesBack)
{
    for (const float edge : {0.0F, 50.0F, 100.0F}) {
        const auto effect = EffectWith(BASS_FX_DX8_DISTORTION, BASS_DX8_DISTORTION{-6, edge, 8000, 100, 8000});
        Sides sound = Sine(1000, 1, 2 * kRate);
        Play(*effect, sound);
        const double tone = AmplitudeAt(sound.left, 1000, kRate, kRate / 5);
        double strange = 0;
        for (int hertz = 100; hertz < 22'050; hertz += 100) {
            if (hertz % 1000 != 0) {
                strange = std::max(strange, AmplitudeAt(sound.left, hertz, kRate, kRate / 5));
            }
        }
        EXPECT_LT(Decibels(strange / tone), -65) << edge;
        const double third = Decibels(AmplitudeAt(sound.left, 3000, kRate, kRate / 5) / tone);
        EXPECT_NEAR(third, Decibels(OvertoneOfTanh(0.05 * std::pow(800, edge / 100), 3)), 0.3) << edge;
    }
}

TEST(Distortion, FiltersBeforeAndBehindAndLeavesNoMean)
{
    // All but straight, so that the filters can be heard alone.
    const auto gain = [](const BASS_DX8_DISTORTION& block, double hertz) {
        const auto effect = EffectWith(BASS_FX_DX8_DISTORTION, block);
        Sides sound = Sine(hertz, 0.1, 2 * kRate);
        Play(*effect, sound);
        return Decibels(AmplitudeAt(sound.left, hertz, kRate, kRate) / 0.1);
    };
    const auto tangent = [](double hertz) { return std::tan(std::numbers::pi * hertz / kRate); };
    for (const double hertz : {200.0, 1000.0, 4000.0}) {
        const double butterworth = -10 * std::log10(1 + std::pow(tangent(hertz) / tangent(1000), 4));
        EXPECT_NEAR(gain({0, 0, 8000, 100, 1000}, hertz), butterworth, 0.1);
    }
    EXPECT_NEAR(gain({0, 0, 500, 200, 8000}, 500), 6, 0.1);
    EXPECT_NEAR(gain({0, 0, 500, 200, 8000}, 2000), 0, 0.2);

    // A lopsided wave: nine tenths low, one tenth high.
    const auto effect = EffectWith(BASS_FX_DX8_DISTORTION, BASS_DX8_DISTORTION{0, 100, 4000, 100, 8000});
    Sides sound(2 * kRate);
    for (std::size_t i = 0; i < sound.Frames(); ++i) {
        sound.left[i] = sound.right[i] = i % 441 < 44 ? 0.9F : -0.1F;
    }
    Play(*effect, sound);
    double mean = 0;
    for (std::size_t i = kRate; i < sound.Frames(); ++i) {
        mean += static_cast<double>(sound.left[i]) / kRate;
    }
    EXPECT_NEAR(mean, 0, 1e-3);
}

} // namespace
} // namespace velmora::soundlayer
