#pragma once

#include "soundlayer/internal/SampleLoops.h"

#include <cstddef>
#include <cstdint>

namespace velmora::soundlayer {

/// The gain of a mixer's source on its way to where the attributes want it: at once on the first block, then in a
/// straight line over 10 ms. The line does not depend on how the sound is cut into blocks. One thread at a time; all
/// is [RT].
class GainGlide {
public:
    explicit GainGlide(std::uint32_t rate);

    /// Where to go, asked at the start of each block.
    void SetTarget(StereoGain target);
    /// Nothing is heard now nor on the way.
    bool Silent() const;
    /// At rest at full gain on both sides.
    bool Unity() const;

    /// `sum` += `stereo` x gain (or = with `first`), and moves on by `frames`.
    void Mix(float* sum, const std::int16_t* stereo, std::size_t frames, bool first);
    /// Moves on by `frames` of silence.
    void Skip(std::size_t frames);

private:
    bool AtRest() const { return m_position == m_length; }

    const std::size_t m_length;
    StereoGain m_from;
    StereoGain m_to;
    StereoGain m_step;
    std::size_t m_position;
    bool m_started = false;
};

} // namespace velmora::soundlayer
