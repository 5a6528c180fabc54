#pragma once

#include "soundlayer/internal/effects/GrainEffect.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace velmora::soundlayer {

/// A value on its way to where a parameter wants it: in so many seconds along t x t x (3 - 2 t), so that it neither
/// starts nor ends with a jerk; straight within each grain. All is [RT].
class Glide {
public:
    /// The way through one grain, for loops that become vector code.
    struct Line {
        float start = 0.0F;
        float step = 0.0F;

        /// The value at a frame of the grain.
        float At(std::size_t frame) const
        {
            return start + static_cast<float>(static_cast<std::int32_t>(frame + 1)) * step;
        }
    };

    explicit Glide(std::uint32_t rate, double seconds = 0.03)
        : m_length(static_cast<std::size_t>(std::ceil(seconds * rate / GrainEffect::kGrain)))
        , m_done(m_length)
    {
    }

    /// Where to go from the next `Move` on, or to be at once.
    void SetTarget(float target, bool atOnce)
    {
        if (atOnce) {
            m_target = m_end = target;
            m_done = m_length;
        } else if (target != m_target) {
            m_from = m_end;
            m_target = target;
            m_done = 0;
        }
    }

    /// Once before each grain.
    void Move()
    {
        m_start = m_end;
        if (m_done < m_length) {
            ++m_done;
            const float t = static_cast<float>(m_done) / static_cast<float>(m_length);
            m_end = m_done == m_length ? m_target : m_from + (m_target - m_from) * t * t * (3.0F - 2.0F * t);
        }
    }

    /// The value before the grain's first frame and at its last one.
    float Start() const { return m_start; }
    float End() const { return m_end; }
    /// Whether it moves within this grain.
    bool Moving() const { return m_start != m_end; }
    /// The way from one frame to the next.
    float Step() const { return (m_end - m_start) / static_cast<float>(GrainEffect::kGrain); }
    Line Way() const { return {m_start, Step()}; }
    float At(std::size_t frame) const { return Way().At(frame); }

private:
    std::size_t m_length;
    std::size_t m_done;
    float m_from = 0.0F;
    float m_target = 0.0F;
    float m_start = 0.0F;
    float m_end = 0.0F;
};

} // namespace velmora::soundlayer
