#include "tests/soundlayer/TestStreams.h"
#include "tests/support/RealTimeGuard.h"

#include <random>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// Effects come, go, move and turn at random while the device plays them.
TEST(EffectStress, EditsWhileItSoundsNeitherAllocateNorWait)
{
    ASSERT_TRUE(BASS_Init(0, 44'100, 0, nullptr, nullptr));
    BASS_SetConfig(BASS_CONFIG_BUFFER, 20);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, 5);
    {
        TestStream source([](std::int64_t frame, std::uint32_t) { return static_cast<std::int16_t>(frame * 77); });
        const HSTREAM device = BASS_Mixer_StreamCreate(44'100, 2, BASS_MIXER_NONSTOP);
        BASS_Mixer_StreamAddChannel(device, source.handle, 0);
        BASS_ChannelPlay(device, 0);
        std::mt19937 random(9);
        struct Set {
            HSTREAM stream;
            HFX fx;
        };
        std::vector<Set> effects;
        const testing::RealTimeGuard guard;
        for (int step = 0; step < 6000; ++step) {
            switch (random() % 5) {
            case 0: {
                const HSTREAM stream = random() % 2 ? device : source.handle;
                const HFX fx = BASS_ChannelSetFX(stream, static_cast<std::uint32_t>(random() % 9),
                                                 static_cast<std::int32_t>(random() % 5));
                if (fx != 0) {
                    effects.push_back({stream, fx});
                }
                break;
            }
            case 1:
                if (effects.size() > 6) {
                    EXPECT_TRUE(BASS_ChannelRemoveFX(effects.front().stream, effects.front().fx));
                    effects.erase(effects.begin());
                }
                break;
            case 2:
                if (!effects.empty()) {
                    const auto priority = static_cast<std::int32_t>(random() % 5);
                    EXPECT_TRUE(Sound_FXSetPriorities(effects.back().stream, &effects.back().fx, &priority, 1));
                }
                break;
            case 3:
                if (!effects.empty()) {
                    const std::vector<float> block(8, static_cast<float>(random() % 200));
                    EXPECT_TRUE(BASS_FXSetParameters(effects[random() % effects.size()].fx, block.data()));
                }
                break;
            default: {
                TestMixer beside;
                BASS_ChannelSetFX(beside.handle, BASS_FX_DX8_ECHO, 0);
                EXPECT_EQ(PullFrames(beside.handle, 4000).size(), 8000U);
            }
            }
        }
        EXPECT_EQ(guard.Count(), testing::RealTimeGuard::Breaches()) << guard.FirstBreach();
        EXPECT_TRUE(BASS_StreamFree(device));
    }
    EXPECT_TRUE(BASS_Free());
}

} // namespace
} // namespace velmora::soundlayer
