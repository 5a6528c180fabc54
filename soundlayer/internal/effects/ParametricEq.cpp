#include "soundlayer/internal/effects/ParametricEq.h"

#include <array>
#include <cmath>
#include <typeinfo>

namespace velmora::soundlayer {

ParametricEq::ParametricEq(std::uint32_t rate)
    : m_rate(rate)
    , m_centre(rate)
    , m_bandwidth(rate)
    , m_gain(rate)
{
}

void ParametricEq::Aim(const BASS_DX8_PARAMEQ& block, bool atOnce)
{
    m_centre.SetTarget(std::log2(block.fCenter), atOnce);
    m_bandwidth.SetTarget(block.fBandwidth / 12.0F, atOnce);
    m_gain.SetTarget(block.fGain, atOnce);
    m_atOnce = atOnce;
}

void ParametricEq::Move()
{
    m_centre.Move();
    m_bandwidth.Move();
    m_gain.Move();
    if (m_atOnce || m_section.gliding || m_centre.Moving() || m_bandwidth.Moving() || m_gain.Moving()) {
        const double centre = std::exp2(static_cast<double>(m_centre.End()));
        const double quality = PeakCoefficients::QualityOfOctaves(m_rate, centre, m_bandwidth.End());
        m_section.Aim(PeakCoefficients::Peak(m_rate, centre, quality, m_gain.End()), m_atOnce);
        m_atOnce = false;
    }
}

void ParametricEq::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    PeakSection* const section = &m_section;
    RunPeaks({&section, 1}, left, right, frames, at);
}

std::size_t ParametricEq::ProcessRow(std::span<Effect* const> row, float* left, float* right, std::size_t frames)
{
    std::array<GrainEffect*, kCascadeSections> effects{};
    std::array<PeakSection*, kCascadeSections> sections{};
    std::size_t count = 0;
    for (Effect* effect : row.first(std::min(row.size(), kCascadeSections))) {
        if (typeid(*effect) != typeid(ParametricEq)) {
            break;
        }
        auto& eq = static_cast<ParametricEq&>(*effect);
        if (eq.Position() != Position()) {
            break;
        }
        effects[count] = &eq;
        sections[count++] = &eq.m_section;
    }
    ByGrains({effects.data(), count}, frames, [&](std::size_t done, std::size_t now, std::size_t at) {
        RunPeaks({sections.data(), count}, left + done, right + done, now, at);
    });
    return count;
}

} // namespace velmora::soundlayer
