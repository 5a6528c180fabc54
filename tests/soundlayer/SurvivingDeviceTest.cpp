#include "soundlayer/internal/SurvivingDevice.h"

#include <atomic>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using namespace std::chrono_literals;

/// What the devices of a test have in common: how the next ones behave, and the way to call back from those made.
struct Script {
    std::mutex mutex;
    std::vector<AudioDevice::Callback> callbacks;
    std::vector<SurvivingDevice::LostNotice> notices;
    std::vector<std::uint32_t> lengths;
    std::atomic<int> refusals{0};
    std::atomic<bool> callsBack{true};
    std::atomic<int> running{0};
    std::atomic<int> tries{0};
    std::atomic<std::int64_t> owedNS{0};
    std::atomic<int> standIns{0};
    std::atomic<bool> paused{false};
};

class Scripted final : public AudioDevice {
public:
    Scripted(Script& script, bool standIn)
        : m_script(script)
        , m_standIn(standIn)
    {
    }
    bool Start(std::uint32_t, Callback callback) override
    {
        if (!m_standIn) {
            ++m_script.tries;
            if (m_script.refusals > 0) {
                --m_script.refusals;
                return false;
            }
        }
        ++m_script.running;
        if (!m_standIn && m_script.callsBack) {
            std::int16_t frame[2];
            callback(frame, 1, SoundClock::now());
        }
        const std::lock_guard lock(m_script.mutex);
        m_script.callbacks.push_back(std::move(callback));
        m_started = true;
        return true;
    }
    void Stop() override
    {
        m_script.running -= m_started ? 1 : 0;
        m_started = false;
    }
    std::uint32_t LatencyMS() const override { return 7; }
    std::uint32_t MinBufferMS() const override { return 50; }
    void SetPaused(bool paused) override { m_script.paused = paused; }

private:
    Script& m_script;
    const bool m_standIn;
    bool m_started = false;
};

class Surviving : public ::testing::Test {
protected:
    std::unique_ptr<SurvivingDevice> Make(SurvivingDevice::Times times)
    {
        return std::make_unique<SurvivingDevice>(
            [this](std::uint32_t deviceMS, SurvivingDevice::LostNotice lost) {
                const std::lock_guard lock(m_script.mutex);
                m_script.notices.push_back(std::move(lost));
                m_script.lengths.push_back(deviceMS);
                return std::make_unique<Scripted>(m_script, false);
            },
            [this](std::chrono::nanoseconds owed) {
                m_script.owedNS = owed.count();
                ++m_script.standIns;
                return std::make_unique<Scripted>(m_script, true);
            },
            times);
    }
    bool Start(SurvivingDevice& device)
    {
        return device.Start(44'100, [this](std::int16_t* out, std::size_t frames, SoundClock::time_point) {
            std::fill_n(out, 2 * frames, std::int16_t{1});
            m_given += frames;
        });
    }
    /// Calls back as the `index`th device or stand-in that was started; true when it got sound.
    bool Sounds(std::size_t index)
    {
        const std::lock_guard lock(m_script.mutex);
        std::int16_t frames[4] = {9, 9, 9, 9};
        m_script.callbacks.at(index)(frames, 2, SoundClock::now());
        EXPECT_NE(frames[3], 9) << "sound or silence, but no rest";
        return frames[3] == 1;
    }
    std::size_t Started()
    {
        const std::lock_guard lock(m_script.mutex);
        return m_script.callbacks.size();
    }
    template <class Condition>
    static void Await(Condition&& holds)
    {
        while (!holds()) {
            std::this_thread::yield();
        }
    }

    Script m_script;
    std::atomic<std::size_t> m_given{0};
};

