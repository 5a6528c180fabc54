#include "engine/internal/EngineTables.h"

#include <limits>
#include <utility>

namespace velmora::engine {

void EngineTables::RemoveChannel(std::int32_t channelId)
{
    m_channels.erase(channelId);
    constexpr auto kFirst = std::numeric_limits<std::int32_t>::min();
    constexpr auto kLast = std::numeric_limits<std::int32_t>::max();
    m_events.erase(m_events.lower_bound({channelId, kFirst}), m_events.upper_bound({channelId, kLast}));
}

std::uint32_t EngineTables::MixerOf(std::int32_t channelId) const
{
    const auto found = m_channels.find(channelId);
    return found == m_channels.end() ? 0 : found->second;
}

void EngineTables::PutEvent(EventKey key, EventRow row)
{
    m_events.insert_or_assign(key, std::move(row));
}

} // namespace velmora::engine
