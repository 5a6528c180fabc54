#include "soundlayer/internal/SampleLoops.h"

#include "soundlayer/SampleRounding.h"

namespace velmora::soundlayer {

namespace {

/// Samples in one vector step; the two gains repeat within it.
constexpr std::size_t kLanes = 8;

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

void MonoToStereo(std::int16_t* stereo, const std::int16_t* mono, std::size_t frames)
{
    for (std::size_t i = frames; i-- > 0;) {
        stereo[2 * i + 1] = mono[i];
        stereo[2 * i] = mono[i];
    }
}

} // namespace velmora::soundlayer
