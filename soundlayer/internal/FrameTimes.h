#pragma once

#include "soundlayer/internal/ReadingLog.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace velmora::soundlayer {

/// When each frame sounds, out of readings that are off by whatever a callback came late or a server guessed: a line
/// through the middle of each second of frames, and a new one where frames went missing. One thread at a time.
class FrameTimes {
public:
    /// What makes several readings in a row lie beside the line.
    enum class Beside {
        /// They are late, as callbacks are, so the line runs through the lower quarter.
        Late,
        /// The device has let frames wait, and all that come wait too.
        Moved
    };

    FrameTimes(std::uint32_t rate, Beside beside);

    /// Frames rise from reading to reading.
    void Add(const Reading& reading);
    /// By the line of the frame's second, or by the nearest there is; nothing before the first reading.
    std::optional<SoundClock::time_point> TimeOf(std::int64_t frame) const;
    /// Readings go as far as that frame.
    bool Reaches(std::int64_t frame) const { return !m_open.empty() && m_open.back().frame >= frame; }
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
    bool HasMoved() const;

    const std::uint32_t m_rate;
    const Beside m_beside;
    std::vector<Line> m_lines;
    /// Of the second under way.
    std::vector<Reading> m_open;
};

} // namespace velmora::soundlayer
