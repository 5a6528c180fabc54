#include "soundlayer/internal/effects/ModulatedDelay.h"

#include <algorithm>
#include <cmath>

namespace velmora::soundlayer {

namespace {

constexpr double kGlideSeconds = 0.2;
constexpr float kTurn = 0x1p32F;

/// A swing from -1 to 1 and back within a turn, from 0 upwards; `form` goes from a triangle to a sine.
float SwingAt(std::uint32_t phase, float form)
{
    // From -1 to 1 over the half turn around 0, and back over the other.
    const auto around = static_cast<float>(static_cast<std::int32_t>(phase)) / (kTurn / 4);
    const float triangle = std::abs(around) > 1.0F ? std::copysign(2.0F, around) - around : around;
    // A sine of a quarter turn each way, by its series; off by 2e-4 at the most.
    const float square = triangle * triangle;
    const float sine = triangle * (1.5707963F - square * (0.6459641F - square * (0.0796926F - square * 0.0046818F)));
    return triangle + form * (sine - triangle);
}

} // namespace

template <typename Block>
ModulatedDelay<Block>::ModulatedDelay(std::uint32_t rate)
    : m_rate(rate)
    , m_delay(rate, kGlideSeconds)
    , m_depth(rate, kGlideSeconds)
    , m_form(rate, kGlideSeconds)
    , m_ahead(rate, kGlideSeconds)
    , m_wet(rate)
    , m_feedback(rate)
    , m_drive(rate)
    , m_speed(rate)
    , m_left(2.0 * static_cast<double>(kBlockLimits<Block>.high.fDelay) / 1000.0 * rate)
    , m_right(2.0 * static_cast<double>(kBlockLimits<Block>.high.fDelay) / 1000.0 * rate)
{
}

template <typename Block>
void ModulatedDelay<Block>::Aim(const Block& block, bool atOnce)
{
    m_delay.SetTarget(static_cast<float>(static_cast<double>(block.fDelay) / 1000.0 * m_rate), atOnce);
    m_depth.SetTarget(block.fDepth / 100.0F, atOnce);
    m_form.SetTarget(static_cast<float>(block.fWaveform), atOnce);
    m_ahead.SetTarget(static_cast<float>(block.fPhase - 2) / 4.0F, atOnce);
    const float feedback = block.fFeedback / 100.0F;
    m_wet.SetTarget(block.fWetDryMix / 100.0F, atOnce);
    m_feedback.SetTarget(feedback, atOnce);
    m_drive.SetTarget(std::sqrt(1.0F - feedback * feedback), atOnce);
    m_speed.SetTarget(static_cast<float>(static_cast<double>(block.fFrecuency) / m_rate) * kTurn, atOnce);
}

template <typename Block>
void ModulatedDelay<Block>::Move()
{
    for (Glide* glide : {&m_delay, &m_depth, &m_form, &m_ahead, &m_wet, &m_feedback, &m_drive, &m_speed}) {
        glide->Move();
    }
}

template <typename Block>
void ModulatedDelay<Block>::PassGrains(std::size_t grains)
{
    m_phase += static_cast<std::uint32_t>(grains) * (PhaseAt(kGrain - 1) - m_phase);
    m_delaysKnown = false;
}

template <typename Block>
std::uint32_t ModulatedDelay<Block>::PhaseAt(std::size_t frame) const
{
    const auto count = static_cast<float>(static_cast<std::int32_t>(frame + 1));
    const float turned = count * (m_speed.Start() + 0.5F * (count + 1.0F) * m_speed.Step());
    return m_phase + static_cast<std::uint32_t>(static_cast<std::int32_t>(turned));
}

template <typename Block>
void ModulatedDelay<Block>::SetDelays()
{
    const Glide::Line delay = m_delay.Way();
    const Glide::Line depth = m_depth.Way();
    const Glide::Line form = m_form.Way();
    const Glide::Line ahead = m_ahead.Way();
    for (std::size_t i = 0; i < kGrain; ++i) {
        const std::uint32_t phase = PhaseAt(i);
        // Half of it, which is in the range of its type even for half a turn.
        const auto half = static_cast<std::uint32_t>(static_cast<std::int32_t>(ahead.At(i) * (kTurn / 2)));
        m_left.delays[i] = delay.At(i) * (1.0F + depth.At(i) * SwingAt(phase, form.At(i)));
        m_right.delays[i] = delay.At(i) * (1.0F + depth.At(i) * SwingAt(phase + 2 * half, form.At(i)));
    }
}

template <typename Block>
void ModulatedDelay<Block>::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    if (!m_delaysKnown) {
        SetDelays();
        m_delaysKnown = true;
    }
    RunSide(m_left, left, frames, at);
    RunSide(m_right, right, frames, at);
}

template <typename Block>
void ModulatedDelay<Block>::RunSide(Side& side, float* sound, std::size_t frames, std::size_t at)
{
    const Glide::Line wet = m_wet.Way();
    const Glide::Line feedback = m_feedback.Way();
    const Glide::Line drive = m_drive.Way();
    float fedBack = side.fedBack;
    for (std::size_t i = 0; i < frames; ++i) {
        side.line.Write(drive.At(at + i) * sound[i] + feedback.At(at + i) * fedBack);
        fedBack = side.line.Read(side.delays[at + i]);
        sound[i] += wet.At(at + i) * (fedBack - sound[i]);
    }
    side.fedBack = fedBack;
}

template class ModulatedDelay<BASS_DX8_CHORUS>;
template class ModulatedDelay<BASS_DX8_FLANGER>;

} // namespace velmora::soundlayer
