#include "soundlayer/internal/effects/BlockLimits.h"
#include "tests/soundlayer/EffectTools.h"

#include <cfloat>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// A parameter block of any kind.
using Fields = std::vector<std::uint32_t>;

/// What holds for every kind of effect.
struct Kind {
    const char* name;
    std::uint32_t type;
    Fields low;
    Fields high;
    Fields initial;
    std::uint32_t wholeFields;

    bool Whole(std::size_t field) const { return (wholeFields >> field & 1U) != 0; }
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.name;
}

template <typename Block>
Kind MakeKind(const char* name, std::uint32_t type)
{
    const auto fields = [](const Block& block) {
        Fields all(sizeof block / 4);
        std::memcpy(all.data(), &block, sizeof block);
        return all;
    };
    const BlockLimits<Block>& limits = kBlockLimits<Block>;
    return {name, type, fields(limits.low), fields(limits.high), fields(limits.initial), limits.wholeFields};
}

/// Parameters anywhere within the limits, at their ends, beyond them, or no numbers at all.
Fields RandomBlock(const Kind& kind, std::mt19937& random, bool sane = false)
{
    Fields fields = kind.initial;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        switch (random() % (sane ? 3 : 5)) {
        case 0:
            fields[i] = random() % 2 ? kind.low[i] : kind.high[i];
            break;
        case 3:
            fields[i] = static_cast<std::uint32_t>(random());
            break;
        case 4:
            fields[i] = std::bit_cast<std::uint32_t>(std::numeric_limits<float>::quiet_NaN());
            break;
        default:
            if (!kind.Whole(i)) {
                const auto low = std::bit_cast<float>(kind.low[i]);
                const auto high = std::bit_cast<float>(kind.high[i]);
                fields[i] = std::bit_cast<std::uint32_t>(std::uniform_real_distribution<float>(low, high)(random));
            }
        }
    }
    return fields;
}

Sides Noise(std::size_t frames, std::uint32_t seed, float amplitude = 1.0F)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> sample(-amplitude, amplitude);
    Sides sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        sound.left[i] = sample(random);
        sound.right[i] = sample(random);
    }
    return sound;
}

float Loudest(const std::vector<float>& side)
{
    float loudest = 0;
    for (const float sample : side) {
        // What is no number is louder than all.
        loudest = std::abs(sample) <= loudest ? loudest : std::abs(sample);
    }
    return loudest;
}

class EveryEffect : public ::testing::TestWithParam<Kind> {
protected:
    static std::unique_ptr<Effect> Make(std::uint32_t rate = kRate) { return MakeEffect(GetParam().type, rate); }

    void SetUp() override { ASSERT_TRUE(Make()); }
};

