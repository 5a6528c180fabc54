#include "engine/internal/LevelStore.h"

#include <algorithm>
#include <cmath>

namespace velmora::engine {

StereoLevel MeasureRms(std::span<const std::int16_t> interleaved)
{
    const std::size_t frames = interleaved.size() / 2;
    if (frames == 0) {
        return {};
    }
    // Two sums for each side, side by side, become vector code. A 64-bit float holds the squares of 2^23 full-scale
    // frames exactly.
    double sums[4] = {};
    const std::int16_t* samples = interleaved.data();
    std::size_t i = 0;
    for (; i + 4 <= 2 * frames; i += 4) {
        for (std::size_t k = 0; k < 4; ++k) {
            const auto sample = static_cast<double>(samples[i + k]);
            sums[k] += sample * sample;
        }
    }
    for (; i < 2 * frames; ++i) {
        const auto sample = static_cast<double>(samples[i]);
        sums[i % 4] += sample * sample;
    }
    const auto rms = [frames](double squares) {
        return static_cast<std::int32_t>(std::sqrt(squares / static_cast<double>(frames)));
    };
    return {rms(sums[0] + sums[2]), rms(sums[1] + sums[3])};
}

void LevelStore::Store(std::uint32_t handle, StereoLevel level)
{
    if (handle == 0) {
        return;
    }
    // The mixing thread is the only writer: a free slot found here is still free when it is taken.
    const auto slot = std::ranges::find_if(m_slots, [handle](const Slot& s) {
        const std::uint32_t owner = s.handle.load(std::memory_order_relaxed);
        return owner == handle || owner == 0;
    });
    if (slot == m_slots.end()) {
        return;
    }
    slot->level.store(level, std::memory_order_relaxed);
    slot->handle.store(handle, std::memory_order_release);
}

StereoLevel LevelStore::Read(std::uint32_t handle) const
{
    const Slot* slot = handle == 0 ? nullptr : Find(handle);
    return slot ? slot->level.load(std::memory_order_relaxed) : StereoLevel{};
}

void LevelStore::Clear()
{
    for (Slot& slot : m_slots) {
        slot.handle.store(0, std::memory_order_relaxed);
        slot.level.store({}, std::memory_order_relaxed);
    }
}

const LevelStore::Slot* LevelStore::Find(std::uint32_t handle) const
{
    const auto slot = std::ranges::find_if(
        m_slots, [handle](const Slot& s) { return s.handle.load(std::memory_order_acquire) == handle; });
    return slot == m_slots.end() ? nullptr : &*slot;
}

} // namespace velmora::engine
