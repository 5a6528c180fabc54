#include "soundlayer/internal/effects/Echo.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace velmora::soundlayer {

namespace {
constexpr float kLargestFeedback = 0.994F;
}

Echo::Echo(std::uint32_t rate)
    : m_rate(rate)
    , m_left(Frames(kBlockLimits<BASS_DX8_ECHO>.high.fLeftDelay))
    , m_right(Frames(kBlockLimits<BASS_DX8_ECHO>.high.fRightDelay))
    , m_leftTap(rate)
    , m_rightTap(rate)
    , m_wet(rate)
    , m_feedback(rate)
    , m_crossFeedback(rate)
{
}

std::size_t Echo::Frames(float milliseconds) const
{
    const long frames = std::lround(static_cast<double>(milliseconds) * m_rate / 1000.0);
    return static_cast<std::size_t>(std::max(1L, frames));
}

void Echo::Aim(const BASS_DX8_ECHO& block, bool atOnce)
{
    m_leftTap.SetTarget(Frames(block.fLeftDelay), atOnce);
    m_rightTap.SetTarget(Frames(block.fRightDelay), atOnce);
    m_wet.SetTarget(block.fWetDryMix / 100.0F, atOnce);
    const float feedback = std::min(block.fFeedback / 100.0F, kLargestFeedback);
    m_feedback.SetTarget(block.lPanDelay != 0 ? 0.0F : feedback, atOnce);
    m_crossFeedback.SetTarget(block.lPanDelay != 0 ? feedback : 0.0F, atOnce);
}

void Echo::Move()
{
    m_leftTap.Move();
    m_rightTap.Move();
    m_wet.Move();
    m_feedback.Move();
    m_crossFeedback.Move();
}

void Echo::Run(float* left, float* right, std::size_t frames, std::size_t at)
{
    const std::size_t piece = std::min(m_leftTap.Shortest(), m_rightTap.Shortest());
    for (std::size_t done = 0; done < frames; done += piece) {
        RunUnfed(left + done, right + done, std::min(piece, frames - done), at + done);
    }
}

/// Frames of which none hears another one's repeat.
void Echo::RunUnfed(float* __restrict left, float* __restrict right, std::size_t frames, std::size_t at)
{
    std::array<float, kGrain> leftRepeat;
    std::array<float, kGrain> rightRepeat;
    std::array<float, kGrain> leftFed;
    std::array<float, kGrain> rightFed;
    m_leftTap.Read(m_left, leftRepeat.data(), frames, at);
    m_rightTap.Read(m_right, rightRepeat.data(), frames, at);
    const Glide::Line feedback = m_feedback.Way();
    const Glide::Line crossFeedback = m_crossFeedback.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        const float own = feedback.At(at + i);
        const float other = crossFeedback.At(at + i);
        leftFed[i] = left[i] + own * leftRepeat[i] + other * rightRepeat[i];
        rightFed[i] = right[i] + own * rightRepeat[i] + other * leftRepeat[i];
    }
    const Glide::Line wet = m_wet.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        const float share = wet.At(at + i);
        left[i] += share * (leftRepeat[i] - left[i]);
        right[i] += share * (rightRepeat[i] - right[i]);
    }
    m_left.Write(leftFed.data(), frames);
    m_right.Write(rightFed.data(), frames);
}

} // namespace velmora::soundlayer
