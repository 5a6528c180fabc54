#include "soundlayer/internal/SampleCounter.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavcodec/vorbis_parser.h>
#include <libavutil/intreadwrite.h>
}

namespace velmora::soundlayer {

void SampleCounter::VorbisDeleter::operator()(AVVorbisParseContext* parser) const
{
    av_vorbis_parse_free(&parser);
}

SampleCounter::SampleCounter(const AVStream& stream, bool inOgg, DecoderPtr decoder)
    : m_stream(stream)
    , m_inOgg(inOgg)
{
    const AVCodecParameters& codec = *stream.codecpar;
    if (codec.codec_id == AV_CODEC_ID_VORBIS && codec.extradata_size > 0) {
        m_vorbis.reset(av_vorbis_parse_init(codec.extradata, codec.extradata_size));
    }
    const bool version1 = codec.codec_id == AV_CODEC_ID_WMAV1;
    if (version1 || codec.codec_id == AV_CODEC_ID_WMAV2) {
        // The frame's length follows from the rate alone in these versions of the format.
        m_wmaFrame = 2048;
        if (codec.sample_rate <= 16000) {
            m_wmaFrame = 512;
        } else if (codec.sample_rate <= 22050 || (codec.sample_rate <= 32000 && version1)) {
            m_wmaFrame = 1024;
        }
        constexpr unsigned kReservoir = 2;
        const int at = version1 ? 2 : 4;
        m_wmaReservoir = codec.extradata_size >= at + 2 && (AV_RL16(codec.extradata + at) & kReservoir) != 0;
    }
    if (decoder && m_wmaFrame == 0 && !m_vorbis) {
        m_decoder = std::move(decoder);
        m_frame.reset(av_frame_alloc());
    }
}

SampleCounter::~SampleCounter() = default;

std::int64_t SampleCounter::Count(const AVPacket& packet, std::int64_t discard)
{
    std::int64_t count = 0;
    if (m_wmaFrame > 0) {
        count = CountWma(packet);
    } else if (m_decoder && m_frame) {
        count = CountDecoded(&packet);
    } else if (m_vorbis) {
        // Each packet completes the one before, so the first gives nothing; the parser must see it all the same.
        count = av_vorbis_parse_frame(m_vorbis.get(), packet.data, packet.size);
        count = m_first ? 0 : count;
    } else {
        count = av_rescale_q(packet.duration, m_stream.time_base, {1, m_stream.codecpar->sample_rate});
        count += m_inOgg ? discard : 0;
    }
    m_first = false;
    return std::clamp<std::int64_t>(count, 0, std::int64_t{1} << 24);
}

std::int64_t SampleCounter::CountWma(const AVPacket& packet)
{
    const int blockBytes = std::max(m_stream.codecpar->block_align, 1);
    std::int64_t frames = 0;
    for (int at = 0; at + blockBytes <= packet.size; at += blockBytes) {
        if (!m_wmaReservoir) {
            ++frames;
            continue;
        }
        // The low half of a block's first byte tells how many frames end in it.
        frames += packet.data[at] & 15;
        if (m_first && at == 0) {
            --frames;
        }
    }
    return std::max<std::int64_t>(frames, 0) * m_wmaFrame;
}

std::int64_t SampleCounter::CountDecoded(const AVPacket* packet)
{
    avcodec_send_packet(m_decoder.get(), packet);
    std::int64_t count = 0;
    while (avcodec_receive_frame(m_decoder.get(), m_frame.get()) == 0) {
        count += m_frame->nb_samples;
    }
    return count;
}

std::int64_t SampleCounter::Lead() const
{
    return 2 * m_wmaFrame;
}

std::int64_t SampleCounter::Tail()
{
    return m_decoder && m_frame ? CountDecoded(nullptr) : m_wmaFrame;
}

std::int64_t SampleCounter::Unit() const
{
    return std::max<std::int64_t>(m_wmaFrame, 1);
}

} // namespace velmora::soundlayer
