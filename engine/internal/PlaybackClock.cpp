#include "engine/internal/PlaybackClock.h"

#include "core/Units.h"

namespace velmora::engine {

void PlaybackClock::Advance(std::uint32_t frames)
{
    if (Playing()) {
        m_frames.fetch_add(frames, std::memory_order_acq_rel);
    }
}

std::int32_t PlaybackClock::PositionMS(std::int32_t rate) const
{
    // The greatest t with floor(t x rate / 1000) <= frame.
    return static_cast<std::int32_t>(((Frames() + 1) * 1000 - 1) / rate);
}

void PlaybackClock::SetPositionMS(std::int32_t positionMS, std::int32_t rate)
{
    m_frames.store(core::FrameOfMS(positionMS < 0 ? 0 : positionMS, rate), std::memory_order_release);
}

} // namespace velmora::engine
