#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

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

    std::int64_t EndPosMS() const { return std::int64_t{timePosMS} + endMS - startMS; }
    bool operator==(const EventRow&) const = default;
};

/// A clip with the mixer that it plays into.
struct ClipToPlay {
    EventKey key;
    EventRow row;
    std::uint32_t mixer = 0;
};

/// The channels with their input mixers, and the clips, also in the order of their time. Adding or removing a clip
/// costs the logarithm of their number. One thread at a time.
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
    void RemoveEvent(EventKey key);
    void ClearEvents();
    const std::map<EventKey, EventRow>& Events() const { return m_events; }

    /// The clips of known channels that sound anywhere in `fromMS`..`toMS`, by their start, `most` at most.
    std::vector<ClipToPlay> Between(std::int64_t fromMS, std::int64_t toMS, std::size_t most) const;

private:
    std::unordered_map<std::int32_t, std::uint32_t> m_channels;
    std::map<EventKey, EventRow> m_events;
    std::set<std::pair<std::int32_t, EventKey>> m_byTime;
    /// No clip is longer; it only grows until all go.
    std::int64_t m_longestMS = 0;
};

} // namespace velmora::engine
