#pragma once

#include "soundlayer/internal/CaptureDevice.h"
#include "soundlayer/internal/SampleRing.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <semaphore>
#include <vector>

namespace velmora::soundlayer {

/// What a record device delivers on its way from the device's callback to one reader.
class CaptureFeed {
public:
    /// A block as it arrived.
    struct Arrival {
        std::size_t frames = 0;
        /// Frames before it that found no room.
        std::size_t lost = 0;
        SoundClock::time_point end;
    };

    explicit CaptureFeed(AudioFormat format);

    /// False when there is no room for the block; one that does not come again counts as lost. Device's thread. [RT]
    bool Put(const CaptureBlock& block);
    /// The next block, whose samples take the place of `samples`; false when none waits. Reader only.
    bool Take(Arrival& arrival, std::vector<std::int16_t>& samples);
    /// Returns when 5 ms more were put or `Wake` was called, at the latest after `time`.
    void Wait(std::chrono::milliseconds time) { static_cast<void>(m_arrived.try_acquire_for(time)); }
    void Wake() { m_arrived.release(); }
    /// The device has gone for good. Any thread.
    void Lose()
    {
        m_deviceLost.store(true, std::memory_order_release);
        Wake();
    }
    /// What waits then is all that comes.
    bool DeviceLost() const { return m_deviceLost.load(std::memory_order_acquire); }

private:
    static constexpr std::uint32_t kSeconds = 4;
    static constexpr std::size_t kBlocks = 4096;

    const std::size_t m_channels;
    const std::size_t m_wakeFrames;
    SampleRing m_ring;
    /// Those from `m_taken` to `m_put` wait, each in the place of its number.
    std::vector<Arrival> m_arrivals = std::vector<Arrival>(kBlocks);
    std::atomic<std::size_t> m_put{0};
    std::atomic<std::size_t> m_taken{0};
    std::counting_semaphore<> m_arrived{0};
    std::atomic<bool> m_deviceLost{false};
    /// Of the device's thread.
    std::size_t m_lost = 0;
    std::size_t m_sinceWake = 0;
};

} // namespace velmora::soundlayer
