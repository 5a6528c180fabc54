#include "engine/internal/EngineTables.h"

#include <algorithm>
#include <limits>

namespace velmora::engine {

namespace {
constexpr auto kFirst = std::numeric_limits<std::int32_t>::min();
constexpr auto kLast = std::numeric_limits<std::int32_t>::max();
} // namespace

void EngineTables::RemoveChannel(std::int32_t channelId)
{
    m_channels.erase(channelId);
    const auto end = m_events.upper_bound({channelId, kLast});
    for (auto event = m_events.lower_bound({channelId, kFirst}); event != end;) {
        m_byTime.erase({event->second.timePosMS, event->first});
        event = m_events.erase(event);
    }
}

std::uint32_t EngineTables::MixerOf(std::int32_t channelId) const
{
    const auto found = m_channels.find(channelId);
    return found == m_channels.end() ? 0 : found->second;
}

void EngineTables::PutEvent(EventKey key, EventRow row)
{
    RemoveEvent(key);
    m_byTime.insert({row.timePosMS, key});
    m_longestMS = std::max(m_longestMS, row.EndPosMS() - row.timePosMS);
    m_events.emplace(key, std::move(row));
}

void EngineTables::RemoveEvent(EventKey key)
{
    const auto found = m_events.find(key);
    if (found != m_events.end()) {
        m_byTime.erase({found->second.timePosMS, key});
        m_events.erase(found);
    }
}

void EngineTables::ClearEvents()
{
    m_events.clear();
    m_byTime.clear();
    m_longestMS = 0;
}

std::vector<ClipToPlay> EngineTables::Between(std::int64_t fromMS, std::int64_t toMS, std::size_t most) const
{
    std::vector<ClipToPlay> clips;
    const auto earliest = static_cast<std::int32_t>(std::clamp<std::int64_t>(fromMS - m_longestMS, kFirst, kLast));
    for (auto at = m_byTime.lower_bound({earliest, {kFirst, kFirst}}); at != m_byTime.end() && clips.size() < most;
         ++at) {
        const auto& [timePosMS, key] = *at;
        if (timePosMS > toMS) {
            break;
        }
        const EventRow& row = m_events.at(key);
        const std::uint32_t mixer = MixerOf(key.channelId);
        if (mixer != 0 && row.EndPosMS() > std::max<std::int64_t>(fromMS, timePosMS)) {
            clips.push_back({key, row, mixer});
        }
    }
    return clips;
}

} // namespace velmora::engine
