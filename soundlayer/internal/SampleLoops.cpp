#include "soundlayer/internal/SampleLoops.h"

#include "soundlayer/SampleRounding.h"

#include <algorithm>

namespace velmora::soundlayer {

namespace {

/// Samples in one vector step; the two gains repeat within it.
constexpr std::size_t kLanes = 8;

/// A 16-bit sample at full scale 1.
constexpr float kFullScale = 32768.0F;

struct LaneGain {
    explicit LaneGain(StereoGain gain)
    {
        for (std::size_t i = 0; i < kLanes; i += 2) {
            lane[i] = gain.left;
            lane[i + 1] = gain.right;
        }
    }
    float lane[kLanes];
};

} // namespace

void AddScaled(float* __restrict sum, const std::int16_t* __restrict in, std::size_t frames, StereoGain gain)
{
    const LaneGain gains(gain);
    const std::size_t samples = 2 * frames;
    std::size_t i = 0;
    for (; i + kLanes <= samples; i += kLanes) {
        for (std::size_t k = 0; k < kLanes; ++k) {
            sum[i + k] += static_cast<float>(in[i + k]) * gains.lane[k];
        }
    }
    for (; i < samples; ++i) {
        sum[i] += static_cast<float>(in[i]) * gains.lane[i % 2];
    }
}

void SetScaled(float* __restrict sum, const std::int16_t* __restrict in, std::size_t frames, StereoGain gain)
{
    const LaneGain gains(gain);
    const std::size_t samples = 2 * frames;
    std::size_t i = 0;
    for (; i + kLanes <= samples; i += kLanes) {
        for (std::size_t k = 0; k < kLanes; ++k) {
            sum[i + k] = static_cast<float>(in[i + k]) * gains.lane[k];
        }
    }
    for (; i < samples; ++i) {
        sum[i] = static_cast<float>(in[i]) * gains.lane[i % 2];
    }
}

void AddRamped(float* __restrict sum, const std::int16_t* __restrict in, std::size_t frames, StereoGain origin,
               StereoGain step, std::size_t first)
{
    for (std::size_t i = 0; i < frames; ++i) {
        const auto k = static_cast<float>(static_cast<std::int32_t>(first + i + 1));
        sum[2 * i] += static_cast<float>(in[2 * i]) * (origin.left + k * step.left);
        sum[2 * i + 1] += static_cast<float>(in[2 * i + 1]) * (origin.right + k * step.right);
    }
}

void RoundToInt16(std::int16_t* __restrict out, const float* __restrict in, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        out[i] = RoundSample(in[i]);
    }
}

void StereoToSides(float* __restrict left, float* __restrict right, const std::int16_t* __restrict stereo,
                   std::size_t frames)
{
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = static_cast<float>(stereo[2 * i]) / kFullScale;
        right[i] = static_cast<float>(stereo[2 * i + 1]) / kFullScale;
    }
}

void SidesToStereo(std::int16_t* __restrict stereo, const float* __restrict left, const float* __restrict right,
                   std::size_t frames)
{
    for (std::size_t i = 0; i < frames; ++i) {
        stereo[2 * i] = RoundSample(left[i] * kFullScale);
        stereo[2 * i + 1] = RoundSample(right[i] * kFullScale);
    }
}

void MonoToSides(float* __restrict left, float* __restrict right, const std::int16_t* __restrict mono,
                 std::size_t frames)
{
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = static_cast<float>(mono[i]) / kFullScale;
        right[i] = left[i];
    }
}

void SidesToMono(std::int16_t* __restrict mono, const float* __restrict left, const float* __restrict right,
                 std::size_t frames)
{
    for (std::size_t i = 0; i < frames; ++i) {
        mono[i] = RoundSample((left[i] + right[i]) * (kFullScale / 2));
    }
}

void LimitSides(float* __restrict left, float* __restrict right, std::size_t frames, float limit)
{
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = std::clamp(left[i], -limit, limit);
        right[i] = std::clamp(right[i], -limit, limit);
    }
}

void MonoToStereo(std::int16_t* stereo, const std::int16_t* mono, std::size_t frames)
{
    for (std::size_t i = frames; i-- > 0;) {
        stereo[2 * i + 1] = mono[i];
        stereo[2 * i] = mono[i];
    }
}

} // namespace velmora::soundlayer
