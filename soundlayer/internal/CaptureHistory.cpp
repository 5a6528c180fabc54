#include "soundlayer/internal/CaptureHistory.h"

#include <algorithm>

namespace velmora::soundlayer {

void CaptureHistory::Append(std::span<const std::int16_t> interleaved)
{
    while (!interleaved.empty()) {
        const std::size_t at = static_cast<std::size_t>(m_end) % m_frames;
        const std::size_t frames = std::min(interleaved.size() / 2, m_frames - at);
        std::copy_n(interleaved.data(), 2 * frames, m_samples.data() + 2 * at);
        interleaved = interleaved.subspan(2 * frames);
        m_end += static_cast<std::int64_t>(frames);
    }
}

std::int64_t CaptureHistory::First() const
{
    return std::max<std::int64_t>(m_end - static_cast<std::int64_t>(m_frames), 0);
}

std::size_t CaptureHistory::Read(std::int64_t from, std::int16_t* interleaved, std::size_t frames) const
{
    const auto given = std::min(frames, static_cast<std::size_t>(m_end - from));
    for (std::size_t done = 0; done < given;) {
        const std::size_t at = (static_cast<std::size_t>(from) + done) % m_frames;
        const std::size_t piece = std::min(given - done, m_frames - at);
        std::copy_n(m_samples.data() + 2 * at, 2 * piece, interleaved + 2 * done);
        done += piece;
    }
    return given;
}

} // namespace velmora::soundlayer
