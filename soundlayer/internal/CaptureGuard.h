#pragma once

#include <cstdint>
#include <span>

namespace velmora::soundlayer {

/// Watches an input for what a singer would want to know at once. One thread at a time.
class CaptureGuard {
public:
    explicit CaptureGuard(std::uint32_t rate)
        : m_memory(std::int64_t{kSeconds} * rate)
    {
    }

    void Look(std::span<const std::int16_t> stereo);
    /// Nothing but zeros for 3 s.
    bool Silent() const { return m_zeros >= m_memory; }
    /// Three frames in a row at the limit within the last 3 s, on either side.
    bool Clipped() const { return m_sinceClip < m_memory; }

private:
    static constexpr std::uint32_t kSeconds = 3;

    const std::int64_t m_memory;
    std::int64_t m_zeros = 0;
    std::int64_t m_sinceClip = m_memory;
    int m_atLimit[2] = {};
};

} // namespace velmora::soundlayer
