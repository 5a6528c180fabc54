#pragma once

#include "core/ClassIds.h"

#include <cmath>

namespace velmora::effects {

/// Up to here a 64-bit float tells each whole number from the next, so that the counter of ids can rise above it.
inline constexpr core::ClassID kGreatestId = 9007199254740991.0;

/// An id of a text can be adopted.
inline bool UsableId(core::ClassID id)
{
    return std::isfinite(id) && std::abs(id) < kGreatestId;
}

} // namespace velmora::effects
