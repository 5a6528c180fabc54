#include "soundlayer/internal/CaptureStream.h"

namespace velmora::soundlayer {

void CaptureTake::Begin()
{
    // The sound that the take is to begin with may have been heard before anybody came to say so.
    constexpr std::chrono::milliseconds kBack{500};
    const bool first = m_first < 0;
    m_next = m_capture->FrameBefore(first ? kBack : std::chrono::milliseconds(0));
    if (first) {
        m_first = m_next;
    }
}

std::size_t CaptureTake::Read(std::int16_t* interleaved, std::size_t frames, bool& lost)
{
    const std::size_t given = m_capture->Read(m_next, interleaved, frames, lost);
    m_next += static_cast<std::int64_t>(given);
    return given;
}

} // namespace velmora::soundlayer
