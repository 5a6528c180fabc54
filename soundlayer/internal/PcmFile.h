#pragma once

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/FileBytes.h"
#include "soundlayer/internal/SampleConverter.h"

#include <optional>

namespace velmora::soundlayer {

/// Where the plain samples of a file lie.
struct PcmLayout {
    SampleType type = SampleType::S16;
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
    /// As in SampleConverter.
    std::uint64_t speakers = 0;
    /// In bytes from the start of the file.
    std::int64_t offset = 0;
    std::int64_t frames = 0;

    std::size_t FrameBytes() const { return BytesPerSample(type) * channels; }
};

/// The layout of a WAV, RF64 or BW64 file with plain samples of 8 to 32 bits or floats; nothing for other files.
///
/// What the header says of the length is taken where the file bears it out. A size beyond the end of the file, one of
/// 0xFFFFFFFF and the 0 of a header that was never completed all mean: to the end of the file.
std::optional<PcmLayout> ReadWavLayout(const FileBytes& file);

/// A file of plain samples, read without any library. What the file loses while it is open reads as silence.
class PcmFile final : public AudioFile {
public:
    PcmFile(std::shared_ptr<const FileBytes> file, const PcmLayout& layout);

    std::uint32_t Rate() const override { return m_layout.rate; }
    std::uint32_t Channels() const override { return m_outChannels; }
    std::int64_t LengthFrames() const override { return m_layout.frames; }
    bool IsWma() const override { return false; }
    void Seek(std::int64_t frame) override;
    std::size_t Read(std::span<std::int16_t> interleaved) override;

private:
    void ReadFrames(std::size_t frames, std::int16_t* out);

    std::shared_ptr<const FileBytes> m_file;
    PcmLayout m_layout;
    std::uint32_t m_outChannels;
    SampleConverter m_converter;
    FileWindow m_window;
    std::int64_t m_position = 0;
};

} // namespace velmora::soundlayer
