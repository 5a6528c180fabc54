#pragma once

#include "soundlayer/internal/FileEncoder.h"

#include <cstdint>
#include <span>
#include <vector>

struct soxr;

namespace velmora::soundlayer {

/// Brings 16-bit sound of one format into another: mono is the mean of both sides (halves to the even one), stereo of
/// mono gives both sides, other rates are converted so that n frames become the nearest whole number of
/// n x output rate / input rate. One thread at a time.
class FormatConverter {
public:
    FormatConverter(AudioFormat input, AudioFormat output);
    ~FormatConverter();
    FormatConverter(const FormatConverter&) = delete;
    FormatConverter& operator=(const FormatConverter&) = delete;

    /// What the samples give so far; valid until the next call.
    std::span<const std::int16_t> Convert(std::span<const std::int16_t> interleaved);
    /// The tail, once, after the last `Convert`.
    std::span<const std::int16_t> Flush();

private:
    std::span<const std::int16_t> ToChannels(std::span<const std::int16_t> interleaved);
    std::span<const std::int16_t> Resample(std::span<const std::int16_t> interleaved, bool last);

    const AudioFormat m_input;
    const AudioFormat m_output;
    soxr* m_soxr = nullptr;
    std::vector<std::int16_t> m_channels;
    std::vector<std::int16_t> m_resampled;
    std::uint64_t m_framesIn = 0;
    std::uint64_t m_framesOut = 0;
};

} // namespace velmora::soundlayer
