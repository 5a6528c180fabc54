#pragma once

#include "soundlayer/internal/AudioDevice.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// When a frame sounded, as a device's callback told.
struct Reading {
    std::int64_t frame = 0;
    SoundClock::time_point at;
    /// Readings with different numbers do not lie on one line: frames went missing between them.
    std::uint32_t breaks = 0;
};

/// The last readings of a device, from its callback to whoever wants to know. One thread adds, any thread reads, nobody
/// waits; who comes too late misses the older ones.
class ReadingLog {
public:
    /// [RT]
    void Add(const Reading& reading)
    {
        const std::uint64_t count = m_count.load(std::memory_order_relaxed);
        Slot& slot = m_slots[count % kSlots];
        slot.frame.store(reading.frame, std::memory_order_release);
        slot.at.store(reading.at.time_since_epoch().count(), std::memory_order_release);
        slot.breaks.store(reading.breaks, std::memory_order_release);
        m_count.store(count + 1, std::memory_order_release);
    }

    std::uint64_t Count() const { return m_count.load(std::memory_order_acquire); }

    /// The readings from number `next` on, as far as they are still there; `next` becomes the number of the one to
    /// come.
    std::vector<Reading> TakeFrom(std::uint64_t& next) const
    {
        std::vector<Reading> readings;
        const std::uint64_t count = Count();
        for (next = count - next > kSafe ? count - kSafe : next; next < count; ++next) {
            const Slot& slot = m_slots[next % kSlots];
            readings.push_back({slot.frame.load(std::memory_order_acquire),
                                SoundClock::time_point(SoundClock::duration(slot.at.load(std::memory_order_acquire))),
                                slot.breaks.load(std::memory_order_acquire)});
        }
        return readings;
    }

private:
    struct Slot {
        std::atomic<std::int64_t> frame{0};
        std::atomic<SoundClock::rep> at{0};
        std::atomic<std::uint32_t> breaks{0};
    };
    static constexpr std::size_t kSlots = 1024;
    /// The rest may be written over while they are read.
    static constexpr std::size_t kSafe = kSlots / 2;

    std::array<Slot, kSlots> m_slots{};
    std::atomic<std::uint64_t> m_count{0};
};

} // namespace velmora::soundlayer
