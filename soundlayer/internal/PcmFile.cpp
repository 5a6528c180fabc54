#include "soundlayer/internal/PcmFile.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace velmora::soundlayer {

static_assert(std::endian::native == std::endian::little, "samples in files are taken as they lie");

PcmFile::PcmFile(std::shared_ptr<const FileBytes> file, const PcmLayout& layout)
    : m_file(std::move(file))
    , m_layout(layout)
    , m_outChannels(std::min<std::uint32_t>(layout.channels, 2))
    , m_converter(layout.type, false, layout.channels, layout.speakers, m_outChannels)
    , m_window(m_file)
{
}

void PcmFile::Seek(std::int64_t frame)
{
    m_position = std::clamp<std::int64_t>(frame, 0, m_layout.frames);
}

std::size_t PcmFile::Read(std::span<std::int16_t> interleaved)
{
    const auto left = static_cast<std::uint64_t>(m_layout.frames - m_position);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(interleaved.size() / m_outChannels, left));
    const std::size_t frameBytes = m_layout.FrameBytes();
    const bool asItLies = m_layout.type == SampleType::S16 && m_layout.channels <= 2;
    if (asItLies && wanted * frameBytes >= FileWindow::kBytes / 2) {
        const auto bytes = std::as_writable_bytes(interleaved.first(wanted * m_outChannels));
        const std::int64_t position = m_layout.offset + m_position * static_cast<std::int64_t>(frameBytes);
        const std::size_t got = m_file->ReadAt(position, bytes);
        std::ranges::fill(bytes.subspan(got), std::byte{0});
        m_position += static_cast<std::int64_t>(wanted);
        return wanted;
    }
    const std::size_t most = FileWindow::kBytes / frameBytes;
    for (std::size_t done = 0; done < wanted;) {
        const std::size_t frames = std::min(wanted - done, most);
        ReadFrames(frames, interleaved.data() + done * m_outChannels);
        done += frames;
    }
    return wanted;
}

void PcmFile::ReadFrames(std::size_t frames, std::int16_t* out)
{
    const std::size_t frameBytes = m_layout.FrameBytes();
    const std::int64_t position = m_layout.offset + m_position * static_cast<std::int64_t>(frameBytes);
    m_position += static_cast<std::int64_t>(frames);
    const std::span<const std::byte> bytes = m_window.View(position, frames * frameBytes);
    const std::size_t whole = bytes.size() / frameBytes;
    const std::byte* plane = bytes.data();
    m_converter.Convert(&plane, 0, whole, out);
    std::fill_n(out + whole * m_outChannels, (frames - whole) * m_outChannels, std::int16_t{0});
}

} // namespace velmora::soundlayer
