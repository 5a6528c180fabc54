#pragma once

#include "soundlayer/internal/effects/GrainEffect.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace velmora::soundlayer {

/// A value on its way to where a parameter wants it: a straight line of about 20 ms that begins and ends with a grain.
/// All is [RT].
class Glide {
public:
    explicit Glide(std::uint32_t rate)
        : m_length(std::max<std::size_t>(1, (rate / 50 + GrainEffect::kGrain / 2) / GrainEffect::kGrain))
    {
    }

    /// Where to go from the next `Move` on, or to be at once.
    void SetTarget(float target, bool atOnce)
    {
        if (atOnce) {
            m_target = m_end = target;
            m_left = 0;
        } else if (target != m_target) {
            m_target = target;
            m_delta = (m_target - m_end) / static_cast<float>(m_length);
            m_left = m_length;
        }
    }

    /// Once before each grain.
    void Move()
    {
        m_start = m_end;
        if (m_left > 0) {
            --m_left;
            m_end = m_left == 0 ? m_target : m_end + m_delta;
        }
    }

    /// The value before the grain's first frame and at its last one.
    float Start() const { return m_start; }
    float End() const { return m_end; }
    /// Whether it moves within this grain.
    bool Moving() const { return m_start != m_end; }
    /// The way from one frame to the next.
    float Step() const { return (m_end - m_start) / static_cast<float>(GrainEffect::kGrain); }
    /// The value at a frame of the grain.
    float At(std::size_t frame) const { return m_start + static_cast<float>(frame + 1) * Step(); }

private:
    std::size_t m_length;
    std::size_t m_left = 0;
    float m_target = 0.0F;
    float m_delta = 0.0F;
    float m_start = 0.0F;
    float m_end = 0.0F;
};

} // namespace velmora::soundlayer
