#pragma once

#include "soundlayer/internal/AvHandles.h"

#include <cstdint>
#include <memory>

struct AVVorbisParseContext;

namespace velmora::soundlayer {

/// Tells, packet after packet, how many samples the decoder will make of each: without decoding where the packets or
/// the container tell it to the sample.
class SampleCounter {
public:
    /// Of the packets of `stream`, which lives as long as this. `inOgg`: a last packet's duration tells only what is to
    /// be heard of it. `decoder`, if given, counts where only the container's coarse durations would.
    SampleCounter(const AVStream& stream, bool inOgg, DecoderPtr decoder);
    ~SampleCounter();

    /// `discard` is what the container cuts from the packet's end.
    std::int64_t Count(const AVPacket& packet, std::int64_t discard);
    /// Samples that the decoder puts in front and gives no packet for.
    std::int64_t Lead() const;
    /// Samples that come once the packets are over. The last call.
    std::int64_t Tail();
    /// The samples that a packet's count is a multiple of, 1 if unknown.
    std::int64_t Unit() const;

private:
    struct VorbisDeleter {
        void operator()(AVVorbisParseContext* parser) const;
    };
    std::int64_t CountWma(const AVPacket& packet);
    std::int64_t CountDecoded(const AVPacket* packet);

    const AVStream& m_stream;
    bool m_inOgg;
    bool m_first = true;
    std::unique_ptr<AVVorbisParseContext, VorbisDeleter> m_vorbis;
    /// Only where decoding has to tell.
    DecoderPtr m_decoder;
    FramePtr m_frame;
    /// Samples of a frame of Windows media audio, else 0.
    std::int64_t m_wmaFrame = 0;
    bool m_wmaReservoir = false;
};

} // namespace velmora::soundlayer