TEST_F(Surviving, ADeviceThatNeverCallsBackIsLostUntilOneDoes)
{
    m_script.callsBack = false;
    const auto device = Make({1ms, 1ms, 1ms});
    ASSERT_TRUE(Start(*device));
    Await([this] { return m_script.tries >= 4; });
    EXPECT_EQ(device->State(), DeviceState::Lost);
    EXPECT_EQ(m_script.standIns, 1) << "one clock all the time";
    EXPECT_GE(m_script.owedNS, 1'000'000);
    EXPECT_EQ(m_given, 0U);
    device->Stop();
    EXPECT_EQ(m_script.running, 0);
    EXPECT_EQ(device->State(), DeviceState::None);
}

TEST_F(Surviving, OneSideSoundsAtATime)
{
    const auto device = Make({1h, 1ms, 1ms});
    ASSERT_TRUE(Start(*device));
    EXPECT_EQ(device->State(), DeviceState::Sounding);
    EXPECT_EQ(device->LatencyMS(), 7U);
    EXPECT_TRUE(Sounds(0));

    m_script.callsBack = false;
    m_script.refusals = 3;
    m_script.notices[0]();
    Await([this] { return Started() == 3; });
    EXPECT_EQ(m_script.tries, 5) << "it goes on trying";
    EXPECT_EQ(device->State(), DeviceState::Lost) << "started, but not heard yet";
    EXPECT_FALSE(Sounds(0)) << "a late call of the lost one";
    EXPECT_TRUE(Sounds(1));

    EXPECT_FALSE(Sounds(2)) << "the stand-in ends first";
    Await([&] { return device->State() == DeviceState::Sounding; });
    EXPECT_TRUE(Sounds(2));
    EXPECT_FALSE(Sounds(1));
    EXPECT_EQ(m_script.running, 1);
}

TEST_F(Surviving, AtRestTheStandInCallsBackAndWhatComesThenWaitsForTheDevice)
{
    const auto device = Make({500ms, 1ms, 1ms});
    ASSERT_TRUE(Start(*device));
    EXPECT_EQ(device->LatencyMS(), 7U);
    device->SetMayRest(true);
    Await([this] { return Started() == 2; });
    EXPECT_TRUE(m_script.paused);
    EXPECT_TRUE(Sounds(1));
    EXPECT_FALSE(Sounds(0));
    std::this_thread::sleep_for(600ms);
    EXPECT_EQ(device->State(), DeviceState::Sounding) << "its silence is no loss";
    EXPECT_EQ(device->LatencyMS(), 7U);

    device->Wake();
    Await([this] { return !m_script.paused; });
    EXPECT_FALSE(Sounds(1));
    EXPECT_TRUE(Sounds(0));
    Await([this] { return m_script.running == 1; });

    // A device that does not wake up is lost, and the stand-in's turn goes on.
    device->SetMayRest(true);
    Await([this] { return Started() == 3; });
    m_script.callsBack = false;
    device->Wake();
    Await([&] { return device->State() == DeviceState::Lost; });
    Await([this] { return Sounds(2); });
    EXPECT_EQ(m_script.standIns, 2);
}

TEST_F(Surviving, ARefusalAtTheStartIsTold)
{
    m_script.refusals = 1;
    const auto device = Make({1h, 1ms, 1ms});
    EXPECT_FALSE(Start(*device));
    EXPECT_EQ(device->State(), DeviceState::None);
    EXPECT_TRUE(Start(*device));
}

TEST_F(Surviving, TheDeviceHoldsHalfOfTheBufferWithinItsLimits)
{
    const auto device = Make({1h, 1ms, 1ms});
    device->SetBufferMS(500);
    ASSERT_TRUE(Start(*device));
    for (const std::uint32_t bufferMS : {50U, 1000U, 30U, 31U, 5U}) {
        const std::size_t made = Started();
        device->SetBufferMS(bufferMS);
        if (bufferMS == 30 || bufferMS == 5) {
            // A stand-in in between.
            Await([&] { return Started() == made + 2 && device->State() == DeviceState::Sounding; });
        }
    }
    device->Stop();
    EXPECT_EQ(m_script.lengths, (std::vector<std::uint32_t>{25, 15, 6}));
}

} // namespace
} // namespace velmora::soundlayer
