#include "core/MsgIds.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"
#include "tests/device/AudioServer.h"

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace velmora::audio {
namespace {

struct RunningServer {
    RunningServer() { server.Start(); }
    testing::AudioServer server;
};

/// A project on the sound server's default device.
class Loopback : private RunningServer, public ExportTest {
protected:
    Loopback()
        : ExportTest(-1)
    {
    }
    const testing::AudioServer& Server() const { return server; }
};

WavSound LoudNoise(std::int32_t rate, std::size_t frames)
{
    std::mt19937 random(4711);
    WavSound sound{rate, 2, {}};
    for (std::size_t i = 0; i < 2 * frames; ++i) {
        const auto level = static_cast<std::int32_t>(1000 + random() % 12000);
        sound.samples.push_back(static_cast<std::int16_t>(random() % 2 ? level : -level));
    }
    return sound;
}

/// Frame by frame, both from their first sound on. A server without time to play leaves silence in between, which is
/// its own. True when `heard` holds all of `mix`.
bool HoldsTheMix(const std::vector<std::int16_t>& heard, const std::vector<std::int16_t>& mix)
{
    const auto silent = [](const std::vector<std::int16_t>& samples, std::size_t at) {
        return samples[at] == 0 && samples[at + 1] == 0;
    };
    std::size_t at = 0;
    std::size_t expected = 0;
    while (expected < mix.size() && silent(mix, expected)) {
        expected += 2;
    }
    const std::size_t first = expected;
    for (; at < heard.size() && expected < mix.size(); at += 2) {
        if (heard[at] == mix[expected] && heard[at + 1] == mix[expected + 1]) {
            expected += 2;
        } else if (!silent(heard, at)) {
            ADD_FAILURE() << "frame " << expected / 2 << " of the mix is " << mix[expected] << ", " << mix[expected + 1]
                          << " and was heard as " << heard[at] << ", " << heard[at + 1];
            return true;
        }
    }
    return expected > first && expected == mix.size();
}

TEST_F(Loopback, WhatIsHeardIsWhatIsExported)
{
    ASSERT_EQ(BASS_GetDevice(), 1);
    const std::string noise = m_environment.Path("sounds\\noise.wav");
    const std::string other = m_environment.Path("sounds\\other.wav");
    WriteWav(noise, LoudNoise(44100, 60'000));
    WriteWav(other, LoudNoise(32000, 60'000));
    project::Channel_Class& second = AddChannel(70);
    Send(core::Msg_Channel_SetPan, second.ClassID(), -40);
    AddClip(*m_channel, noise, 3, 0, 400, 0.8);
    AddClip(*m_channel, noise, 487, 201, 1153);
    AddClip(*m_channel, other, 1500, 77, 902);
    AddClip(second, other, 251, 13, 1311, 0.5);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    const std::vector<std::int16_t> mix = Mix().samples;
    ASSERT_GT(mix.size(), 2U * 2 * 44100);

    Send(core::Msg_Player_ReloadEvents, 0, 0);
    for (int run = 0; run < 2; ++run) {
        const testing::Recording recording(Server());
        core::MsgParametersClass toStart;
        toStart.PlayToMS = 0;
        m_project->MsgSender->SendMsg(-1, core::Msg_Player_SetRange, toStart);
        Send(core::Msg_Player_Play, 0, 0);
        EXPECT_TRUE(testing::Becomes([&] { return HoldsTheMix(recording.Samples(), mix) || HasFailure(); }));
        Send(core::Msg_Player_Stop, 0, 0);
    }
}

} // namespace
} // namespace velmora::audio
