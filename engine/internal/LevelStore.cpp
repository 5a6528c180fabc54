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
    // 64 bits hold the squares of 2^33 full-scale frames, so no block overflows.
    std::int64_t left = 0;
    std::int64_t right = 0;
    for (std::size_t i = 0; i < 2 * frames; i += 2) {
        left += interleaved[i] * interleaved[i];
        right += interleaved[i + 1] * interleaved[i + 1];
    }
    const auto rms = [frames](std::int64_t squares) {
        return static_cast<std::int32_t>(std::sqrt(static_cast<double>(squares) / static_cast<double>(frames)));
    };
    return {rms(left), rms(right)};
}

namespace {

/// Slot: the handle above, then 16 bits for each side, which hold 0..32768.
std::uint64_t Pack(std::uint32_t handle, StereoLevel level)
{
    const auto side = [](std::int32_t value) { return static_cast<std::uint64_t>(std::clamp(value, 0, 65535)); };
    return std::uint64_t{handle} << 32 | side(level.left) << 16 | side(level.right);
}

std::uint32_t HandleOf(std::uint64_t slot)
{
    return static_cast<std::uint32_t>(slot >> 32);
}

StereoLevel LevelOf(std::uint64_t slot)
{
    return {static_cast<std::int32_t>(slot >> 16 & 0xFFFF), static_cast<std::int32_t>(slot & 0xFFFF)};
}

} // namespace

void LevelStore::Store(std::uint32_t handle, StereoLevel level)
{
    if (handle == 0) {
        return;
    }
    const std::uint64_t wanted = Pack(handle, level);
    for (Slot& slot : m_slots) {
        std::uint64_t held = slot.load(std::memory_order_relaxed);
        // Tried again when the slot was cleared meanwhile, and left when another stream took it.
        while (HandleOf(held) == handle || held == 0) {
            if (slot.compare_exchange_weak(held, wanted, std::memory_order_relaxed)) {
                return;
            }
        }
    }
}

StereoLevel LevelStore::Read(std::uint32_t handle) const
{
    if (handle == 0) {
        return {};
    }
    for (const Slot& slot : m_slots) {
        const std::uint64_t held = slot.load(std::memory_order_relaxed);
        if (HandleOf(held) == handle) {
            return LevelOf(held);
        }
    }
    return {};
}

void LevelStore::Clear()
{
    for (Slot& slot : m_slots) {
        slot.store(0, std::memory_order_relaxed);
    }
}

} // namespace velmora::engine
