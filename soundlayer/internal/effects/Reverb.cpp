#include "soundlayer/internal/effects/Reverb.h"

#include <algorithm>
#include <cmath>

namespace velmora::soundlayer {

namespace {

constexpr float kOffDB = -96.0F;

float GainOf(float db)
{
    return db <= kOffDB ? 0.0F : std::pow(10.0F, db / 20.0F);
}

/// Exchanges what comes in for what the room made of earlier frames, and hears both. Whether anything was there.
bool Exchange(float* __restrict side, float* __restrict room, std::size_t frames, std::size_t at, Glide::Line input,
              Glide::Line mix)
{
    std::int32_t heard = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const float in = side[i] * input.At(at + i);
        const float wet = room[i];
        room[i] = in;
        side[i] = in + mix.At(at + i) * wet;
        heard |= static_cast<std::int32_t>(std::abs(in) >= GrainEffect::kSilence) |
                 static_cast<std::int32_t>(std::abs(wet) >= GrainEffect::kSilence);
    }
    return heard != 0;
}

} // namespace

Reverb::Reverb(std::uint32_t rate)
    : m_network(rate)
    , m_input(rate)
    , m_mix(rate)
{
}

void Reverb::Aim(const BASS_DX8_REVERB& block, bool atOnce)
{
    m_input.SetTarget(GainOf(block.finGain), atOnce);
    m_mix.SetTarget(GainOf(block.fReverbMix), atOnce);
    m_network.SetRoom({static_cast<double>(block.fReverbTime) / 1000.0, static_cast<double>(block.fHighFreqRTRatio)},
                      atOnce || m_atRest);
}

void Reverb::Move()
{
    m_input.Move();
    m_mix.Move();
}

void Reverb::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    for (std::size_t done = 0; done < frames;) {
        const std::size_t place = (at + done) % kBlock;
        const std::size_t now = std::min(frames - done, kBlock - place);
        m_blockHeard |= Exchange(left + done, m_left.data() + place, now, at + done, m_input.Way(), m_mix.Way());
        m_blockHeard |= Exchange(right + done, m_right.data() + place, now, at + done, m_input.Way(), m_mix.Way());
        done += now;
        if (place + now < kBlock) {
            continue;
        }
        m_atRest = m_atRest && !m_blockHeard;
        if (!m_atRest) {
            m_network.Process(m_left.data(), m_right.data());
        }
        m_grainHeard |= m_blockHeard;
        m_blockHeard = false;
    }
}

void Reverb::EndGrain()
{
    m_quietFrames = m_grainHeard ? 0 : m_quietFrames + kGrain;
    m_grainHeard = false;
    if (!m_atRest && m_quietFrames > m_network.LongestFrames() + kBlock) {
        m_network.Clear();
        m_left = {};
        m_right = {};
        m_atRest = true;
    }
}

} // namespace velmora::soundlayer
