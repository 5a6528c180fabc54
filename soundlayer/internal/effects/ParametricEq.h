#pragma once

#include "soundlayer/internal/effects/Glide.h"
#include "soundlayer/internal/effects/GrainEffect.h"
#include "soundlayer/internal/effects/PeakCascade.h"

#include <cstdint>

namespace velmora::soundlayer {

/// A peak filter: so many dB at its centre, half of them at the ends of its bandwidth. Those that follow each other on
/// a stream run together, up to eight for about the price of one.
class ParametricEq final : public ParameterEffect<BASS_DX8_PARAMEQ> {
public:
    explicit ParametricEq(std::uint32_t rate);

    std::size_t ProcessRow(std::span<Effect* const> row, float* left, float* right, std::size_t frames) override;
    bool AtRest() const override { return m_section.AtRest(); }

private:
    void Aim(const BASS_DX8_PARAMEQ& block, bool atOnce) override;
    void Move() override;
    void Run(float* left, float* right, std::size_t frames, std::size_t at) override;
    void EndGrain() override { m_section.Settle(); }

    const double m_rate;
    /// Octaves above 1 Hz, octaves, dB.
    Glide m_centre;
    Glide m_bandwidth;
    Glide m_gain;
    bool m_atOnce = false;
    PeakSection m_section;
};

} // namespace velmora::soundlayer
