#pragma once

#include "soundlayer/internal/ClockDrift.h"
#include "soundlayer/internal/FrameTimes.h"
#include "soundlayer/internal/ReadingLog.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace velmora::soundlayer {

/// When the frames of a capture sounded and when those of the output were heard: what lines a take up, and what keeps
/// it lined up where the two have clocks of their own. One thread at a time.
///
/// Frames of the capture are those that it gives, at its rate; those of its device come at the device's rate.
class CaptureTimes {
public:
    /// `heard` may be null: then nothing can be lined up.
    CaptureTimes(std::uint32_t rate, std::uint32_t deviceRate, std::shared_ptr<const ReadingLog> heard,
                 std::uint32_t heardRate);

    /// The device's frames before number `deviceFrame` had sounded at `at`.
    void Sounded(std::int64_t deviceFrame, SoundClock::time_point at);
    /// When the device's frame sounds if all goes on as it does; nothing before the first one.
    std::optional<SoundClock::time_point> ExpectedAt(std::int64_t deviceFrame) const
    {
        return m_sounded.NewestTimeOf(deviceFrame);
    }
    /// Takes what the output has told since.
    void ReadHeard();

    /// How long after frame `frame` sounded, frame `mixed` of the output was heard, going by both and by what came in
    /// the seconds after them; nothing while it is not known.
    std::optional<SoundClock::duration> OffsetOf(std::int64_t frame, std::int64_t mixed) const;

    /// A take begins with frame `frame`: from there on the capture is to keep pace with the output.
    void BeginPace(std::int64_t frame);
    /// The frames by which the capture has fallen behind the output when it gives frame `frame`; less than 0 when it
    /// runs ahead, and 0 as long as nobody can hear it.
    std::int32_t FramesBehind(std::int64_t frame) const;
    /// From frame `frame` on, `over` frames hold `frames` more than the device's.
    void Stretched(std::int64_t frame, std::int32_t frames, std::int32_t over);

private:
    struct Stretch {
        std::int64_t first = 0;
        /// More frames than the device's before it, and in it.
        std::int64_t before = 0;
        std::int32_t frames = 0;
        std::int32_t over = 0;
    };

    std::int64_t StretchedBefore(std::int64_t frame) const;
    std::optional<SoundClock::time_point> SoundedAt(std::int64_t frame) const;

    const std::uint32_t m_rate;
    const std::uint32_t m_deviceRate;
    const std::uint32_t m_heardRate;
    const std::shared_ptr<const ReadingLog> m_heardLog;
    std::uint64_t m_nextHeard = 0;
    FrameTimes m_sounded;
    FrameTimes m_heard;
    /// Of the output's lines.
    std::size_t m_nextLine = 0;
    ClockDrift m_drift;
    std::int64_t m_paceFrom = 0;
    std::int64_t m_stretchedAtPace = 0;
    std::vector<Stretch> m_stretches;
};

} // namespace velmora::soundlayer
