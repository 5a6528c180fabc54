#include "soundlayer/internal/effects/Distortion.h"

#include "soundlayer/internal/effects/Wide.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace velmora::soundlayer {

namespace {

constexpr float kLeastDrive = 0.05F;
constexpr float kGreatestDrive = 40.0F;
constexpr double kPeakDB = 6.0;
/// A narrow peak that crosses a tone rings; so it goes slowly.
constexpr double kPeakSeconds = 0.1;
/// Slower swings than these Hz are taken away at the end: a lopsided wave that is bent has a mean.
constexpr double kLowestHertz = 5.0;

/// Hyperbolic tangent to 2e-4, exact near 0 (Lambert's continued fraction, cut where it reaches 1).
[[gnu::always_inline]] inline float Tanh(float x)
{
    constexpr float kReachesOne = 4.97F;
    const float limited = std::clamp(x, -kReachesOne, kReachesOne);
    const float s = limited * limited;
    const float above = limited * (135135.0F + s * (17325.0F + s * (378.0F + s)));
    const float below = 135135.0F + s * (62370.0F + s * (3150.0F + s * 28.0F));
    return above / below;
}

} // namespace

Distortion::Distortion(std::uint32_t rate)
    : m_rate(rate)
    , m_drive(rate)
    , m_gain(rate)
    , m_cutoff(rate)
    , m_centre(rate, kPeakSeconds)
    , m_bandwidth(rate, kPeakSeconds)
    , m_hold(static_cast<float>(std::exp(-2.0 * std::numbers::pi * kLowestHertz / rate)))
{
}

void Distortion::Aim(const BASS_DX8_DISTORTION& block, bool atOnce)
{
    m_drive.SetTarget(kLeastDrive * std::pow(kGreatestDrive / kLeastDrive, block.fEdge / 100.0F), atOnce);
    m_gain.SetTarget(std::pow(10.0F, block.fGain / 20.0F), atOnce);
    const double cutoff = PeakCoefficients::Centre(m_rate, block.fPreLowpassCutoff);
    m_cutoff.SetTarget(static_cast<float>(std::tan(std::numbers::pi * cutoff / m_rate)), atOnce);
    m_centre.SetTarget(std::log2(block.fPostEQCenterFrecuency), atOnce);
    m_bandwidth.SetTarget(std::log2(block.fPostEQBandwidth), atOnce);
    m_atOnce = atOnce;
}

void Distortion::Move()
{
    m_drive.Move();
    m_gain.Move();
    m_cutoff.Move();
    m_centre.Move();
    m_bandwidth.Move();
    if (m_atOnce || m_peak.gliding || m_centre.Moving() || m_bandwidth.Moving()) {
        const double centre = std::exp2(static_cast<double>(m_centre.End()));
        const double quality = centre / std::exp2(static_cast<double>(m_bandwidth.End()));
        m_peak.Aim(PeakCoefficients::Peak(m_rate, centre, quality, kPeakDB), m_atOnce);
        m_atOnce = false;
    }
}

void Distortion::LowPass(float* left, float* right, std::size_t frames, std::size_t at)
{
    Frames g;
    Frames a;
    const Glide::Line cutoff = m_cutoff.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        g[i] = cutoff.At(at + i);
        a[i] = 1.0F / (1.0F + g[i] * (g[i] + std::numbers::sqrt2_v<float>));
    }
    const auto step = [](Side& side, float in, float gain, float scale) {
        const float band = scale * (side.s1 + gain * (in - side.s2));
        const float low = side.s2 + gain * band;
        side.s1 = 2.0F * band - side.s1;
        side.s2 = 2.0F * low - side.s2;
        return low;
    };
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = step(m_left, left[i], g[i], a[i]);
        right[i] = step(m_right, right[i], g[i], a[i]);
    }
}

void Distortion::Bend(Side& side, float* samples, std::size_t frames, std::size_t at)
{
    side.oversampler.Up(samples, frames);
    const Glide::Line line = m_drive.Way();
    AtBestWidth([&]() __attribute__((always_inline)) {
        Frames drive;
        Frames scale;
        for (std::size_t i = 0; i < frames; ++i) {
            drive[i] = line.At(at + i);
            scale[i] = 1.0F / Tanh(drive[i]);
        }
        for (std::size_t phase = 0; phase < Oversampler::kFactor; ++phase) {
            float* __restrict wave = side.oversampler.Phase(phase);
            for (std::size_t i = 0; i < frames; ++i) {
                wave[i] = scale[i] * Tanh(drive[i] * wave[i]);
            }
        }
    });
    side.oversampler.Down(samples, frames);
}

void Distortion::Centre(Side& side, float* samples, std::size_t frames, std::size_t at) const
{
    float lastIn = side.lastIn;
    float lastOut = side.lastOut;
    const Glide::Line gain = m_gain.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        lastOut = samples[i] - lastIn + m_hold * lastOut;
        lastIn = samples[i];
        samples[i] = gain.At(at + i) * lastOut;
    }
    side.lastIn = lastIn;
    side.lastOut = lastOut;
}

void Distortion::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    LowPass(left, right, frames, at);
    Bend(m_left, left, frames, at);
    Bend(m_right, right, frames, at);
    PeakSection* const peak = &m_peak;
    RunPeaks({&peak, 1}, left, right, frames, at);
    Centre(m_left, left, frames, at);
    Centre(m_right, right, frames, at);
}

void Distortion::EndGrain()
{
    for (Side* side : {&m_left, &m_right}) {
        if (ZeroIfQuiet(side->s1) == 0 && ZeroIfQuiet(side->s2) == 0) {
            side->s1 = side->s2 = 0;
        }
        side->lastOut = ZeroIfQuiet(side->lastOut);
    }
    m_peak.Settle();
}

bool Distortion::AtRest() const
{
    const auto rests = [](const Side& side) {
        return side.s1 == 0 && side.s2 == 0 && side.lastIn == 0 && side.lastOut == 0 && side.oversampler.Silent();
    };
    return m_peak.AtRest() && rests(m_left) && rests(m_right);
}

} // namespace velmora::soundlayer
