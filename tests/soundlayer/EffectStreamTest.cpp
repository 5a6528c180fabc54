#include "tests/soundlayer/EffectTools.h"
#include "tests/soundlayer/TestStreams.h"

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using Samples = std::vector<std::int16_t>;

constexpr BASS_DX8_PARAMEQ kFlat{1000, 12, 0};
constexpr BASS_DX8_PARAMEQ kRaise{1000, 12, 15};
constexpr BASS_DX8_COMPRESSOR kSquash{0, 0.01F, 50, -40, 100, 0};
constexpr BASS_DX8_ECHO kEcho{40, 50, 30, 50, 1};

std::int16_t Tone(std::int64_t frame, std::uint32_t side)
{
    const double phase = 2 * std::numbers::pi * 1000 * static_cast<double>(frame) / 44'100;
    return static_cast<std::int16_t>(std::lround((side == 0 ? 4000 : 2000) * std::sin(phase)));
}

template <typename Block>
HFX SetFX(HSTREAM stream, std::uint32_t type, const Block& block, std::int32_t priority = 0)
{
    const HFX fx = BASS_ChannelSetFX(stream, type, priority);
    EXPECT_NE(fx, 0U);
    EXPECT_TRUE(BASS_FXSetParameters(fx, &block));
    return fx;
}

bool MoveFX(HSTREAM stream, HFX fx, std::int32_t priority)
{
    return Sound_FXSetPriorities(stream, &fx, &priority, 1) != 0;
}

