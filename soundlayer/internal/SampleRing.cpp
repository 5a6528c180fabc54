#include "soundlayer/internal/SampleRing.h"

#include <algorithm>
#include <bit>

namespace velmora::soundlayer {

SampleRing::SampleRing(std::size_t frames, std::size_t channels)
    : m_channels(channels)
    , m_mask(std::bit_ceil(std::max<std::size_t>(frames, 1)) - 1)
    , m_samples((m_mask + 1) * channels)
{
}

std::size_t SampleRing::Filled() const
{
    return m_written.load(std::memory_order_acquire) - m_read.load(std::memory_order_acquire);
}

std::size_t SampleRing::Write(const std::int16_t* interleaved, std::size_t frames)
{
    const std::size_t at = m_written.load(std::memory_order_relaxed);
    const std::size_t taken = std::min(frames, Capacity() - (at - m_read.load(std::memory_order_acquire)));
    const std::size_t first = std::min(taken, Capacity() - (at & m_mask));
    std::copy_n(interleaved, first * m_channels, m_samples.data() + (at & m_mask) * m_channels);
    std::copy_n(interleaved + first * m_channels, (taken - first) * m_channels, m_samples.data());
    m_written.store(at + taken, std::memory_order_release);
    return taken;
}

std::size_t SampleRing::WriteSilence(std::size_t frames)
{
    const std::size_t at = m_written.load(std::memory_order_relaxed);
    const std::size_t taken = std::min(frames, Capacity() - (at - m_read.load(std::memory_order_acquire)));
    const std::size_t first = std::min(taken, Capacity() - (at & m_mask));
    std::fill_n(m_samples.data() + (at & m_mask) * m_channels, first * m_channels, std::int16_t{0});
    std::fill_n(m_samples.data(), (taken - first) * m_channels, std::int16_t{0});
    m_written.store(at + taken, std::memory_order_release);
    return taken;
}

std::size_t SampleRing::Read(std::int16_t* interleaved, std::size_t frames)
{
    const std::size_t at = m_read.load(std::memory_order_relaxed);
    const std::size_t given = std::min(frames, m_written.load(std::memory_order_acquire) - at);
    const std::size_t first = std::min(given, Capacity() - (at & m_mask));
    std::copy_n(m_samples.data() + (at & m_mask) * m_channels, first * m_channels, interleaved);
    std::copy_n(m_samples.data(), (given - first) * m_channels, interleaved + first * m_channels);
    m_read.store(at + given, std::memory_order_release);
    return given;
}

void SampleRing::Skip(std::size_t frames)
{
    const std::size_t at = m_read.load(std::memory_order_relaxed);
    m_read.store(at + std::min(frames, m_written.load(std::memory_order_acquire) - at), std::memory_order_release);
}

void SampleRing::Clear()
{
    m_read.store(m_written.load());
}

} // namespace velmora::soundlayer
