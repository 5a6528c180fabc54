#include "tests/soundlayer/TestStreams.h"

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// Edits of every kind while the mixing thread pulls, and pulls of a graph beside it, at random.
TEST(OutputStress, EditsWhileItSounds)
{
    ASSERT_TRUE(BASS_Init(0, 44'100, 0, nullptr, nullptr));
    BASS_SetConfig(BASS_CONFIG_BUFFER, 20);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, 5);
    const HSTREAM device = BASS_Mixer_StreamCreate(44'100, 2, BASS_MIXER_NONSTOP);
    BASS_ChannelPlay(device, 0);
    const auto quiet = [](HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER) {
        std::memset(buffer, 0, length);
    };
    const auto noise = [](std::int64_t frame, std::uint32_t) { return static_cast<std::int16_t>(frame); };
    std::mt19937 random(7);
    std::vector<std::unique_ptr<TestStream>> sources;
    std::vector<HSTREAM> mixers;
    for (int step = 0; step < 3000; ++step) {
        const bool playing = random() % 16 != 0;
        switch (random() % 8) {
        case 0:
            mixers.push_back(BASS_Mixer_StreamCreate(44'100, 2, BASS_STREAM_DECODE));
            BASS_Mixer_StreamAddChannel(device, mixers.back(), 0);
            break;
        case 1:
            sources.push_back(std::make_unique<TestStream>(noise, random() % 2 ? 44'100 : 32'000,
                                                           1 + static_cast<std::uint32_t>(random() % 2)));
            if (!mixers.empty()) {
                BASS_Mixer_StreamAddChannel(mixers[random() % mixers.size()], sources.back()->handle, 0);
            }
            break;
        case 2:
            if (mixers.size() > 4) {
                BASS_StreamFree(mixers.front());
                mixers.erase(mixers.begin());
            }
            break;
        case 3:
            if (sources.size() > 8) {
                sources.erase(sources.begin());
            }
            break;
        case 4:
            if (!mixers.empty()) {
                BASS_ChannelSetDSP(mixers.back(), quiet, 0, static_cast<std::int32_t>(random() % 10));
            }
            break;
        case 5:
            if (!sources.empty()) {
                BASS_ChannelSetAttribute(sources.back()->handle, 1 + static_cast<std::uint32_t>(random() % 3),
                                         random() % 2 ? 0.0F : 0.5F);
            }
            break;
        case 6:
            Sound_BeginEdit();
            BASS_Mixer_ChannelRemove(mixers.empty() ? 0 : mixers.back());
            Sound_EndEdit();
            break;
        default: {
            TestMixer beside;
            TestStream source(noise);
            BASS_Mixer_StreamAddChannel(beside.handle, source.handle, 0);
            EXPECT_EQ(PullFrames(beside.handle, 100).size(), 200U);
        }
        }
        if (!playing) {
            BASS_ChannelStop(device);
            BASS_ChannelPlay(device, 1);
        }
    }
    EXPECT_TRUE(BASS_Free());
}

} // namespace
} // namespace velmora::soundlayer
