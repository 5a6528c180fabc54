#include "engine/ClipFades.h"

#include <algorithm>
#include <limits>

namespace velmora::engine {

namespace {

constexpr std::int64_t kFadeStepMS = 10;

std::int64_t StepAfter(std::int64_t timeMS)
{
    const std::int64_t step = timeMS >= 0 ? timeMS / kFadeStepMS : (timeMS - kFadeStepMS + 1) / kFadeStepMS;
    return (step + 1) * kFadeStepMS;
}

} // namespace

float VolumeAt(const ClipFades& fades, std::int64_t timeMS)
{
    const std::int64_t sinceBegin = timeMS - fades.beginMS;
    if (fades.fadeOutStartMS > 0 && sinceBegin > fades.fadeOutStartMS) {
        const auto fadeLength = static_cast<double>(fades.endMS - fades.beginMS - fades.fadeOutStartMS);
        return static_cast<float>(1 - static_cast<double>(sinceBegin - fades.fadeOutStartMS) / fadeLength);
    }
    if (fades.fadeInEndMS > 0 && sinceBegin < fades.fadeInEndMS) {
        return static_cast<float>(static_cast<double>(sinceBegin) / fades.fadeInEndMS);
    }
    return 1;
}

std::int64_t NextFadeStep(const ClipFades& fades, std::int64_t timeMS)
{
    if (fades.fadeInEndMS > 0 && timeMS - fades.beginMS < fades.fadeInEndMS) {
        return StepAfter(timeMS);
    }
    if (fades.fadeOutStartMS > 0) {
        return StepAfter(std::max(timeMS, fades.beginMS + fades.fadeOutStartMS));
    }
    return std::numeric_limits<std::int64_t>::max();
}

std::uintptr_t GainUserValue(double factor)
{
    constexpr double kGreatest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::uintptr_t>(factor > 0 ? std::min(factor * 10000, kGreatest) : 0);
}

} // namespace velmora::engine
