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

} // namespace
} // namespace velmora::soundlayer
