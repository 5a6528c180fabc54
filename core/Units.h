#pragma once

#include <cstdint>
#include <limits>

namespace velmora::core {

/// Stands for no value in times and ids.
inline constexpr std::int32_t kUnset = std::numeric_limits<std::int32_t>::min();
inline constexpr double kUnsetFloat = -2147483648.0;

/// A boolean as it travels in numeric fields.
inline constexpr double kTrue = -1.0;
inline constexpr double kFalse = 0.0;

/// The nearest whole number, halves to the even one, limited to 32 bits; 0 for a value that is not a number.
std::int32_t RoundToInt(double value);

/// The frame of a time in ms at `rate` Hz: floor(`timeMS` x `rate` / 1000). Negative times give negative frames.
std::int64_t FrameOfMS(std::int64_t timeMS, std::int32_t rate);

/// The frame of a clip's file, resampled from frame 0 to `rate`, that plays at timeline frame `timelineFrame`, for a
/// clip at `timePosMS` that begins `startMS` into its file: `timelineFrame` + ceil((`startMS` - `timePosMS`) x `rate`
/// / 1000). The distance of the two is the same on both sides of a split.
std::int64_t FileFrameAt(std::int64_t timelineFrame, std::int64_t timePosMS, std::int64_t startMS, std::int32_t rate);

} // namespace velmora::core
