#pragma once

#include "soundlayer/internal/effects/DelayLine.h"
#include "soundlayer/internal/effects/Glide.h"
#include "soundlayer/internal/effects/GrainEffect.h"

#include <cstdint>

namespace velmora::soundlayer {

/// Repeats of each side after its own delay, each `fFeedback` as loud as the one before (at the most 99.4 %, so that
/// every echo ends). The first repeat is on the sound's own side; with `lPanDelay` each further one is on the other.
class Echo final : public ParameterEffect<BASS_DX8_ECHO> {
public:
    explicit Echo(std::uint32_t rate);

    bool AtRest() const override { return m_left.Silent() && m_right.Silent(); }

private:
    void Aim(const BASS_DX8_ECHO& block, bool atOnce) override;
    void Move() override;
    void Run(float* left, float* right, std::size_t frames, std::size_t at) override;
    void RunUnfed(float* left, float* right, std::size_t frames, std::size_t at);
    std::size_t Frames(float milliseconds) const;

    const std::uint32_t m_rate;
    DelayLine m_left;
    DelayLine m_right;
    DelayTap m_leftTap;
    DelayTap m_rightTap;
    Glide m_wet;
    /// What of a repeat goes back to its own side, and what to the other.
    Glide m_feedback;
    Glide m_crossFeedback;
};

} // namespace velmora::soundlayer
