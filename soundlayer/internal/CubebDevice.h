#pragma once

#include "soundlayer/internal/AudioDevice.h"
#include "soundlayer/internal/CubebContext.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

struct cubeb_stream;

namespace velmora::soundlayer {

/// A device of the sound server or of the hardware. Lasts for one start.
///
/// Start and stop may take long when the server hangs; they are not for threads that must not wait.
class CubebDevice final : public AudioDevice {
public:
    struct Choice {
        std::string backend;
        /// Empty for the system's default, which is then followed when it changes.
        std::string id;
        /// What the device is asked to hold, in ms.
        std::uint32_t deviceMS = 25;
    };

    /// `lost` is called, on a thread of the server's connection, when the device has gone for good.
    CubebDevice(Choice choice, std::function<void()> lost);
    ~CubebDevice() override { Stop(); }

    bool Start(std::uint32_t rate, Callback callback) override;
    void Stop() override;
    void SetPaused(bool paused) override;
    /// Median over the callbacks of the last second; 0 before the first one.
    std::uint32_t LatencyMS() const override;
    std::uint32_t MinBufferMS() const override { return m_minBufferMS; }

private:
    using Clock = SoundClock;
    /// A callback and the latency that it was told.
    struct Reading {
        std::uint32_t atMS = 0;
        std::uint32_t frames = 0;
    };
    static_assert(std::atomic<Reading>::is_always_lock_free);
    static constexpr std::size_t kReadings = 512;

    /// [RT]
    long OnData(cubeb_stream* stream, std::int16_t* out, long frames);
    std::uint32_t SinceStartMS() const;

    const Choice m_choice;
    const std::function<void()> m_lost;
    Callback m_callback;
    std::uint32_t m_rate = 0;
    std::uint32_t m_minBufferMS = 0;
    Clock::time_point m_started;
    std::array<std::atomic<Reading>, kReadings> m_readings{};
    std::atomic<std::size_t> m_readingCount{0};
    CubebContext m_context;
    CubebStream m_stream;
};

} // namespace velmora::soundlayer
