#include "soundlayer/internal/FrameTimes.h"

#include <algorithm>

namespace velmora::soundlayer {

FrameTimes::FrameTimes(std::uint32_t rate, Fit fit)
    : m_rate(rate)
    , m_fit(fit)
{
}

void FrameTimes::Add(const Reading& reading)
{
    if (!m_open.empty() &&
        (reading.breaks != m_open.front().breaks || reading.frame - m_open.front().frame >= m_rate)) {
        m_lines.push_back(OpenLine());
        m_open.clear();
    }
    m_open.push_back(reading);
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

SoundClock::time_point FrameTimes::OriginOf(const Reading& reading) const
{
    return reading.at - TimeOfFrames(reading.frame, m_rate);
}

FrameTimes::Line FrameTimes::OpenLine() const
{
    std::vector<SoundClock::time_point> origins;
    for (const Reading& reading : m_open) {
        origins.push_back(OriginOf(reading));
    }
    const auto place = origins.begin() + (m_fit == Fit::Median ? static_cast<std::ptrdiff_t>(origins.size() / 2) : 0);
    std::ranges::nth_element(origins, place);
    return {m_open.front().frame, *place};
}

} // namespace velmora::soundlayer
