#include "soundlayer/internal/FormatConverter.h"

#include <algorithm>
#include <cmath>
#include <new>

#include <soxr.h>

namespace velmora::soundlayer {

FormatConverter::FormatConverter(AudioFormat input, AudioFormat output)
    : m_input(input)
    , m_output(output)
{
    if (input.rate == output.rate) {
        return;
    }
    soxr_io_spec_t io = soxr_io_spec(SOXR_INT16_I, SOXR_INT16_I);
    io.flags |= SOXR_NO_DITHER;
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    m_soxr = soxr_create(input.rate, output.rate, output.channels, nullptr, &io, &quality, nullptr);
    if (!m_soxr) {
        throw std::bad_alloc();
    }
}

FormatConverter::~FormatConverter()
{
    soxr_delete(m_soxr);
}

std::span<const std::int16_t> FormatConverter::Convert(std::span<const std::int16_t> interleaved)
{
    m_framesIn += interleaved.size() / m_input.channels;
    const auto converted = ToChannels(interleaved);
    return m_soxr ? Resample(converted, false) : converted;
}

std::span<const std::int16_t> FormatConverter::Flush()
{
    return m_soxr ? Resample({}, true) : std::span<const std::int16_t>();
}

std::span<const std::int16_t> FormatConverter::ToChannels(std::span<const std::int16_t> interleaved)
{
    if (m_input.channels == m_output.channels) {
        return interleaved;
    }
    const std::size_t frames = interleaved.size() / m_input.channels;
    m_channels.resize(frames * m_output.channels);
    if (m_output.channels == 1) {
        for (std::size_t i = 0; i < frames; ++i) {
            const int sum = interleaved[2 * i] + interleaved[2 * i + 1];
            // Half of an odd sum lies between two samples: the even one is taken.
            m_channels[i] = static_cast<std::int16_t>((sum + ((sum >> 1) & 1)) >> 1);
        }
    } else {
        for (std::size_t i = 0; i < frames; ++i) {
            m_channels[2 * i] = interleaved[i];
            m_channels[2 * i + 1] = interleaved[i];
        }
    }
    return m_channels;
}

std::span<const std::int16_t> FormatConverter::Resample(std::span<const std::int16_t> interleaved, bool last)
{
    constexpr std::size_t kRoom = 4096;
    const std::size_t channels = m_output.channels;
    const double ratio = static_cast<double>(m_output.rate) / m_input.rate;
    std::size_t framesIn = interleaved.size() / channels;
    const std::int16_t* from = interleaved.data();
    m_resampled.clear();
    while (true) {
        const std::size_t have = m_resampled.size() / channels;
        const std::size_t room = kRoom + static_cast<std::size_t>(static_cast<double>(framesIn) * ratio);
        m_resampled.resize((have + room) * channels);
        std::size_t taken = 0;
        std::size_t given = 0;
        soxr_process(m_soxr, last ? nullptr : from, framesIn, &taken, m_resampled.data() + have * channels, room,
                     &given);
        m_resampled.resize((have + given) * channels);
        from += taken * channels;
        framesIn -= taken;
        if (given < room && framesIn == 0) {
            break;
        }
    }
    std::size_t frames = m_resampled.size() / channels;
    if (last) {
        // The converter's own tail may differ by a frame from the exact length.
        const auto exact = static_cast<std::uint64_t>(std::llround(static_cast<double>(m_framesIn) * ratio));
        frames = exact > m_framesOut ? static_cast<std::size_t>(exact - m_framesOut) : 0;
        m_resampled.resize(frames * channels);
    }
    m_framesOut += frames;
    return m_resampled;
}

} // namespace velmora::soundlayer