/// The left side's peak once a second has gone by.
int SettledPeak(HSTREAM stream)
{
    PullFrames(stream, 44'100);
    int peak = 0;
    const Samples heard = PullFrames(stream, 441);
    for (std::size_t i = 0; i < heard.size(); i += 2) {
        peak = std::max<int>(peak, heard[i]);
    }
    return peak;
}

TEST(EffectStream, RunsEffectsOfLowPriorityFirstBetweenTheDsps)
{
    TestStream stream(Tone);
    const auto half = [](HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER) {
        for (auto* sample = static_cast<std::int16_t*>(buffer); length > 0; length -= 2, ++sample) {
            *sample = static_cast<std::int16_t>(*sample / 2);
        }
    };
    const HFX squash = SetFX(stream.handle, BASS_FX_DX8_COMPRESSOR, kSquash, 10);
    // 4000 are -18.3 dB, and become -39.8: 335.
    EXPECT_NEAR(SettledPeak(stream.handle), 335, 4);
    const HFX raise = SetFX(stream.handle, BASS_FX_DX8_PARAMEQ, kRaise, 20);
    EXPECT_NEAR(SettledPeak(stream.handle), 1887, 20);
    EXPECT_TRUE(MoveFX(stream.handle, raise, 9));
    EXPECT_NEAR(SettledPeak(stream.handle), 341, 4) << "raised before it is squashed";
    EXPECT_TRUE(MoveFX(stream.handle, raise, 10));
    EXPECT_NEAR(SettledPeak(stream.handle), 341, 4) << "equal ones stay in their order";
    EXPECT_TRUE(MoveFX(stream.handle, raise, 11));
    EXPECT_NEAR(SettledPeak(stream.handle), 1887, 20);

    const HDSP before = BASS_ChannelSetDSP(stream.handle, half, 0, 0);
    EXPECT_NEAR(SettledPeak(stream.handle), 1874, 20) << "a DSP of priority 0 comes before the compressor";
    BASS_ChannelRemoveDSP(stream.handle, before);
    BASS_ChannelSetDSP(stream.handle, half, 0, -1);
    EXPECT_NEAR(SettledPeak(stream.handle), 943, 10);

    EXPECT_TRUE(BASS_ChannelRemoveFX(stream.handle, squash));
    EXPECT_TRUE(BASS_ChannelRemoveFX(stream.handle, raise));
    EXPECT_EQ(SettledPeak(stream.handle), 2000);
}

TEST(EffectStream, SurvivesGainsThatNoNumberHolds)
{
    TestStream stream(Tone);
    std::vector<HFX> gains;
    for (int i = 0; i < 20; ++i) {
        gains.push_back(SetFX(stream.handle, BASS_FX_DX8_COMPRESSOR, BASS_DX8_COMPRESSOR{60, 1, 50, 0, 1, 0}));
    }
    SetFX(stream.handle, BASS_FX_DX8_PARAMEQ, kFlat, 1);
    EXPECT_EQ(SettledPeak(stream.handle), 32'767);
    for (const HFX gain : gains) {
        EXPECT_TRUE(BASS_ChannelRemoveFX(stream.handle, gain));
    }
    EXPECT_EQ(SettledPeak(stream.handle), 4000);
}

TEST(EffectStream, RefusesWhatCannotBeAndSaysWhy)
{
    TestStream stream(Tone);
    TestStream other(Tone);
    for (const std::uint32_t type : {5U, 6U, 9U, UINT32_MAX}) {
        EXPECT_EQ(BASS_ChannelSetFX(stream.handle, type, 0), 0U);
        EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_NOTAVAIL);
    }
    const HFX fx = SetFX(stream.handle, BASS_FX_DX8_PARAMEQ, kRaise);
    EXPECT_FALSE(BASS_FXSetParameters(fx, nullptr));
    EXPECT_EQ(BASS_ErrorGetCode(), SOUND_ERROR_PARAM);
    EXPECT_EQ(BASS_ChannelSetFX(fx, BASS_FX_DX8_PARAMEQ, 0), 0U) << "no stream";
    EXPECT_FALSE(BASS_ChannelRemoveFX(other.handle, fx));
    EXPECT_EQ(BASS_ErrorGetCode(), SOUND_ERROR_HANDLE);
    EXPECT_FALSE(BASS_FXSetParameters(stream.handle, &kRaise)) << "no effect";
    EXPECT_TRUE(BASS_ChannelRemoveFX(stream.handle, fx));
    EXPECT_FALSE(BASS_ChannelRemoveFX(stream.handle, fx));
    EXPECT_FALSE(BASS_FXSetParameters(fx, &kRaise));
    EXPECT_FALSE(MoveFX(stream.handle, fx, 1));

    const HSTREAM mixer = BASS_Mixer_StreamCreate(44'100, 2, BASS_STREAM_DECODE);
    const HFX lost = BASS_ChannelSetFX(mixer, BASS_FX_DX8_PARAMEQ, 0);
    BASS_StreamFree(mixer);
    EXPECT_FALSE(BASS_FXSetParameters(lost, &kRaise));
    EXPECT_EQ(BASS_ErrorGetCode(), SOUND_ERROR_HANDLE);
}

/// What an edit does to a sound: pulled in blocks of one size, with `edit(n)` before every 4096 frames.
Samples PlayWithEdits(HSTREAM stream, std::size_t blockFrames, const std::function<void(int)>& edit)
{
    Samples all;
    for (int section = 0; section < 12; ++section) {
        edit(section);
        for (std::size_t left = 4096; left > 0;) {
            const std::size_t now = std::min(left, blockFrames);
            const Samples block = PullFrames(stream, now);
            all.insert(all.end(), block.begin(), block.end());
            left -= now;
        }
    }
    return all;
}

TEST(EffectStream, EditsKeepTheTailsOfOtherEffects)
{
    // Flat equalisers come, go and change their places around an echo, whose sound stays the same to the bit.
    const auto play = [](bool edits, std::size_t blockFrames) {
        TestStream source([](std::int64_t frame, std::uint32_t side) {
            return frame % 20'000 < 5000 ? Tone(frame, side) : std::int16_t{0};
        });
        TestMixer mixer;
        BASS_Mixer_StreamAddChannel(mixer.handle, source.handle, 0);
        const HFX echo = SetFX(mixer.handle, BASS_FX_DX8_ECHO, kEcho, 50);
        std::vector<HFX> flat;
        return PlayWithEdits(mixer.handle, blockFrames, [&](int section) {
            if (!edits) {
                return;
            }
            Sound_BeginEdit();
            flat.push_back(SetFX(mixer.handle, BASS_FX_DX8_PARAMEQ, kFlat, section * 10 + 5));
            flat.push_back(SetFX(mixer.handle, BASS_FX_DX8_PARAMEQ, kFlat, 105 - section * 10));
            // Past more than the echo alone: of two that change places either may be the one that moves.
            EXPECT_TRUE(MoveFX(mixer.handle, flat.front(), 94 - 10 * section));
            if (section % 3 == 2) {
                EXPECT_TRUE(BASS_ChannelRemoveFX(mixer.handle, flat[1]));
                flat.erase(flat.begin() + 1);
            }
            // As a chain does that is stopped and started: the order is told anew, and stays.
            EXPECT_TRUE(MoveFX(mixer.handle, echo, 50));
            Sound_EndEdit();
        });
    };
    const Samples alone = play(false, 4096);
    EXPECT_EQ(play(true, 4096), alone);
    EXPECT_EQ(play(true, 441), alone);
}

TEST(EffectStream, JoinsAndLeavesWithoutAStepWhateverTheBlocks)
{
    const auto play = [](std::size_t blockFrames) {
        TestStream source(Tone);
        TestMixer mixer;
        BASS_Mixer_StreamAddChannel(mixer.handle, source.handle, 0);
        HFX raise = 0;
        HFX echo = 0;
        return PlayWithEdits(mixer.handle, blockFrames, [&](int section) {
            switch (section) {
            case 1:
                raise = SetFX(mixer.handle, BASS_FX_DX8_PARAMEQ, kRaise, 10);
                break;
            case 3:
                echo = SetFX(mixer.handle, BASS_FX_DX8_ECHO, kEcho, 5);
                break;
            case 6:
                MoveFX(mixer.handle, raise, 1);
                break;
            case 8:
                BASS_ChannelRemoveFX(mixer.handle, raise);
                break;
            case 10:
                BASS_ChannelRemoveFX(mixer.handle, echo);
                break;
            default:
                break;
            }
        });
    };
    const Samples heard = play(4096);
    EXPECT_LT(GreatestStep(heard, 0, heard.size() / 2, 2), 25.0) << "of 22500";
    for (const std::size_t blockFrames : {64, 441}) {
        EXPECT_EQ(play(blockFrames), heard) << blockFrames;
    }
}

TEST(EffectStream, HearsMonoOnBothSides)
{
    const auto sound = [](std::int64_t frame, std::uint32_t) { return Tone(frame * frame % 44'100, 0); };
    TestStream plain(sound, 44'100, 1);
    TestStream mono(sound, 44'100, 1);
    SetFX(mono.handle, BASS_FX_DX8_PARAMEQ, kFlat);
    EXPECT_EQ(PullFrames(mono.handle, 3000), PullFrames(plain.handle, 3000));
    // Echoes of 1 and 2 ms on the two sides: each half as loud in the mean.
    TestStream click(
        [](std::int64_t frame, std::uint32_t) { return static_cast<std::int16_t>(frame == 0 ? 20'000 : 0); }, 44'100,
        1);
    SetFX(click.handle, BASS_FX_DX8_ECHO, BASS_DX8_ECHO{100, 0, 1, 2, 0});
    const Samples heard = PullFrames(click.handle, 100);
    EXPECT_EQ(heard[44], 10'000);
    EXPECT_EQ(heard[88], 10'000);
}

TEST(EffectStream, SoundsOnAfterItsSourceAndAnewAfterSilence)
{
    const auto play = [](std::int64_t start, std::size_t blockFrames) {
        TestStream source([=](std::int64_t frame, std::uint32_t side) {
            return frame >= start && frame < start + 1000 ? Tone(frame - start, side) : std::int16_t{0};
        });
        TestMixer inner;
        TestMixer outer;
        BASS_Mixer_StreamAddChannel(outer.handle, inner.handle, 0);
        SetFX(inner.handle, BASS_FX_DX8_ECHO, kEcho);
        SetFX(inner.handle, BASS_FX_DX8_COMPRESSOR, kSquash, 1);
        // Without a source the mixer tells that it is silent; with one it does not.
        PullFrames(outer.handle, 3000);
        BASS_Mixer_StreamAddChannel(inner.handle, source.handle, 0);
        for (std::int64_t left = start; left > 0;) {
            const auto now = std::min<std::int64_t>(left, static_cast<std::int64_t>(blockFrames));
            PullFrames(outer.handle, static_cast<std::size_t>(now));
            left -= now;
        }
        Samples heard = PullFrames(outer.handle, 1500);
        BASS_Mixer_ChannelRemove(source.handle);
        const Samples tail = PullFrames(outer.handle, 20'000);
        heard.insert(heard.end(), tail.begin(), tail.end());
        EXPECT_EQ(PullFrames(outer.handle, 400'000).back(), 0);
        return heard;
    };
    const Samples heard = play(0, 4096);
    EXPECT_GT(*std::max_element(heard.begin() + 2 * 2000, heard.end()), 40) << "the tail";
    EXPECT_EQ(play(3777, 64), heard) << "wherever a grain begins";
    EXPECT_EQ(play(50'021, 441), heard);
}

} // namespace
} // namespace velmora::soundlayer
