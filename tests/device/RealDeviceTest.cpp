#include "soundlayer/soundlayer.h"
#include "tests/device/AudioServer.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::testing {
namespace {

constexpr int kEnabled = 1;
constexpr int kDefault = 2;
constexpr int kInUse = 4;
constexpr int kSounding = 1;
constexpr int kLost = 2;

std::size_t Threads()
{
    using std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(directory_iterator("/proc/self/task"), directory_iterator{}));
}

/// Counts up in every frame, so that a frame lost, given twice or changed is seen.
class Ramp {
public:
    Ramp()
    {
        Sound_SetHeartbeat(&Ramp::Beat, reinterpret_cast<SOUND_USER>(this));
        m_stream = BASS_StreamCreate(44100, 2, 0, &Ramp::Fill, reinterpret_cast<SOUND_USER>(this));
        EXPECT_TRUE(BASS_ChannelPlay(m_stream, 0));
    }
    ~Ramp()
    {
        Sound_SetHeartbeat(nullptr, 0);
        BASS_StreamFree(m_stream);
    }
    Ramp(const Ramp&) = delete;
    Ramp& operator=(const Ramp&) = delete;

    /// The clock: frames mixed so far.
    std::int64_t Mixed() const { return m_mixed; }
    bool GoesOn() const
    {
        const std::int64_t target = m_mixed + 44100 / 2;
        return Becomes([&] { return m_mixed >= target; });
    }

private:
    static std::uint32_t Beat(std::uint32_t frames, SOUND_USER user)
    {
        reinterpret_cast<Ramp*>(user)->m_mixed += frames;
        return frames;
    }
    static std::uint32_t Fill(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
    {
        auto& self = *reinterpret_cast<Ramp*>(user);
        auto* out = static_cast<std::int16_t*>(buffer);
        for (std::uint32_t i = 0; i < length / 4; ++i) {
            ++self.m_count;
            *out++ = static_cast<std::int16_t>(self.m_count & 0x7FFF);
            *out++ = static_cast<std::int16_t>(self.m_count >> 15);
        }
        return length;
    }

    HSTREAM m_stream = 0;
    std::int32_t m_count = 0;
    std::atomic<std::int64_t> m_mixed{0};
};

/// The count of the first and the last frame that is not silent. Between them every frame must be there once and in
/// order; a server without time to play leaves silence there, which is its own.
struct Heard {
    std::int32_t first = 0;
    std::int32_t last = 0;
};

Heard UnbrokenRamp(const std::vector<std::int16_t>& samples)
{
    Heard heard;
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        const std::int32_t count = samples[i] + samples[i + 1] * 0x8000;
        if (count == 0) {
            continue;
        }
        if (heard.first == 0) {
            heard.first = count;
        } else if (count != heard.last + 1) {
            ADD_FAILURE() << "frame " << i / 2 << " is " << count << ", after " << heard.last;
            return heard;
        }
        heard.last = count;
    }
    return heard;
}

class RealDevice : public ::testing::Test {
protected:
    RealDevice() { BASS_SetConfig(BASS_CONFIG_BUFFER, 200); }
    ~RealDevice() override { BASS_Free(); }

    AudioServer m_server;
};

BASS_DEVICEINFO DeviceInfo(std::uint32_t device)
{
    BASS_DEVICEINFO info{};
    EXPECT_TRUE(BASS_GetDeviceInfo(device, &info));
    return info;
}

TEST_F(RealDevice, AreListedByNumberWithTheDefaultAndTheOneInUse)
{
    m_server.Start({"second"});
    m_server.Control({"set-default-sink", "second"});
    EXPECT_STREQ(DeviceInfo(0).name, "No sound");
    EXPECT_STREQ(DeviceInfo(1).name, "velmora_out");
    EXPECT_STREQ(DeviceInfo(2).name, "second");
    EXPECT_EQ(DeviceInfo(1).flags, kEnabled);
    EXPECT_EQ(DeviceInfo(2).flags, kEnabled | kDefault);
    BASS_DEVICEINFO info{};
    EXPECT_FALSE(BASS_GetDeviceInfo(3, &info));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);
    EXPECT_FALSE(BASS_Init(3, 44100, 0, nullptr, nullptr));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);

    ASSERT_TRUE(BASS_Init(-1, 44100, 0, nullptr, nullptr));
    EXPECT_EQ(BASS_GetDevice(), 2);
    BASS_Free();
    ASSERT_TRUE(BASS_Init(1, 44100, 0, nullptr, nullptr));
    EXPECT_EQ(BASS_GetDevice(), 1);
    EXPECT_EQ(DeviceInfo(1).flags, kEnabled | kInUse);
    const Ramp ramp;
    const Recording recording(m_server);
    EXPECT_TRUE(recording.HasHeard(4410)) << "the device that was asked for, not the default";
}

