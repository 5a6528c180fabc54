#pragma once

#include "soundlayer/internal/ReadingLog.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace velmora::soundlayer {

/// When each frame sounds, out of readings that are off by whatever a callback came late: one line for each second of
/// frames, and a new one where frames went missing. One thread at a time.
class FrameTimes {
public:
    /// How the line runs through the readings of a second. A device that knows its latency is off to both sides; one
    /// that does not is late at the most.
    enum class Fit { Median, Earliest };

    FrameTimes(std::uint32_t rate, Fit fit);

    /// Frames rise from reading to reading.
    void Add(const Reading& reading);
    /// By the line of the frame's second, or by the nearest there is; nothing before the first reading.
    std::optional<SoundClock::time_point> TimeOf(std::int64_t frame) const;
    /// As `TimeOf`, by the newest line.
    std::optional<SoundClock::time_point> NewestTimeOf(std::int64_t frame) const;

private:
    struct Line {
        std::int64_t firstFrame = 0;
        /// When frame 0 would have sounded.
        SoundClock::time_point origin;
    };

    SoundClock::time_point OriginOf(const Reading& reading) const;
    Line OpenLine() const;

    const std::uint32_t m_rate;
    const Fit m_fit;
    std::vector<Line> m_lines;
    /// Of the second under way.
    std::vector<Reading> m_open;
};

} // namespace velmora::soundlayer
