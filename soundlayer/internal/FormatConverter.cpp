#include "soundlayer/internal/FormatConverter.h"

#include <algorithm>

#include <soxr.h>

namespace velmora::soundlayer {

namespace {

constexpr std::size_t kRoomFrames = 4096;

/// Mean of two samples, halves to the even step.
void MixToMono(const std::int16_t* stereo, std::size_t frames, std::int16_t* mono)
{
    for (std::size_t i = 0; i < frames; ++i) {
        const int sum = stereo[2 * i] + stereo[2 * i + 1];
        const int down = sum >> 1;
        mono[i] = static_cast<std::int16_t>(down + (down & sum & 1));
    }
}

} // namespace

void FormatConverter::ResamplerDeleter::operator()(soxr* resampler) const
{
    soxr_delete(resampler);
}

bool FormatConverter::Takes(AudioFormat format)
{
    return (format.channels == 1 || format.channels == 2) && format.rate >= kLowestRate && format.rate <= kHighestRate;
}

FormatConverter::FormatConverter(AudioFormat from, AudioFormat to)
    : m_from(from)
    , m_to(to)
    , m_valid(Takes(from) && Takes(to))
{
    if (!m_valid || from.rate == to.rate) {
        return;
    }
    // Dither is seeded by the clock: without it the same input gives the same bytes.
    const soxr_io_spec_t samples = [] {
        soxr_io_spec_t spec = soxr_io_spec(SOXR_FLOAT32_I, SOXR_INT16_I);
        spec.flags = SOXR_NO_DITHER;
        return spec;
    }();
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    m_resampler.reset(
        soxr_create(from.rate, to.rate, static_cast<unsigned>(MixChannels()), nullptr, &samples, &quality, nullptr));
    m_valid = m_resampler != nullptr;
}

std::size_t FormatConverter::MixChannels() const
{
    return std::min(m_from.channels, m_to.channels);
}

std::span<const std::int16_t> FormatConverter::Convert(std::span<const std::int16_t> interleaved)
{
    if (!m_valid) {
        return {};
    }
    const std::size_t frames = interleaved.size() / m_from.channels;
    m_framesIn += static_cast<std::int64_t>(frames);
    if (m_resampler) {
        const std::size_t channels = MixChannels();
        m_mixed.resize(frames * channels);
        if (channels == m_from.channels) {
            std::ranges::copy(interleaved.first(m_mixed.size()), m_mixed.begin());
        } else {
            for (std::size_t i = 0; i < frames; ++i) {
                m_mixed[i] = 0.5f * static_cast<float>(interleaved[2 * i] + interleaved[2 * i + 1]);
            }
        }
        // The resampler takes 1.0 as full scale; powers of two lose nothing.
        for (float& sample : m_mixed) {
            sample *= 1.0f / 32768.0f;
        }
        m_resampled.clear();
        Resample(m_mixed.data(), frames);
        return Spread(m_resampled);
    }
    if (m_to.channels < m_from.channels) {
        m_out.resize(frames);
        MixToMono(interleaved.data(), frames, m_out.data());
        return m_out;
    }
    return Spread(interleaved.first(frames * m_from.channels));
}

std::span<const std::int16_t> FormatConverter::Flush()
{
    if (!m_valid || !m_resampler) {
        return {};
    }
    m_resampled.clear();
    std::size_t made = 0;
    std::size_t used = 0;
    do {
        AppendResampled(nullptr, 0, used, made);
    } while (made > 0);
    const std::int64_t due = (2 * m_framesIn * m_to.rate + m_from.rate) / (2 * std::int64_t{m_from.rate});
    const std::int64_t before = m_framesOut - static_cast<std::int64_t>(m_resampled.size() / MixChannels());
    m_resampled.resize(static_cast<std::size_t>(std::max<std::int64_t>(due - before, 0)) * MixChannels());
    return Spread(m_resampled);
}

void FormatConverter::Resample(const float* samples, std::size_t frames)
{
    std::size_t made = 0;
    while (frames > 0 || made == kRoomFrames) {
        std::size_t used = 0;
        AppendResampled(samples, frames, used, made);
        samples += used * MixChannels();
        frames -= used;
    }
}

void FormatConverter::AppendResampled(const float* samples, std::size_t frames, std::size_t& used, std::size_t& made)
{
    const std::size_t end = m_resampled.size();
    m_resampled.resize(end + kRoomFrames * MixChannels());
    soxr_process(m_resampler.get(), samples, frames, &used, m_resampled.data() + end, kRoomFrames, &made);
    m_resampled.resize(end + made * MixChannels());
    m_framesOut += static_cast<std::int64_t>(made);
}

std::span<const std::int16_t> FormatConverter::Spread(std::span<const std::int16_t> mixed)
{
    if (m_to.channels == MixChannels()) {
        return mixed;
    }
    m_out.resize(2 * mixed.size());
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        m_out[2 * i] = mixed[i];
        m_out[2 * i + 1] = mixed[i];
    }
    return m_out;
}

} // namespace velmora::soundlayer