INSTANTIATE_TEST_SUITE_P(All, EveryEffect,
                         ::testing::Values(MakeKind<BASS_DX8_CHORUS>("Chorus", BASS_FX_DX8_CHORUS),
                                           MakeKind<BASS_DX8_COMPRESSOR>("Compressor", BASS_FX_DX8_COMPRESSOR),
                                           MakeKind<BASS_DX8_DISTORTION>("Distortion", BASS_FX_DX8_DISTORTION),
                                           MakeKind<BASS_DX8_ECHO>("Echo", BASS_FX_DX8_ECHO),
                                           MakeKind<BASS_DX8_FLANGER>("Flanger", BASS_FX_DX8_FLANGER),
                                           MakeKind<BASS_DX8_PARAMEQ>("ParametricEq", BASS_FX_DX8_PARAMEQ),
                                           MakeKind<BASS_DX8_REVERB>("Reverb", BASS_FX_DX8_REVERB)),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(EveryEffect, EndsItsTailInSilenceThatCanBeSkipped)
{
    std::mt19937 random(3);
    for (int round = 0; round < 4; ++round) {
        Fields block = round == 0 ? GetParam().initial : RandomBlock(GetParam(), random, true);
        if (GetParam().type == BASS_FX_DX8_ECHO) {
            // Feedback could hold for hours.
            block[1] = std::bit_cast<std::uint32_t>(std::min(std::bit_cast<float>(block[1]), 30.0F));
        }
        const auto effect = Make();
        const auto skipped = Make();
        effect->SetParameters(block.data());
        skipped->SetParameters(block.data());
        EXPECT_TRUE(effect->AtRest());
        // Long enough for all to stand still, and cut amid grains.
        Sides before(200'003);
        Play(*effect, before);
        EXPECT_EQ(before, Sides(200'003)) << "silence in, silence out";
        skipped->Skip(170'050);
        skipped->Skip(29'953);

        const auto sound = [&](std::uint32_t seed) {
            Sides processed = Noise(20'000, seed);
            Sides other = processed;
            Play(*effect, processed);
            Play(*skipped, other);
            ASSERT_EQ(processed, other) << "silence passed unequally";
            ASSERT_TRUE(Loudest(processed.left) > 0 || round > 0);
        };
        sound(1);
        Sides silence(1000);
        std::size_t frames = 0;
        for (; !effect->AtRest() && frames < std::size_t{120} * kRate; frames += 1000) {
            silence = Sides(1000);
            Play(*effect, silence);
            ASSERT_FALSE(std::ranges::any_of(silence.left, [](float s) { return s != 0 && std::abs(s) < FLT_MIN; }));
            silence = Sides(1000);
            Play(*skipped, silence);
        }
        ASSERT_TRUE(effect->AtRest());
        Sides after(5000);
        Play(*effect, after);
        EXPECT_EQ(after, Sides(5000));
        skipped->Skip(3777);
        skipped->Skip(1223);
        sound(2);
    }
}

TEST_P(EveryEffect, StaysFiniteWhateverItIsTold)
{
    std::mt19937 random(5);
    for (const std::uint32_t rate : {8000U, 22050U, 44100U, 192000U}) {
        const auto effect = Make(rate);
        for (int round = 0; round < 200; ++round) {
            const Fields block = RandomBlock(GetParam(), random);
            effect->SetParameters(block.data());
            const auto frames = static_cast<std::size_t>(random() % 3000);
            Sides sound = Noise(frames, static_cast<std::uint32_t>(random()), random() % 4 == 0 ? 1e-6F : 1.0F);
            Play(*effect, sound);
            // Compressors may give 60 dB, and resonances some more.
            ASSERT_LT(Loudest(sound.left), 1e5F) << rate;
            ASSERT_LT(Loudest(sound.right), 1e5F) << rate;
        }
    }
}

TEST_P(EveryEffect, SoundsTheSameHoweverItIsCut)
{
    // Parameters change every 4410 frames, which are no whole grains.
    const auto play = [&](std::size_t blockFrames) {
        std::mt19937 random(11);
        const auto effect = Make();
        Sides all;
        for (std::uint32_t section = 0; section < 12; ++section) {
            const Fields block = RandomBlock(GetParam(), random, true);
            effect->SetParameters(block.data());
            Sides sound = Noise(4410, section, section % 3 == 2 ? 0.0F : 0.5F);
            Play(*effect, sound, blockFrames);
            all.left.insert(all.left.end(), sound.left.begin(), sound.left.end());
            all.right.insert(all.right.end(), sound.right.begin(), sound.right.end());
        }
        return all;
    };
    const Sides whole = play(4096);
    for (const std::size_t blockFrames : {1, 64, 441}) {
        EXPECT_EQ(play(blockFrames), whole) << blockFrames;
    }
}

TEST_P(EveryEffect, GlidesInMidTone)
{
    const Kind& kind = GetParam();
    for (std::size_t field = 0; field < kind.initial.size(); ++field) {
        for (const bool up : {true, false}) {
            Fields before = kind.initial;
            Fields after = kind.initial;
            before[field] = up ? kind.low[field] : kind.high[field];
            after[field] = up ? kind.high[field] : kind.low[field];
            const auto effect = Make();
            effect->SetParameters(before.data());
            const std::size_t second = kRate;
            Sides tone = Sine(1000, 0.5, 4 * second);
            Play(*effect, tone, 441, [&](std::size_t frame) {
                if (frame == 2 * second) {
                    effect->SetParameters(after.data());
                }
            });
            for (const auto* side : {&tone.left, &tone.right}) {
                const double steady =
                    std::max(GreatestStep(*side, second, second), GreatestStep(*side, 3 * second, second));
                const double changing = GreatestStep(*side, 2 * second, second);
                EXPECT_LT(changing, steady * 1.1 + 0.001 * Loudest(*side))
                    << "field " << field << (up ? " up" : " down");
            }
        }
    }
}

} // namespace
} // namespace velmora::soundlayer
