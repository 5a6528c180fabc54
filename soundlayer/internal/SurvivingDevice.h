#pragma once

#include "soundlayer/internal/AudioDevice.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace velmora::soundlayer {

/// A device that may go away and come back, whose callbacks go on all the time.
///
/// Lost is a device that says so or calls back no more. A stand-in then calls back by the clock, what the device's
/// silence owes included, while a thread of its own tries to make the device anew. When that has called back, the
/// stand-in ends. A device at rest is paused, and the stand-in calls back for it. Whatever happens, callbacks come one
/// at a time: a late one of the other side gets silence.
class SurvivingDevice final : public AudioDevice {
public:
    using LostNotice = std::function<void()>;
    /// A device, not started yet, that holds `deviceMS`. It may call `lost` from any thread until it is stopped.
    using Make = std::function<std::unique_ptr<AudioDevice>(std::uint32_t deviceMS, LostNotice lost)>;
    using MakeStandIn = std::function<std::unique_ptr<AudioDevice>(std::chrono::nanoseconds owed)>;

    struct Times {
        /// Without a call for so long, a device is lost.
        std::chrono::milliseconds silence{1000};
        std::chrono::milliseconds retry{1000};
        std::chrono::milliseconds look{200};
    };

    explicit SurvivingDevice(Make make)
        : SurvivingDevice(std::move(make), MakeNoSoundDevice, {})
    {
    }
    SurvivingDevice(Make make, MakeStandIn makeStandIn, Times times);
    ~SurvivingDevice() override { Stop(); }

    /// False when the device refuses the first time.
    bool Start(std::uint32_t rate, Callback callback) override;
    void Stop() override;
    /// While lost or at rest, what was last known.
    std::uint32_t LatencyMS() const override;
    std::uint32_t MinBufferMS() const override;
    /// The device is made anew when half of `bufferMS`, within 6..25 ms, is another length than what it holds.
    void SetBufferMS(std::uint32_t bufferMS) override;
    DeviceState State() const override { return m_state.load(std::memory_order_relaxed); }
    void SetMayRest(bool may) override { m_mayRest.store(may, std::memory_order_relaxed); }
    void Wake() override;

private:
    using Clock = SoundClock;
    enum class Side : std::uint8_t { Device, StandIn };

    /// [RT]
    void OnCall(Side side, std::int16_t* out, std::size_t frames, SoundClock::time_point heard);
    Callback CallbackOf(Side side);
    bool StartDevice(AudioDevice& device);
    std::unique_ptr<AudioDevice> MakeDevice();
    Clock::duration Silence() const;
    /// The keeper's thread, and its steps; `lock` is let go while a device is at work.
    void Keep();
    void Drop(std::unique_lock<std::mutex>& lock);
    void TryAgain(std::unique_lock<std::mutex>& lock);
    void Arrive(std::unique_lock<std::mutex>& lock);
    void BeginRest(std::unique_lock<std::mutex>& lock);
    void EndRest(std::unique_lock<std::mutex>& lock);

    const Make m_make;
    const MakeStandIn m_makeStandIn;
    const Times m_times;
    std::uint32_t m_rate = 0;
    Callback m_callback;

    std::atomic<Side> m_turn{Side::Device};
    std::atomic<bool> m_calling{false};
    std::atomic<bool> m_heard{false};
    std::atomic<Clock::rep> m_lastCall{0};
    std::atomic<DeviceState> m_state{DeviceState::None};
    std::atomic<bool> m_mayRest{false};

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::unique_ptr<AudioDevice> m_device;
    std::unique_ptr<AudioDevice> m_standIn;
    mutable std::uint32_t m_latencyMS = 0;
    std::uint32_t m_minBufferMS = 0;
    std::uint32_t m_wantedMS = 25;
    std::uint32_t m_deviceMS = 25;
    Clock::time_point m_nextTry;
    bool m_gone = false;
    bool m_resting = false;
    bool m_ending = false;
    std::thread m_keeper;
};

} // namespace velmora::soundlayer
