#include "soundlayer/internal/FrameTimes.h"

#include <algorithm>

namespace velmora::soundlayer {

namespace {
/// So many readings that are so far from the line make another one.
constexpr std::ptrdiff_t kMovedReadings = 3;
constexpr std::chrono::milliseconds kMovedBy{2};
} // namespace

FrameTimes::FrameTimes(std::uint32_t rate, Beside beside)
    : m_rate(rate)
    , m_beside(beside)
{
}

void FrameTimes::Add(const Reading& reading)
{
    const bool broken = !m_open.empty() && reading.breaks != m_open.front().breaks;
    if (broken || (!m_open.empty() && reading.frame - m_open.front().frame >= m_rate)) {
        Close(broken);
    }
    m_open.push_back(reading);
    if (HasMoved()) {
        const std::vector<Reading> moved(m_open.end() - kMovedReadings, m_open.end());
        m_open.resize(m_open.size() - moved.size());
        Close(true);
        m_open = moved;
    }
}

std::optional<SoundClock::time_point> FrameTimes::TimeOf(std::int64_t frame) const
{
    if (m_open.empty()) {
        return {};
    }
    if (m_lines.empty() || frame >= m_open.front().frame) {
        return NewestTimeOf(frame);
    }
    const auto after = std::ranges::upper_bound(m_lines, frame, {}, &Line::firstFrame);
    const Line& line = after == m_lines.begin() ? *after : *(after - 1);
    return line.origin + TimeOfFrames(frame, m_rate);
}

std::optional<SoundClock::time_point> FrameTimes::NewestTimeOf(std::int64_t frame) const
{
    if (m_open.empty()) {
        return {};
    }
    return OpenLine().origin + TimeOfFrames(frame, m_rate);
}

void FrameTimes::Close(bool moved)
{
    m_lines.push_back(OpenLine());
    m_open.clear();
    m_openMoved = moved;
}

SoundClock::time_point FrameTimes::OriginOf(const Reading& reading) const
{
    return reading.at - TimeOfFrames(reading.frame, m_rate);
}

bool FrameTimes::HasMoved() const
{
    if (m_beside != Beside::Moved || static_cast<std::ptrdiff_t>(m_open.size()) <= 2 * kMovedReadings) {
        return false;
    }
    const SoundClock::time_point origin = OpenLine().origin;
    return std::all_of(m_open.end() - kMovedReadings, m_open.end(),
                       [&](const Reading& reading) { return std::chrono::abs(OriginOf(reading) - origin) > kMovedBy; });
}

FrameTimes::Line FrameTimes::OpenLine() const
{
    std::vector<SoundClock::time_point> origins;
    for (const Reading& reading : m_open) {
        origins.push_back(OriginOf(reading));
    }
    const auto place =
        origins.begin() + static_cast<std::ptrdiff_t>(origins.size() / (m_beside == Beside::Late ? 4 : 2));
    std::ranges::nth_element(origins, place);
    return {m_open.front().frame, *place, m_openMoved};
}

} // namespace velmora::soundlayer
