#include "soundlayer/internal/SampleConverter.h"

#include "soundlayer/SampleRounding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numbers>

namespace velmora::soundlayer {

namespace {

constexpr std::size_t kBlock = 256;
constexpr float kFullScale = 32768.0F;

/// 24 bits in the three upper bytes of 32.
inline float LoadS24(const std::uint8_t* in)
{
    const std::uint32_t value = std::uint32_t{in[0]} << 8 | std::uint32_t{in[1]} << 16 | std::uint32_t{in[2]} << 24;
    return static_cast<float>(static_cast<std::int32_t>(value)) * (1.0F / 65536);
}

template <typename T>
inline float ToSteps(T sample)
{
    if constexpr (std::is_same_v<T, std::uint8_t>) {
        return static_cast<float>((sample - 128) * 256);
    } else if constexpr (std::is_same_v<T, std::int16_t>) {
        return sample;
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        return static_cast<float>(sample) * (1.0F / 65536);
    } else {
        return static_cast<float>(sample * T{kFullScale});
    }
}

template <typename T>
void LoadAs(const std::byte* bytes, std::size_t stride, std::size_t count, float* out)
{
    const auto* in = reinterpret_cast<const T*>(bytes);
    if (stride == 1) {
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = ToSteps(in[i]);
        }
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = ToSteps(in[i * stride]);
        }
    }
}

/// Every `stride`-th sample in steps of 16 bits.
void Load(SampleType type, const std::byte* in, std::size_t stride, std::size_t count, float* out)
{
    switch (type) {
    case SampleType::U8:
        return LoadAs<std::uint8_t>(in, stride, count, out);
    case SampleType::S16:
        return LoadAs<std::int16_t>(in, stride, count, out);
    case SampleType::S24: {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(in);
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = LoadS24(bytes + 3 * i * stride);
        }
        return;
    }
    case SampleType::S32:
        return LoadAs<std::int32_t>(in, stride, count, out);
    case SampleType::F32:
        return LoadAs<float>(in, stride, count, out);
    case SampleType::F64:
        return LoadAs<double>(in, stride, count, out);
    }
}

enum Side { kLeft, kRight, kBoth, kNone };

struct Place {
    Side side;
    bool front;
};

/// The place of a bit of the channel mask.
Place PlaceOf(int bit)
{
    switch (bit) {
    case 0: // front left
    case 6: // front left of centre
        return {kLeft, true};
    case 1:
    case 7:
        return {kRight, true};
    case 3: // low frequency
        return {kNone, false};
    case 4:  // back left
    case 9:  // side left
    case 12: // top front left
    case 15: // top back left
        return {kLeft, false};
    case 5:
    case 10:
    case 14:
    case 17:
        return {kRight, false};
    default:
        return {kBoth, false};
    }
}

std::uint64_t UsualSpeakers(std::uint32_t channels)
{
    switch (channels) {
    case 3:
        return 0x7;
    case 4:
        return 0x33;
    case 5:
        return 0x37;
    case 6:
        return 0x3F;
    case 7:
        return 0x13F;
    case 8:
        return 0x63F;
    default:
        return 0;
    }
}

} // namespace

std::size_t BytesPerSample(SampleType type)
{
    switch (type) {
    case SampleType::U8:
        return 1;
    case SampleType::S16:
        return 2;
    case SampleType::S24:
        return 3;
    case SampleType::S32:
    case SampleType::F32:
        return 4;
    case SampleType::F64:
        return 8;
    }
    return 0;
}

void RoundSamples(const float* in, float scale, std::size_t count, std::int16_t* out)
{
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = RoundSample(in[i] * scale);
    }
}

void RoundStereo(const float* left, const float* right, float scale, std::size_t frames, std::int16_t* out)
{
    for (std::size_t i = 0; i < frames; ++i) {
        out[2 * i] = RoundSample(left[i] * scale);
        out[2 * i + 1] = RoundSample(right[i] * scale);
    }
}

SampleConverter::SampleConverter(SampleType type, bool planar, std::uint32_t channels, std::uint64_t speakers,
                                 std::uint32_t outChannels)
    : m_type(type)
    , m_planar(planar && channels > 1)
    , m_channels(channels)
    , m_outChannels(outChannels)
    , m_weights(channels == outChannels ? std::vector<Weights>{} : MixDown(channels, speakers, outChannels))
{
}

