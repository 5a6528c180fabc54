#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

namespace velmora::engine {

/// A clip is known by its channel and its id within that channel.
struct EventKey {
    std::int32_t channelId = 0;
    std::int32_t eventId = 0;

    auto operator<=>(const EventKey&) const = default;
};

/// One clip. Times in ms; -2147483648 stands for no fade. The path is absolute, in the internal form.
struct EventRow {
    double gainFactor = 1.0;
    std::string filePath;
    std::int32_t timePosMS = 0;
    std::int32_t startMS = 0;
    std::int32_t endMS = 0;
    std::int32_t fadeInEndMS = 0;
    std::int32_t fadeOutStartMS = 0;
};

/// The channels with their input mixers, and the clips. Interface thread. Adding or removing a clip costs the logarithm
/// of their number.
class EngineTables {
public:
    void AddChannel(std::int32_t channelId, std::uint32_t mixerHandle) { m_channels[channelId] = mixerHandle; }
    /// Drops the channel's clips too.
    void RemoveChannel(std::int32_t channelId);
    void ClearChannels() { m_channels.clear(); }
    /// 0 for an unknown channel.
    std::uint32_t MixerOf(std::int32_t channelId) const;

    /// Adds a clip or replaces the one of that key.
    void PutEvent(EventKey key, EventRow row);
    void RemoveEvent(EventKey key) { m_events.erase(key); }
    void ClearEvents() { m_events.clear(); }
    const std::map<EventKey, EventRow>& Events() const { return m_events; }

private:
    std::unordered_map<std::int32_t, std::uint32_t> m_channels;
    std::map<EventKey, EventRow> m_events;
};

} // namespace velmora::engine
