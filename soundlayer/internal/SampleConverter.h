#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// How a sample is stored, in the byte order of the machine. S24 takes three bytes. Floats are full scale at 1.
enum class SampleType { U8, S16, S24, S32, F32, F64 };

std::size_t BytesPerSample(SampleType type);

/// Makes 16-bit interleaved mono or stereo of any samples.
///
/// Rounds once, to the nearest step and halves to the even one, and limits to full scale. A float that is no number
/// becomes any sample. More than 2 channels are
/// mixed down by their place: a left speaker counts on the left, a right one on the right, those between on both;
/// centre, side and rear weigh 1/sqrt(2) against the front, the low-frequency channel nothing. The weights of a side
/// sum to 1 at most, so that no mix-down is louder than full scale.
class SampleConverter {
public:
    /// `speakers` has one bit per channel, lowest first, in the order of WAV's channel mask (bit 0 front left, 1 front
    /// right, 2 centre, 3 low frequency, 4 and 5 rear, ...); another number of bits than `channels`: the usual places.
    /// `outChannels` is 1 or 2.
    SampleConverter(SampleType type, bool planar, std::uint32_t channels, std::uint64_t speakers,
                    std::uint32_t outChannels);

    /// Converts `frames` frames from the `first` one on. `planes` holds one pointer per channel if planar, else one.
    void Convert(const std::byte* const* planes, std::size_t first, std::size_t frames, std::int16_t* out) const;

private:
    struct Weights {
        float left = 0;
        float right = 0;
    };
    static std::vector<Weights> MixDown(std::uint32_t channels, std::uint64_t speakers, std::uint32_t outChannels);

    void ConvertMixed(const std::byte* const* planes, std::size_t first, std::size_t frames, std::int16_t* out) const;
    void ConvertPlanarStereo(const std::byte* left, const std::byte* right, std::size_t frames,
                             std::int16_t* out) const;

    SampleType m_type;
    bool m_planar;
    std::size_t m_channels;
    std::size_t m_outChannels;
    /// Empty where channels go through as they are.
    std::vector<Weights> m_weights;
};

/// `count` samples, times `scale`, as 16 bits.
void RoundSamples(const float* in, float scale, std::size_t count, std::int16_t* out);
/// `frames` of each side, times `scale`, as 16-bit interleaved stereo.
void RoundStereo(const float* left, const float* right, float scale, std::size_t frames, std::int16_t* out);

} // namespace velmora::soundlayer
