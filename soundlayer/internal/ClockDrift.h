#pragma once

#include <cstdint>

namespace velmora::soundlayer {

/// How fast two clocks run apart, from how far apart they were found time after time. One thread at a time.
///
/// The slope of straight lines through the findings, by least squares: one slope for all, a line of its own for each
/// run of findings that nothing has moved.
class ClockDrift {
public:
    /// At `time` one clock was `apart` ahead of the other, both in s. `moved`: something other than the clocks has
    /// happened since the last finding.
    void Add(double time, double apart, bool moved);
    /// In s per s. 0 as long as the findings are few or scatter too much to tell, and when they run apart as no two
    /// clocks do.
    double Rate() const;

private:
    /// Sums of products of what was found, less their means.
    struct Sums {
        double tt = 0;
        double ta = 0;
        double aa = 0;
    };

    /// Of the run under way.
    Sums m_sums;
    double m_meanTime = 0;
    double m_meanApart = 0;
    std::int64_t m_found = 0;
    /// Of the runs before it.
    Sums m_sumsBefore;
    /// Findings of all runs, less one for the line of each.
    std::int64_t m_freedom = 0;
};

} // namespace velmora::soundlayer
