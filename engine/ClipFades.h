#pragma once

#include "engine/audioplayer.h"

#include <cstdint>

/// How a clip's gain and fades reach the sound layer, for playback and export alike.
namespace velmora::engine {

/// A clip's place and fades in ms. Fades count from the clip's start and act if above 0.
struct ClipFades {
    std::int64_t beginMS = 0;
    std::int64_t endMS = 0;
    std::int32_t fadeInEndMS = 0;
    std::int32_t fadeOutStartMS = 0;
};

/// The volume attribute at `timeMS`, a point within the clip: rising from 0 to 1 until the fade-in's end, falling from
/// 1 to 0 from the fade-out's start to the clip's end, else 1. The fade-out wins where both act. [RT]
ENGINE_API float VolumeAt(const ClipFades& fades, std::int64_t timeMS);

/// The next time after `timeMS` at which the volume moves: a multiple of 10 ms while a fade acts, the first of them
/// before; the greatest number when none comes. [RT]
ENGINE_API std::int64_t NextFadeStep(const ClipFades& fades, std::int64_t timeMS);

/// Of the gain DSP: behind every other.
inline constexpr std::int32_t kGainPriority = -1000;
/// The gain DSP's user value of a factor: x 10000, cut, within 0..2147483647.
ENGINE_API std::uintptr_t GainUserValue(double factor);

} // namespace velmora::engine
