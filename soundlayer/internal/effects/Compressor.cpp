#include "soundlayer/internal/effects/Compressor.h"

#include "soundlayer/internal/effects/FastMath.h"
#include "soundlayer/internal/effects/Wide.h"

#include <algorithm>
#include <cmath>

namespace velmora::soundlayer {

namespace {

/// dB of a power of two.
constexpr float kDecibels = 6.02059991F;
/// The quietest level that is told apart from silence.
constexpr float kQuietest = 1e-6F;
/// What is taken away, as a power of two, before the compressor is at rest: nobody can tell when it went to zero.
constexpr double kLeastReduction = 1e-9;
constexpr double kWindowSeconds = 0.0025;

[[gnu::always_inline]] inline void TakeGreater(float* __restrict out, const float* a, const float* b, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = std::max(a[i], b[i]);
    }
}

} // namespace

Compressor::Compressor(std::uint32_t rate)
    : m_rate(rate)
    , m_left(rate / 100)
    , m_right(rate / 100)
    , m_tap(rate)
    , m_gain(rate)
    , m_threshold(rate)
    , m_slope(rate)
    , m_attackTime(rate)
    , m_releaseTime(rate)
    , m_window(static_cast<std::size_t>(std::max(1.0, kWindowSeconds * rate)))
    , m_peaks(m_window + kGrain)
    , m_greatest{m_peaks, m_peaks}
{
}

double Compressor::Share(float time) const
{
    return -std::expm1(-1000.0 / (std::exp2(static_cast<double>(time)) * m_rate));
}

void Compressor::Aim(const BASS_DX8_COMPRESSOR& block, bool atOnce)
{
    m_gain.SetTarget(FastExp2(block.fGain / kDecibels), atOnce);
    m_threshold.SetTarget(block.fThreshold / kDecibels, atOnce);
    m_slope.SetTarget(1.0F - 1.0F / block.fRatio, atOnce);
    m_attackTime.SetTarget(std::log2(block.fAttack), atOnce);
    m_releaseTime.SetTarget(std::log2(block.fRelease), atOnce);
    m_tap.SetTarget(static_cast<std::size_t>(std::lround(static_cast<double>(block.fPreDelay) * m_rate / 1000.0)),
                    atOnce);
}

void Compressor::Move()
{
    m_gain.Move();
    m_threshold.Move();
    m_slope.Move();
    m_tap.Move();
    m_attackTime.Move();
    m_releaseTime.Move();
    if (m_attack == 0 || m_attackTime.Moving() || m_releaseTime.Moving()) {
        m_attack = Share(m_attackTime.End());
        m_release = Share(m_releaseTime.End());
    }
}

bool Compressor::AtRest() const
{
    return m_reduction == 0 && Unheard() && m_left.Silent() && m_right.Silent();
}

bool Compressor::Unheard() const
{
    return std::all_of(m_peaks.begin(), m_peaks.begin() + static_cast<std::ptrdiff_t>(m_window) - 1,
                       [](float peak) { return peak == 0; });
}

void Compressor::EndGrain()
{
    if (m_reduction > 0 && m_reduction < kLeastReduction && Unheard()) {
        m_reduction = 0;
    }
}

[[gnu::always_inline]] inline void Compressor::Measure(const float* left, const float* right, Frames& level,
                                                       std::size_t frames)
{
    const std::size_t before = m_window - 1;
    float* const now = m_peaks.data() + before;
    for (std::size_t i = 0; i < frames; ++i) {
        now[i] = std::max(std::abs(left[i]), std::abs(right[i]));
    }
    // The greatest of the last 2, 4, 8 ... frames, each from two of the ones before.
    const float* from = m_peaks.data();
    std::size_t size = before + frames;
    std::size_t reach = 1;
    for (std::size_t turn = 0; reach < m_window; turn ^= 1) {
        const std::size_t further = std::min(reach, m_window - reach);
        size -= further;
        TakeGreater(m_greatest[turn].data(), from, from + further, size);
        from = m_greatest[turn].data();
        reach += further;
    }
    std::copy_n(from, frames, level.data());
    std::copy_n(m_peaks.data() + frames, before, m_peaks.data());
}

void Compressor::Delay(DelayLine& line, float* side, std::size_t frames, std::size_t at) const
{
    line.Write(side, frames);
    m_tap.Read(line, side, frames, at, frames);
}

void Compressor::Smooth(Frames& reductions, std::size_t frames)
{
    const double attack = m_attack;
    const double release = m_release;
    double reduction = m_reduction;
    // Of the two ways to go, the faster one is the greater where more is wanted and the lesser where less is, so no
    // comparison with what is wanted is needed.
    const auto smooth = [&](auto pick) {
        for (std::size_t i = 0; i < frames; ++i) {
            const auto to = static_cast<double>(reductions[i]);
            reduction = pick(to * attack + reduction * (1.0 - attack), to * release + reduction * (1.0 - release));
            reductions[i] = static_cast<float>(reduction);
        }
    };
    if (attack >= release) {
        smooth([](double a, double b) { return std::max(a, b); });
    } else {
        smooth([](double a, double b) { return std::min(a, b); });
    }
    m_reduction = reduction;
}

void Compressor::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    Frames factors;
    AtBestWidth([&]() __attribute__((always_inline)) {
        Measure(left, right, factors, frames);
        const Glide::Line threshold = m_threshold.Way();
        const Glide::Line slope = m_slope.Way();
        for (std::size_t i = 0; i < frames; ++i) {
            const float above = FastLog2(std::max(factors[i], kQuietest)) - threshold.At(at + i);
            factors[i] = slope.At(at + i) * std::max(above, 0.0F);
        }
    });
    Smooth(factors, frames);
    Delay(m_left, left, frames, at);
    Delay(m_right, right, frames, at);
    AtBestWidth([&]() __attribute__((always_inline)) {
        const Glide::Line gain = m_gain.Way();
        for (std::size_t i = 0; i < frames; ++i) {
            const float factor = gain.At(at + i) * FastExp2(-factors[i]);
            left[i] *= factor;
            right[i] *= factor;
        }
    });
}

} // namespace velmora::soundlayer
