#pragma once

#include "soundlayer/internal/effects/Glide.h"
#include "soundlayer/internal/effects/GrainEffect.h"
#include "soundlayer/internal/effects/Oversampler.h"
#include "soundlayer/internal/effects/PeakCascade.h"

#include <array>
#include <cstdint>

namespace velmora::soundlayer {

/// Bends the wave: a low-pass, then tanh(d x in) / tanh(d) at four times the rate, then a peak of 6 dB, then the gain.
///
/// `fEdge` is the drive d, from 0.05 (all but straight) at 0 to 40 (nearly square) at 100, in equal ratios. Full scale
/// stays full scale. The low-pass is a Butterworth filter of the second order (12 dB an octave), made as the peak
/// filter is. The sides do not hear each other. What is bent comes about 1.3 ms late.
class Distortion final : public ParameterEffect<BASS_DX8_DISTORTION> {
public:
    explicit Distortion(std::uint32_t rate);

    bool AtRest() const override;

private:
    using Frames = std::array<float, kGrain>;

    struct Side {
        Oversampler oversampler{kGrain};
        /// State of the low-pass.
        float s1 = 0.0F;
        float s2 = 0.0F;
        /// Last input and output of the filter that takes away what does not swing.
        float lastIn = 0.0F;
        float lastOut = 0.0F;
    };

    void Aim(const BASS_DX8_DISTORTION& block, bool atOnce) override;
    void Move() override;
    void Run(float* left, float* right, std::size_t frames, std::size_t at) override;
    void EndGrain() override;
    void LowPass(float* left, float* right, std::size_t frames, std::size_t at);
    void Bend(Side& side, float* samples, std::size_t frames, std::size_t at);
    void Centre(Side& side, float* samples, std::size_t frames, std::size_t at) const;

    const double m_rate;
    Side m_left;
    Side m_right;
    PeakSection m_peak;
    Glide m_drive;
    Glide m_gain;
    /// tan(pi x cutoff / rate), which is near to the cutoff where that is low.
    Glide m_cutoff;
    /// Powers of two of Hz.
    Glide m_centre;
    Glide m_bandwidth;
    const float m_hold;
    bool m_atOnce = false;
};

} // namespace velmora::soundlayer
