#pragma once

#include <cstddef>
#include <cstdint>

/// Loops over stereo samples, written so that the compiler turns them into vector code. All are [RT].
namespace velmora::soundlayer {

/// A factor for each side.
struct StereoGain {
    float left = 1.0F;
    float right = 1.0F;

    bool operator==(const StereoGain&) const = default;
};

/// `sum` += `in` x `gain`.
void AddScaled(float* sum, const std::int16_t* in, std::size_t frames, StereoGain gain);
/// `sum` = `in` x `gain`.
void SetScaled(float* sum, const std::int16_t* in, std::size_t frames, StereoGain gain);
/// `sum` += `in` x gain, where frame k has the gain `origin` + (`first` + k + 1) x `step`.
void AddRamped(float* sum, const std::int16_t* in, std::size_t frames, StereoGain origin, StereoGain step,
               std::size_t first);
/// The nearest 16-bit sample (halves to the even one), limited to the range.
void RoundToInt16(std::int16_t* out, const float* in, std::size_t samples);
/// Interleaved 16-bit samples to the two sides at full scale 1, and back: the nearest, limited to the range.
void StereoToSides(float* left, float* right, const std::int16_t* stereo, std::size_t frames);
void SidesToStereo(std::int16_t* stereo, const float* left, const float* right, std::size_t frames);
/// As those, for one channel: both sides get its samples, their mean comes back.
void MonoToSides(float* left, float* right, const std::int16_t* mono, std::size_t frames);
void SidesToMono(std::int16_t* mono, const float* left, const float* right, std::size_t frames);
/// Both sides limited to -`limit`..`limit`.
void LimitSides(float* left, float* right, std::size_t frames, float limit);
/// Both sides from one. May work in place, with the mono samples at the start of `stereo`.
void MonoToStereo(std::int16_t* stereo, const std::int16_t* mono, std::size_t frames);

} // namespace velmora::soundlayer
