#pragma once

namespace velmora::controls {

/// The value of a slider and how it meets pixels, without a window. Values are limited to the range; with
/// `UseIntValue` they are whole.
struct SliderRange {
    double MinValue = 0;
    double MaxValue = 100;
    double Value = 0;
    bool UseIntValue = true;

    double Limited(double value) const;
    /// 0 at `MinValue`, 1 at `MaxValue`; 0 for a range without width.
    double Part() const { return PartOf(Value); }
    double PartOf(double value) const;
    /// The value at a part of the range.
    double At(double part) const { return Limited(MinValue + part * (MaxValue - MinValue)); }
};

/// A track from `MinX` to `MaxX` in pixels on which a knob of a width travels.
struct SliderTrack {
    double MinX = 0;
    double MaxX = 0;
    double KnobWidth = 0;

    /// Left of the knob, in whole pixels.
    int KnobLeft(const SliderRange& range) const;
    /// The value with the knob's middle at `x`.
    double ValueAt(double x, const SliderRange& range) const;
};

/// Turns of a wheel gathered to whole steps; a touch pad gives parts of them.
class WheelSteps {
public:
    /// The steps that `delta`, in eighths of a degree, completes.
    int Add(int delta);

private:
    int m_rest = 0;
};

} // namespace velmora::controls
