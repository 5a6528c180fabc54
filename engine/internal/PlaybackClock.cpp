#include "engine/internal/PlaybackClock.h"

namespace velmora::engine {

std::int32_t PlaybackClock::TimeOf(std::int64_t frame, std::int32_t rate)
{
    // The greatest t with floor(t x rate / 1000) <= frame.
    return static_cast<std::int32_t>(((frame + 1) * 1000 - 1) / rate);
}

} // namespace velmora::engine
