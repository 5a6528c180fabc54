#pragma once

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/PacketSource.h"
#include "soundlayer/internal/SampleConverter.h"

#include <memory>
#include <optional>

namespace velmora::soundlayer {

/// A file whose packets have to be decoded. Each decoded piece is put at the samples that its packet stands for:
/// where it is too long it is cut, where one is missing there is silence.
class CodedFile final : public AudioFile {
public:
    /// Null if there is no sound that can be decoded.
    static std::unique_ptr<CodedFile> Open(std::shared_ptr<const FileBytes> file);

    std::uint32_t Rate() const override { return m_index->rate; }
    std::uint32_t Channels() const override { return m_index->channels; }
    std::int64_t LengthFrames() const override { return m_index->length; }
    bool IsWma() const override { return m_index->isWma; }
    void Seek(std::int64_t frame) override;
    std::size_t Read(std::span<std::int16_t> interleaved) override;

private:
    /// What a converter was made for.
    struct FrameFormat {
        int format = -1;
        int channels = 0;
        bool operator==(const FrameFormat&) const = default;
    };

    CodedFile(std::shared_ptr<const PacketIndex> index, std::unique_ptr<PacketSource> source, DecoderPtr decoder);
    /// Decodes until a piece ends after `m_sample`; false if no more comes.
    bool DecodeOn();
    /// Gives the decoder its next packet, or tells it that there are no more.
    void FeedDecoder();
    void PlaceFrame();
    bool PrepareConverter();
    void CopyFromFrame(std::int64_t frames, std::int16_t* out);

    std::shared_ptr<const PacketIndex> m_index;
    std::unique_ptr<PacketSource> m_source;
    DecoderPtr m_decoder;
    PacketPtr m_packet;
    FramePtr m_frame;
    std::optional<SampleConverter> m_converter;
    FrameFormat m_converterFormat;

    /// The next sample to give out, counted as in PacketIndex.
    std::int64_t m_sample;
    /// Those of the packet that was given to the decoder last, and how many came of it.
    PacketSource::Span m_span;
    std::int64_t m_spanDone = 0;
    int m_packetBytes = 0;
    /// Those that the decoded frame stands for; it begins at `m_frameStart` and may go on beyond `m_frameEnd`.
    std::int64_t m_frameStart = 0;
    std::int64_t m_frameEnd = 0;
    bool m_atEnd = false;
};

} // namespace velmora::soundlayer
