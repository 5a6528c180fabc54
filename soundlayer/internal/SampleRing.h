#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// Frames on their way from one thread to one other; neither waits. Holds `Capacity()` frames and allocates only when
/// made.
class SampleRing {
public:
    /// Room for at least `frames` frames.
    SampleRing(std::size_t frames, std::size_t channels);

    std::size_t Capacity() const { return m_mask + 1; }
    /// Frames that can be read now. [RT]
    std::size_t Filled() const;
    std::size_t Free() const { return Capacity() - Filled(); }

    /// Takes as many of `frames` as there is room for. Writer only. [RT]
    std::size_t Write(const std::int16_t* interleaved, std::size_t frames);
    /// Takes `frames` frames of zeros, as far as there is room. Writer only. [RT]
    std::size_t WriteSilence(std::size_t frames);
    /// Gives up to `frames` frames. Reader only. [RT]
    std::size_t Read(std::int16_t* interleaved, std::size_t frames);
    /// Drops up to `frames` frames. Reader only. [RT]
    void Skip(std::size_t frames);
    /// Empties the ring. Only while neither side runs.
    void Clear();

private:
    const std::size_t m_channels;
    const std::size_t m_mask;
    std::vector<std::int16_t> m_samples;
    std::atomic<std::size_t> m_written{0};
    std::atomic<std::size_t> m_read{0};
};

} // namespace velmora::soundlayer
