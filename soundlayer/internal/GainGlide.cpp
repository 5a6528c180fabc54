#include "soundlayer/internal/GainGlide.h"

#include <algorithm>

namespace velmora::soundlayer {

GainGlide::GainGlide(std::uint32_t rate)
    : m_length(std::max<std::size_t>(1, rate / 100))
    , m_position(m_length)
{
}

void GainGlide::SetTarget(StereoGain target)
{
    if (!m_started) {
        m_started = true;
        m_to = target;
        return;
    }
    if (target == m_to) {
        return;
    }
    const auto along = static_cast<float>(m_position);
    const auto length = static_cast<float>(m_length);
    const StereoGain now =
        AtRest() ? m_to : StereoGain{m_from.left + along * m_step.left, m_from.right + along * m_step.right};
    m_from = now;
    m_to = target;
    m_step = {(target.left - now.left) / length, (target.right - now.right) / length};
    m_position = 0;
}

bool GainGlide::Silent() const
{
    return AtRest() && m_to == StereoGain{0.0F, 0.0F};
}

bool GainGlide::Unity() const
{
    return AtRest() && m_to == StereoGain{};
}

void GainGlide::Mix(float* sum, const std::int16_t* stereo, std::size_t frames, bool first)
{
    const std::size_t gliding = std::min(frames, m_length - m_position);
    if (gliding > 0) {
        if (first) {
            std::fill_n(sum, 2 * gliding, 0.0F);
        }
        AddRamped(sum, stereo, gliding, m_from, m_step, m_position);
        m_position += gliding;
    }
    const std::size_t rest = frames - gliding;
    if (rest == 0) {
        return;
    }
    if (first) {
        SetScaled(sum + 2 * gliding, stereo + 2 * gliding, rest, m_to);
    } else {
        AddScaled(sum + 2 * gliding, stereo + 2 * gliding, rest, m_to);
    }
}

void GainGlide::Skip(std::size_t frames)
{
    m_position = std::min(m_length, m_position + frames);
}

} // namespace velmora::soundlayer
