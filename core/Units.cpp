#include "core/Units.h"

#include <algorithm>
#include <cmath>

namespace velmora::core {
namespace {

constexpr std::int64_t kMSPerSecond = 1000;

std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    const std::int64_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

} // namespace

std::int32_t RoundToInt(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    constexpr double kMin = std::numeric_limits<std::int32_t>::min();
    constexpr double kMax = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(std::nearbyint(value), kMin, kMax));
}

std::int64_t FrameOfMS(std::int64_t timeMS, std::int32_t rate)
{
    return FloorDivide(timeMS * rate, kMSPerSecond);
}

std::int64_t FileFrameAt(std::int64_t timelineFrame, std::int64_t timePosMS, std::int64_t startMS, std::int32_t rate)
{
    return timelineFrame - FrameOfMS(timePosMS - startMS, rate);
}

} // namespace velmora::core
