#include "controls/SliderRange.h"

#include <algorithm>
#include <cmath>

namespace velmora::controls {
namespace {

constexpr int kWheelStep = 120;

} // namespace

double SliderRange::Limited(double value) const
{
    if (UseIntValue) {
        value = std::round(value);
    }
    return std::clamp(value, MinValue, std::max(MinValue, MaxValue));
}

double SliderRange::PartOf(double value) const
{
    return MaxValue > MinValue ? (value - MinValue) / (MaxValue - MinValue) : 0;
}

int SliderTrack::KnobLeft(const SliderRange& range) const
{
    return static_cast<int>(std::lround(MinX + (MaxX - MinX - KnobWidth) * range.Part()));
}

double SliderTrack::ValueAt(double x, const SliderRange& range) const
{
    const double travel = MaxX - MinX - KnobWidth;
    return travel > 0 ? range.At((x - KnobWidth / 2 - MinX) / travel) : range.MinValue;
}

int WheelSteps::Add(int delta)
{
    // A turn the other way does not first undo what was left over.
    if ((delta > 0) != (m_rest > 0)) {
        m_rest = 0;
    }
    m_rest += delta;
    const int steps = m_rest / kWheelStep;
    m_rest -= steps * kWheelStep;
    return steps;
}

} // namespace velmora::controls