TEST_F(RealDevice, PlaysEachSampleAsItIsAndLeavesNoThread)
{
    m_server.Start();
    // With the first thread of all a sanitizer starts one of its own, which stays.
    std::thread([] {}).join();
    const std::size_t threads = Threads();
    for (int run = 0; run < 2; ++run) {
        ASSERT_TRUE(BASS_Init(-1, 44100, BASS_DEVICE_LATENCY, nullptr, nullptr));
        EXPECT_EQ(Sound_DeviceState(), kSounding);
        BASS_INFO info{};
        ASSERT_TRUE(BASS_GetInfo(&info));
        EXPECT_GE(info.minbuf, 20U);
        EXPECT_TRUE(Becomes([&info] { return BASS_GetInfo(&info) && info.latency > 0; }));
        EXPECT_LT(info.latency, 1000U) << "the ring does not count";
        {
            const Recording recording(m_server);
            const Ramp ramp;
            EXPECT_TRUE(recording.HasHeard(100'000));
            EXPECT_EQ(UnbrokenRamp(recording.Samples()).first, 1);
        }
        BASS_Free();
        EXPECT_EQ(Threads(), threads);
    }
}

TEST_F(RealDevice, IsMadeAnewForAShorterBuffer)
{
    m_server.Start();
    ASSERT_TRUE(BASS_Init(-1, 44100, 0, nullptr, nullptr));
    const Ramp ramp;
    ASSERT_TRUE(ramp.GoesOn());
    BASS_INFO before{};
    BASS_GetInfo(&before);
    BASS_SetConfig(BASS_CONFIG_BUFFER, 20);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, 5);
    EXPECT_TRUE(Becomes([&] {
        BASS_INFO after{};
        return BASS_GetInfo(&after) && after.latency > 0 && after.latency < before.latency;
    }));
    EXPECT_EQ(Sound_DeviceState(), kSounding);
    const Recording recording(m_server);
    EXPECT_TRUE(recording.HasHeard(44100));
    UnbrokenRamp(recording.Samples());
}

TEST_F(RealDevice, ComesBackWithItsServerAndTheClockHasGoneOn)
{
    m_server.Start();
    ASSERT_TRUE(BASS_Init(-1, 44100, 0, nullptr, nullptr));
    const Ramp ramp;
    ASSERT_TRUE(ramp.GoesOn());
    const auto start = std::chrono::steady_clock::now();
    const std::int64_t mixedAtStart = ramp.Mixed();
    for (int time = 0; time < 2; ++time) {
        m_server.Kill();
        ASSERT_TRUE(Becomes([] { return Sound_DeviceState() == kLost; }));
        EXPECT_TRUE(ramp.GoesOn()) << "without a server";
        m_server.Start();
        ASSERT_TRUE(Becomes([] { return Sound_DeviceState() == kSounding; }));
        const Recording recording(m_server);
        EXPECT_TRUE(recording.HasHeard(4410));
    }
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    const double clock = static_cast<double>(ramp.Mixed() - mixedAtStart) / 44100;
    EXPECT_NEAR(clock, passed.count(), 1.0) << "a second is what the ring and a server's beginning may hold";
}

TEST_F(RealDevice, ThatHangsIsLostAndComesBackWhenItGoesOn)
{
    m_server.Start();
    ASSERT_TRUE(BASS_Init(-1, 44100, 0, nullptr, nullptr));
    const Ramp ramp;
    ASSERT_TRUE(ramp.GoesOn());
    m_server.Hang();
    EXPECT_TRUE(Becomes([] { return Sound_DeviceState() == kLost; }));
    EXPECT_TRUE(ramp.GoesOn());
    m_server.GoOn();
    EXPECT_TRUE(Becomes([] { return Sound_DeviceState() == kSounding; }));
    const Recording recording(m_server);
    EXPECT_TRUE(recording.HasHeard(4410));
}

TEST_F(RealDevice, IsFollowedWhenTheDefaultChangesOrIsUnplugged)
{
    m_server.Start({"second"});
    ASSERT_TRUE(BASS_Init(-1, 44100, 0, nullptr, nullptr));
    const Ramp ramp;
    const Recording first(m_server);
    ASSERT_TRUE(first.HasHeard(4410));
    m_server.Control({"set-default-sink", "second"});
    const Recording second(m_server, "second");
    EXPECT_TRUE(second.HasHeard(4410));
    EXPECT_EQ(Sound_DeviceState(), kSounding);

    // All of them out, one in again.
    m_server.Control({"unload-module", "module-null-sink"});
    ASSERT_TRUE(Becomes([] { return Sound_DeviceState() == kLost; }));
    EXPECT_TRUE(ramp.GoesOn());
    m_server.Control({"load-module", "module-null-sink", "sink_name=other", "rate=44100", "channels=2"});
    ASSERT_TRUE(Becomes([] { return Sound_DeviceState() == kSounding; }));
    const Recording again(m_server, "other");
    EXPECT_TRUE(again.HasHeard(4410));
}

TEST_F(RealDevice, IsNotNeeded)
{
    const auto expectNoSound = [] {
        ASSERT_TRUE(BASS_Init(-1, 44100, 0, nullptr, nullptr));
        EXPECT_EQ(BASS_GetDevice(), 0);
        EXPECT_EQ(Sound_DeviceState(), 0);
        EXPECT_EQ(DeviceInfo(0).flags, kEnabled | kDefault | kInUse);
        BASS_Free();
        EXPECT_FALSE(BASS_Init(1, 44100, 0, nullptr, nullptr));
        EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);
    };
    expectNoSound();
    // Hardware that takes sound without a clock is none.
    const std::filesystem::path alsa = m_server.Folder() / "alsa.conf";
    std::ofstream(alsa) << "pcm.!default { type null }\n";
    setenv("ALSA_CONFIG_PATH", alsa.c_str(), 1);
    expectNoSound();
}

} // namespace
} // namespace velmora::testing
