#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora::soundlayer {

/// The last frames of a capture by their number from its beginning. One thread at a time.
class CaptureHistory {
public:
    /// Keeps `frames` stereo frames.
    explicit CaptureHistory(std::size_t frames)
        : m_frames(frames)
        , m_samples(2 * frames)
    {
    }

    void Append(std::span<const std::int16_t> interleaved);
    /// The oldest frame that is kept, and the one that comes next.
    std::int64_t First() const;
    std::int64_t End() const { return m_end; }
    /// Copies up to `frames` frames from number `from`, which is kept, on; how many.
    std::size_t Read(std::int64_t from, std::int16_t* interleaved, std::size_t frames) const;

private:
    const std::size_t m_frames;
    std::vector<std::int16_t> m_samples;
    std::int64_t m_end = 0;
};

} // namespace velmora::soundlayer
