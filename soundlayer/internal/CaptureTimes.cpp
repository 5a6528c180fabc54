#include "soundlayer/internal/CaptureTimes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora::soundlayer {

namespace {
/// A take is lined up by the middle of what its first seconds tell. Playback often stumbles at its start, and what was
/// sung follows what was heard after that.
constexpr std::chrono::seconds kSettled{3};
constexpr std::chrono::milliseconds kStep{100};
/// So far apart that it is worth another sample than the device's, in ms.
constexpr double kHeardMS = 0.5;

/// Readings of the output from before the capture, so that something is known from its start on.
constexpr std::uint64_t kHeardBefore = 3;

double Seconds(SoundClock::duration time)
{
    return std::chrono::duration<double>(time).count();
}
} // namespace

CaptureTimes::CaptureTimes(std::uint32_t rate, std::uint32_t deviceRate, std::shared_ptr<const ReadingLog> heard,
                           std::uint32_t heardRate)
    : m_rate(rate)
    , m_deviceRate(deviceRate)
    , m_heardRate(heardRate)
    , m_heardLog(std::move(heard))
    , m_sounded(deviceRate, FrameTimes::Beside::Late)
    , m_heard(heardRate, FrameTimes::Beside::Moved)
{
    const std::uint64_t told = m_heardLog ? m_heardLog->Count() : 0;
    m_nextHeard = told - std::min(told, kHeardBefore);
}

void CaptureTimes::Sounded(std::int64_t deviceFrame, SoundClock::time_point at)
{
    m_sounded.Add({deviceFrame, at, 0});
}

void CaptureTimes::ReadHeard()
{
    if (!m_heardLog) {
        return;
    }
    for (const Reading& reading : m_heardLog->TakeFrom(m_nextHeard)) {
        m_heard.Add(reading);
    }
    for (; !m_sounded.Lines().empty() && m_nextLine < m_heard.Lines().size(); ++m_nextLine) {
        const FrameTimes::Line& line = m_heard.Lines()[m_nextLine];
        const SoundClock::time_point begins = line.origin + TimeOfFrames(line.firstFrame, m_heardRate);
        m_drift.Add(Seconds(begins.time_since_epoch()), Seconds(m_sounded.Lines().back().origin - line.origin),
                    line.moved);
    }
}

std::optional<SoundClock::duration> CaptureTimes::OffsetOf(std::int64_t frame, std::int64_t mixed) const
{
    const auto sounded = SoundedAt(frame);
    const auto heard = m_heard.TimeOf(mixed);
    if (!sounded || !heard) {
        return {};
    }
    const SoundClock::duration atStart = *heard - *sounded;
    std::vector<SoundClock::duration> offsets;
    for (SoundClock::duration later{}; later < kSettled && m_heard.Reaches(mixed + FramesIn(later, m_heardRate));
         later += kStep) {
        const auto heardThen = m_heard.TimeOf(mixed + FramesIn(later, m_heardRate));
        const auto soundedThen = SoundedAt(frame + FramesIn(later + atStart, m_rate));
        // What lies between the two frames is the same time by either count.
        offsets.push_back(*heardThen - *soundedThen + atStart);
    }
    if (offsets.empty()) {
        return atStart;
    }
    const auto middle = offsets.begin() + static_cast<std::ptrdiff_t>(offsets.size() / 2);
    std::ranges::nth_element(offsets, middle);
    return *middle;
}

void CaptureTimes::BeginPace(std::int64_t frame)
{
    m_paceFrom = frame;
    m_stretchedAtPace = StretchedBefore(frame);
}

std::int32_t CaptureTimes::FramesBehind(std::int64_t frame) const
{
    const auto stretched = static_cast<double>(StretchedBefore(frame) - m_stretchedAtPace);
    const double behind = m_drift.Rate() * static_cast<double>(frame - m_paceFrom) - stretched;
    // What has begun goes on, so that it ends where it should.
    const double least = m_stretches.empty() ? kHeardMS * m_rate / 1000 : 1;
    return std::abs(behind) < least ? 0 : static_cast<std::int32_t>(std::lround(behind));
}

void CaptureTimes::Stretched(std::int64_t frame, std::int32_t frames, std::int32_t over)
{
    m_stretches.push_back({frame, StretchedBefore(frame), frames, over});
}

std::int64_t CaptureTimes::StretchedBefore(std::int64_t frame) const
{
    const auto after = std::ranges::upper_bound(m_stretches, frame, {}, &Stretch::first);
    if (after == m_stretches.begin()) {
        return 0;
    }
    const Stretch& stretch = *(after - 1);
    return stretch.before + stretch.frames * std::min<std::int64_t>(frame - stretch.first, stretch.over) / stretch.over;
}

std::optional<SoundClock::time_point> CaptureTimes::SoundedAt(std::int64_t frame) const
{
    return m_sounded.TimeOf((frame - StretchedBefore(frame)) * m_deviceRate / m_rate);
}

} // namespace velmora::soundlayer
