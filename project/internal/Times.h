#pragma once

namespace velmora::project {

/// The last place on the timeline: the engine counts ms in 32 bits.
inline constexpr double kLatestMS = 2147483647.0;

} // namespace velmora::project
