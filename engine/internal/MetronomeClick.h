#pragma once

#include "engine/internal/MixSide.h"
#include "soundlayer/soundlayer.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmora::engine {

/// The click, as a stream of its own on the device: from each whole multiple of the period, counted from clock position
/// 0, the sound plays from its start until it ends or the next tick comes. While the clock is held it is silent.
///
/// The click's file is read into memory when it is set. Volume follows the stream that was named. What sounds is a
/// function of the clock alone, so it is right after every seek.
class MetronomeClick {
public:
    explicit MetronomeClick(const MixSide& mixSide);
    ~MetronomeClick();

    /// `stream`: the click as a plain file stream; 0, or one that cannot be read, gives silence. So does a period of
    /// less than a frame. Interface thread.
    void Set(bool enabled, double periodMS, HSTREAM stream, std::int32_t rate);
    /// What plays on the device; 0 while there is nothing to hear.
    HSTREAM Stream() const { return m_stream; }

private:
    struct Sound {
        std::vector<std::int16_t> stereo;
        double periodFrames = 0;
        HSTREAM volumeOf = 0;
    };

    static STREAMPROC Fill;
    void Stop();

    const MixSide& m_mixSide;
    std::unique_ptr<Sound> m_sound;
    HSTREAM m_stream = 0;
};

} // namespace velmora::engine