std::vector<SampleConverter::Weights> SampleConverter::MixDown(std::uint32_t channels, std::uint64_t speakers,
                                                               std::uint32_t outChannels)
{
    if (std::popcount(speakers) != static_cast<int>(channels)) {
        speakers = UsualSpeakers(channels);
    }
    std::vector<Weights> weights;
    Weights sum;
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        Place place{channel % 2 == 0 ? kLeft : kRight, true};
        if (channels == 1) {
            place = {kBoth, true};
        } else if (speakers != 0) {
            place = PlaceOf(std::countr_zero(speakers));
            speakers &= speakers - 1;
        }
        const float weight = place.front ? 1.0F : std::numbers::sqrt2_v<float> / 2;
        const Weights own{place.side == kLeft || place.side == kBoth ? weight : 0.0F,
                          place.side == kRight || place.side == kBoth ? weight : 0.0F};
        sum.left += own.left;
        sum.right += own.right;
        weights.push_back(own);
    }
    // One scale for both sides, so that the picture keeps its middle.
    const float scale = 1.0F / std::max({sum.left, sum.right, 1.0F});
    for (Weights& own : weights) {
        own.left *= scale;
        own.right *= scale;
        if (outChannels == 1) {
            own.left = (own.left + own.right) / 2;
        }
    }
    return weights;
}

void SampleConverter::Convert(const std::byte* const* planes, std::size_t first, std::size_t frames,
                              std::int16_t* out) const
{
    if (!m_weights.empty()) {
        return ConvertMixed(planes, first, frames, out);
    }
    const std::size_t sampleBytes = BytesPerSample(m_type);
    if (m_planar) {
        return ConvertPlanarStereo(planes[0] + first * sampleBytes, planes[1] + first * sampleBytes, frames, out);
    }
    const std::byte* in = planes[0] + first * m_channels * sampleBytes;
    const std::size_t samples = frames * m_channels;
    if (m_type == SampleType::S16) {
        std::memcpy(out, in, samples * sizeof(std::int16_t));
        return;
    }
    if (m_type == SampleType::F32) {
        return RoundSamples(reinterpret_cast<const float*>(in), kFullScale, samples, out);
    }
    std::array<float, kBlock> block;
    for (std::size_t done = 0; done < samples; done += kBlock) {
        const std::size_t count = std::min(kBlock, samples - done);
        Load(m_type, in + done * sampleBytes, 1, count, block.data());
        RoundSamples(block.data(), 1.0F, count, out + done);
    }
}

void SampleConverter::ConvertPlanarStereo(const std::byte* left, const std::byte* right, std::size_t frames,
                                          std::int16_t* out) const
{
    if (m_type == SampleType::F32) {
        return RoundStereo(reinterpret_cast<const float*>(left), reinterpret_cast<const float*>(right), kFullScale,
                           frames, out);
    }
    if (m_type == SampleType::S16) {
        const auto* l = reinterpret_cast<const std::int16_t*>(left);
        const auto* r = reinterpret_cast<const std::int16_t*>(right);
        for (std::size_t i = 0; i < frames; ++i) {
            out[2 * i] = l[i];
            out[2 * i + 1] = r[i];
        }
        return;
    }
    const std::size_t sampleBytes = BytesPerSample(m_type);
    std::array<float, kBlock> l;
    std::array<float, kBlock> r;
    for (std::size_t done = 0; done < frames; done += kBlock) {
        const std::size_t count = std::min(kBlock, frames - done);
        Load(m_type, left + done * sampleBytes, 1, count, l.data());
        Load(m_type, right + done * sampleBytes, 1, count, r.data());
        RoundStereo(l.data(), r.data(), 1.0F, count, out + 2 * done);
    }
}

void SampleConverter::ConvertMixed(const std::byte* const* planes, std::size_t first, std::size_t frames,
                                   std::int16_t* out) const
{
    const std::size_t sampleBytes = BytesPerSample(m_type);
    const std::size_t stride = m_planar ? 1 : m_channels;
    std::array<float, kBlock> block;
    for (std::size_t done = 0; done < frames; done += kBlock) {
        const std::size_t count = std::min(kBlock, frames - done);
        std::array<float, kBlock> left{};
        std::array<float, kBlock> right{};
        for (std::size_t channel = 0; channel < m_channels; ++channel) {
            const std::byte* plane = m_planar ? planes[channel] + (first + done) * sampleBytes
                                              : planes[0] + ((first + done) * m_channels + channel) * sampleBytes;
            Load(m_type, plane, stride, count, block.data());
            const Weights own = m_weights[channel];
            for (std::size_t i = 0; i < count; ++i) {
                left[i] += own.left * block[i];
                right[i] += own.right * block[i];
            }
        }
        if (m_outChannels == 2) {
            RoundStereo(left.data(), right.data(), 1.0F, count, out + 2 * done);
        } else {
            RoundSamples(left.data(), 1.0F, count, out + done);
        }
    }
}

} // namespace velmora::soundlayer
