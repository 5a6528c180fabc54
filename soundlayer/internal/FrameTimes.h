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

    /// A second of frames, or fewer where something moved them.
    struct Line {
        std::int64_t firstFrame = 0;
        /// When frame 0 would have sounded.
        SoundClock::time_point origin;
        /// Frames went missing before it or waited, so that the line before it is another for more than its clock.
        bool moved = false;
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

    /// Those that are complete.
    const std::vector<Line>& Lines() const { return m_lines; }

private:
    SoundClock::time_point OriginOf(const Reading& reading) const;
    Line OpenLine() const;
    /// What is open becomes a line; the next one is `moved` beside it.
    void Close(bool moved);
    bool HasMoved() const;

    const std::uint32_t m_rate;
    const Beside m_beside;
    std::vector<Line> m_lines;
    /// Of the second under way.
    std::vector<Reading> m_open;
    bool m_openMoved = false;
};

} // namespace velmora::soundlayer
