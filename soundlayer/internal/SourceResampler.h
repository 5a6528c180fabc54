#pragma once

#include "soundlayer/internal/Stream.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct soxr;

namespace velmora::soundlayer {

/// Brings a mixer's source to the mixer's rate as it plays. What a source does not give in time is silence.
class SourceResampler {
public:
    /// `sourceRate` and `mixerRate` in Hz.
    SourceResampler(Stream& source, double sourceRate, double mixerRate);
    ~SourceResampler();
    SourceResampler(const SourceResampler&) = delete;
    SourceResampler& operator=(const SourceResampler&) = delete;

    /// Gives up to `frames` frames with the source's channels; fewer once the source has ended and its tail is out.
    /// Its buffers are made beforehand. [RT]
    Block Pull(std::int16_t* out, std::size_t frames);

private:
    static std::size_t Feed(void* self, const void** data, std::size_t wanted);

    Stream& m_source;
    soxr* m_soxr;
    std::vector<std::int16_t> m_input;
    bool m_ended = false;
};

} // namespace velmora::soundlayer
