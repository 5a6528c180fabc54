#pragma once

#include "soundlayer/internal/FileEncoder.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace velmora::soundlayer {

/// Turns a stream of 16-bit samples from one format into another, block by block: n frames at rate r become
/// round(n x R / r) frames at rate R, lined up with what came in, and the same ones however the stream was cut into
/// blocks.
///
/// Mono is the mean of both sides, halves to the even step; stereo of mono gives both sides. Equal formats pass
/// through. Blocks that it returns live until the next call. One thread at a time.
class FormatConverter {
public:
    static constexpr std::uint32_t kLowestRate = 1000;
    static constexpr std::uint32_t kHighestRate = 384000;

    /// 1 or 2 channels and a rate within the limits.
    static bool Takes(AudioFormat format);

    FormatConverter(AudioFormat from, AudioFormat to);

    /// False when a format is not taken or memory is short; then nothing comes out.
    bool IsValid() const { return m_valid; }
    std::span<const std::int16_t> Convert(std::span<const std::int16_t> interleaved);
    /// The rest of the stream, once, at its end.
    std::span<const std::int16_t> Flush();

private:
    struct ResamplerDeleter {
        void operator()(soxr* resampler) const;
    };

    std::size_t MixChannels() const;
    void Resample(const float* samples, std::size_t frames);
    void AppendResampled(const float* samples, std::size_t frames, std::size_t& used, std::size_t& made);
    std::span<const std::int16_t> Spread(std::span<const std::int16_t> mixed);

    AudioFormat m_from;
    AudioFormat m_to;
    bool m_valid = false;
    std::int64_t m_framesIn = 0;
    std::int64_t m_framesOut = 0;
    std::unique_ptr<soxr, ResamplerDeleter> m_resampler; // null for equal rates
    std::vector<float> m_mixed;
    std::vector<std::int16_t> m_resampled; // in MixChannels()
    std::vector<std::int16_t> m_out;
};

} // namespace velmora::soundlayer
