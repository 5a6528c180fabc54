#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace velmora::soundlayer {

/// A delay line that is read and written in blocks, so that both are plain loops. All but the making is [RT].
class BlockLine {
public:
    static constexpr std::size_t kBlock = 32;

    /// For delays from `kBlock` to `longest` frames.
    explicit BlockLine(std::size_t longest)
        // What is read must not reach into the block that is written meanwhile.
        : m_size((longest + 2 * kBlock - 1) / kBlock * kBlock)
        , m_frames(m_size + kBlock)
    {
    }

    /// The block that is `delay` frames older than the one to be written next.
    const float* Read(std::size_t delay) const
    {
        return m_frames.data() + (m_position >= delay ? m_position - delay : m_position + m_size - delay);
    }
    /// Where the next block goes; it has been written when `Advance` is called.
    float* Next() { return m_frames.data() + m_position; }
    void Advance()
    {
        if (m_position == 0) {
            // Behind the end the start stands once more, so that no block that is read is cut.
            std::copy_n(m_frames.data(), kBlock, m_frames.data() + m_size);
        }
        m_position = m_position + kBlock == m_size ? 0 : m_position + kBlock;
    }
    /// Forgets all that was written.
    void Clear() { std::ranges::fill(m_frames, 0.0F); }

private:
    std::size_t m_size;
    std::size_t m_position = 0;
    std::vector<float> m_frames;
};

/// The first prime number above `frames`: lines of such lengths share no echo.
inline std::size_t NextPrime(std::size_t frames)
{
    while (true) {
        ++frames;
        std::size_t divisor = 2;
        while (divisor * divisor <= frames && frames % divisor != 0) {
            ++divisor;
        }
        if (divisor * divisor > frames) {
            return frames;
        }
    }
}

} // namespace velmora::soundlayer
