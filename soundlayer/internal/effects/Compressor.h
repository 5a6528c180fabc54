#pragma once

#include "soundlayer/internal/effects/DelayLine.h"
#include "soundlayer/internal/effects/Glide.h"
#include "soundlayer/internal/effects/GrainEffect.h"

#include <array>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// Makes what is louder than the threshold quieter, both sides alike: n dB more come out as n / ratio dB.
///
/// Feed-forward with smoothed gain (D. Giannoulis, M. Massberg, J. Reiss, "Digital Dynamic Range Compressor Design",
/// 2012), hard knee. The level is the louder side's peak of the last 2.5 ms, so that a tone from 200
/// Hz on has its amplitude as a steady level. The gain in dB goes to where the level wants it as one over e^(t / time):
/// after `fAttack` (down) or `fRelease` (up) 63 % of the way are done. With `fPreDelay` the sound comes so much later
/// than the gain.
class Compressor final : public ParameterEffect<BASS_DX8_COMPRESSOR> {
public:
    explicit Compressor(std::uint32_t rate);

    bool AtRest() const override;

private:
    using Frames = std::array<float, kGrain>;

    void Aim(const BASS_DX8_COMPRESSOR& block, bool atOnce) override;
    void Move() override;
    void Run(float* left, float* right, std::size_t frames, std::size_t at) override;
    void EndGrain() override;
    void Delay(DelayLine& line, float* side, std::size_t frames, std::size_t at) const;
    void Smooth(Frames& reductions, std::size_t frames);
    bool Unheard() const;
    void Measure(const float* left, const float* right, Frames& level, std::size_t frames);
    /// Of the way that is done in one frame, for a time as below.
    double Share(float time) const;

    const std::uint32_t m_rate;
    DelayLine m_left;
    DelayLine m_right;
    DelayTap m_tap;
    Glide m_gain;
    /// A power of two, as levels are inside.
    Glide m_threshold;
    /// Share of what is above the threshold that is taken away.
    Glide m_slope;
    /// Powers of two of ms.
    Glide m_attackTime;
    Glide m_releaseTime;
    double m_attack = 0.0;
    double m_release = 0.0;
    /// Frames of the level's window, the louder side in them, and room to find their greatest.
    const std::size_t m_window;
    std::vector<float> m_peaks;
    std::array<std::vector<float>, 2> m_greatest;
    double m_reduction = 0.0;
};

} // namespace velmora::soundlayer
