#include "audio/DeviceStart.h"

#include "audio/SoundSession.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/support/TestEnvironment.h"

#include <gtest/gtest.h>

namespace velmora::audio {
namespace {

TEST(DeviceStart, BufferIsNeverShorterThanTheDeviceStands)
{
    struct Rule {
        std::int16_t setting;
        std::uint32_t bufferMS;
        std::uint32_t updateMS;
    };
    for (const Rule& rule : {Rule{4, 6, 5}, Rule{25, 25, 12}, Rule{27, 27, 14}, Rule{100, 100, 50}}) {
        core::Configuration config;
        config.BassBuffer_LengthMS = rule.setting;
        BassApplyBufferConfig(config);
        EXPECT_EQ(BASS_GetConfig(BASS_CONFIG_BUFFER), rule.bufferMS);
        EXPECT_EQ(BASS_GetConfig(BASS_CONFIG_UPDATEPERIOD), rule.updateMS);
        EXPECT_EQ(config.BassBuffer_LengthMS, static_cast<std::int16_t>(rule.bufferMS));
    }
}

TEST(DeviceStart, MissingDeviceGivesWayToTheDefaultWithoutAWord)
{
    testing::ScriptedMessageBoxes messages;
    core::Configuration config;
    config.Global_OutputDevice = 9999;
    ASSERT_TRUE(BassStartDevice(messages, config));
    EXPECT_TRUE(messages.shown.empty());
    EXPECT_EQ(config.Global_OutputDevice, BASS_GetDevice());
    EXPECT_GE(config.BassBuffer_LengthMS, 6) << "the device's own minimum";
    BASS_Free();
}

TEST(DeviceStart, OtherFailuresAreToldAndTriedOnceMoreAtASafeRate)
{
    ASSERT_TRUE(BASS_Init(0, 44100, 0, nullptr, nullptr));
    testing::ScriptedMessageBoxes messages;
    core::Configuration config;
    config.BassDevice_Freq = 48000;
    EXPECT_FALSE(BassStartDevice(messages, config)) << "the device is in use already";
    const std::string failure = "Can't initialize digital sound system (error code: 14)\n";
    EXPECT_EQ(messages.Texts(),
              (std::vector<std::string>{
                  failure + "The program will try now to initialize the audio using 16 bits at 44100 Hz",
                  failure + "The program will now exit"}));
    EXPECT_EQ(messages.shown.front().title, "Error");
    EXPECT_EQ(config.BassDevice_Freq, 44100);
    BASS_Free();
}

TEST(SoundSession, StartsAndEndsAgainInOneProcess)
{
    testing::TestEnvironment environment;
    environment->config.Global_OutputDevice = 0;
    for (int run = 0; run < 2; ++run) {
        const auto session = SoundSession::Start(*environment);
        ASSERT_NE(session, nullptr);
        EXPECT_EQ(BASS_GetDevice(), 0);
        const HSTREAM mixer = BASS_Mixer_StreamCreate(44100, 2, BASS_MIXER_NONSTOP);
        EXPECT_NE(mixer, 0u);
        EXPECT_EQ(SoundSession::Start(*environment), nullptr) << "one at a time";
        environment.ports.messages.shown.clear();
    }
    EXPECT_EQ(BASS_GetDevice(), -1) << "the device has gone with its session";
}

} // namespace
} // namespace velmora::audio
