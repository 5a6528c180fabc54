#include "soundlayer/internal/effects/Compressor.h"

#include "soundlayer/internal/effects/FastMath.h"

#include <algorithm>
#include <cmath>

namespace velmora::soundlayer {

namespace {

/// dB of a power of two.
constexpr float kDecibels = 6.02059991F;
/// The quietest level that is told apart from silence.
constexpr float kQuietest = 1e-6F;
/// Frames of a piece of the level's window; a grain has whole ones.
constexpr std::size_t kPiece = 16;
constexpr double kWindowSeconds = 0.0025;

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
    , m_peaks(static_cast<std::size_t>(kWindowSeconds * rate / kPiece) + 2)
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
    return std::ranges::all_of(m_peaks, [](float peak) { return peak == 0; });
}

void Compressor::EndGrain()
{
    // 0.0006 dB.
    if (m_reduction < 1e-4 && Unheard()) {
        m_reduction = 0;
    }
}

void Compressor::Measure(const float* left, const float* right, Frames& level, std::size_t frames, std::size_t at)
{
    for (std::size_t i = 0; i < frames; ++i) {
        level[i] = std::max(std::abs(left[i]), std::abs(right[i]));
    }
    for (std::size_t done = 0; done < frames;) {
        const std::size_t inPiece = (at + done) % kPiece;
        if (inPiece == 0) {
            m_piece = (m_piece + 1) % m_peaks.size();
            m_peaks[m_piece] = 0;
        }
        float running = std::ranges::max(m_peaks);
        float peak = m_peaks[m_piece];
        for (const std::size_t end = std::min(frames, done + kPiece - inPiece); done < end; ++done) {
            peak = std::max(peak, level[done]);
            running = std::max(running, level[done]);
            level[done] = running;
        }
        m_peaks[m_piece] = peak;
    }
}

void Compressor::Delay(DelayLine& line, float* side, std::size_t frames, std::size_t at) const
{
    line.Write(side, frames);
    m_tap.Read(line, side, frames, at, frames);
}

void Compressor::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    Frames wanted;
    Measure(left, right, wanted, frames, at);
    const Glide::Line threshold = m_threshold.Way();
    const Glide::Line slope = m_slope.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        const float above = FastLog2(std::max(wanted[i], kQuietest)) - threshold.At(at + i);
        wanted[i] = slope.At(at + i) * std::max(above, 0.0F);
    }
    // Of the two ways to go, the faster one is the greater where more is wanted and the lesser where less is, so no
    // comparison with what is wanted is needed.
    Frames factor;
    const bool quickAttack = m_attack >= m_release;
    double reduction = m_reduction;
    const auto smooth = [&](auto pick) {
        const double attack = m_attack;
        const double release = m_release;
        for (std::size_t i = 0; i < frames; ++i) {
            const auto to = static_cast<double>(wanted[i]);
            reduction = pick(to * attack + reduction * (1.0 - attack), to * release + reduction * (1.0 - release));
            factor[i] = static_cast<float>(reduction);
        }
    };
    if (quickAttack) {
        smooth([](double a, double b) { return std::max(a, b); });
    } else {
        smooth([](double a, double b) { return std::min(a, b); });
    }
    m_reduction = reduction;
    const Glide::Line gain = m_gain.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        factor[i] = gain.At(at + i) * FastExp2(-factor[i]);
    }
    Delay(m_left, left, frames, at);
    Delay(m_right, right, frames, at);
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] *= factor[i];
        right[i] *= factor[i];
    }
}

} // namespace velmora::soundlayer
