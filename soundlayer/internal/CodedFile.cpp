#include "soundlayer/internal/CodedFile.h"

#include "soundlayer/internal/PacketIndexCache.h"
#include "soundlayer/internal/PacketScan.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace velmora::soundlayer {

namespace {

/// A seek forward by less than this decodes on: that is cheaper than beginning anew.
constexpr std::int64_t kDecodeOnSamples = 4096;

std::optional<SampleType> TypeOf(AVSampleFormat packed)
{
    switch (packed) {
    case AV_SAMPLE_FMT_U8:
        return SampleType::U8;
    case AV_SAMPLE_FMT_S16:
        return SampleType::S16;
    case AV_SAMPLE_FMT_S32:
        return SampleType::S32;
    case AV_SAMPLE_FMT_FLT:
        return SampleType::F32;
    case AV_SAMPLE_FMT_DBL:
        return SampleType::F64;
    default:
        return std::nullopt;
    }
}

} // namespace

std::unique_ptr<CodedFile> CodedFile::Open(std::shared_ptr<const FileBytes> file)
{
    auto index = PacketIndexCache::Shared().Get(*file, [&file] { return ScanPackets(file); });
    if (!index) {
        return nullptr;
    }
    DecoderPtr decoder = OpenDecoder(*index);
    auto source = PacketSource::Open(std::move(file), index);
    if (!decoder || !source) {
        return nullptr;
    }
    std::unique_ptr<CodedFile> coded(new CodedFile(std::move(index), std::move(source), std::move(decoder)));
    return coded->m_packet && coded->m_frame ? std::move(coded) : nullptr;
}

CodedFile::CodedFile(std::shared_ptr<const PacketIndex> index, std::unique_ptr<PacketSource> source, DecoderPtr decoder)
    : m_index(std::move(index))
    , m_source(std::move(source))
    , m_decoder(std::move(decoder))
    , m_packet(av_packet_alloc())
    , m_frame(av_frame_alloc())
    , m_sample(m_index->begin)
{
}

void CodedFile::Seek(std::int64_t frame)
{
    const std::int64_t sample = m_index->begin + std::clamp<std::int64_t>(frame, 0, m_index->length);
    const std::int64_t ahead = sample - std::max(m_sample, m_frameEnd);
    const bool inReach =
        (sample >= m_frameStart && sample < m_frameEnd) || (sample >= m_sample && ahead < kDecodeOnSamples);
    m_sample = sample;
    if (inReach) {
        return;
    }
    // A flush leaves traces (AAC keeps the shape of its last window), which later packets wipe out but not the first.
    DecoderPtr fresh = m_source->GoTo(sample) ? OpenDecoder(*m_index) : nullptr;
    if (fresh) {
        m_decoder = std::move(fresh);
    } else {
        avcodec_flush_buffers(m_decoder.get());
    }
    m_span = {};
    m_spanDone = 0;
    m_frameStart = m_frameEnd = 0;
    m_atEnd = false;
}

std::size_t CodedFile::Read(std::span<std::int16_t> interleaved)
{
    const std::int64_t end = m_index->begin + m_index->length;
    const auto room = static_cast<std::int64_t>(interleaved.size() / m_index->channels);
    const std::int64_t wanted = std::min(room, end - m_sample);
    std::int16_t* out = interleaved.data();
    for (std::int64_t left = wanted; left > 0;) {
        std::int64_t count = left;
        const bool decoded = m_frameEnd > m_sample || DecodeOn();
        if (decoded && m_frameStart <= m_sample) {
            count = std::min(left, m_frameEnd - m_sample);
            CopyFromFrame(count, out);
        } else {
            if (decoded) {
                count = std::min(left, m_frameStart - m_sample);
            }
            std::fill_n(out, count * m_index->channels, std::int16_t{0});
        }
        m_sample += count;
        out += count * m_index->channels;
        left -= count;
    }
    return static_cast<std::size_t>(wanted);
}

bool CodedFile::DecodeOn()
{
    while (!m_atEnd) {
        const int result = avcodec_receive_frame(m_decoder.get(), m_frame.get());
        if (result == 0) {
            PlaceFrame();
            if (m_frameEnd > m_sample && PrepareConverter()) {
                return true;
            }
        } else if (result == AVERROR_EOF) {
            m_atEnd = true;
        } else {
            // Either it wants more, or the last packet was damaged and its samples stay silent.
            FeedDecoder();
        }
    }
    m_frameStart = m_frameEnd = 0;
    return false;
}

void CodedFile::FeedDecoder()
{
    m_spanDone = 0;
    AVPacket* packet = m_packet.get();
    if (!m_source->Next(*packet, m_span)) {
        // What a decoder gives without a packet follows the last one.
        m_span = {m_span.end, std::numeric_limits<std::int64_t>::max()};
        packet = nullptr;
    }
    m_packetBytes = packet ? packet->size : 0;
    const int result = avcodec_send_packet(m_decoder.get(), packet);
    if (!packet && result < 0) {
        m_atEnd = true;
    }
    av_packet_unref(m_packet.get());
}

/// Finds the samples that the decoded frame stands for.
void CodedFile::PlaceFrame()
{
    const std::int64_t count = m_frame->nb_samples;
    m_frameStart = m_span.start + m_spanDone;
    // After damage a WMA block lacks its first frame, which began in the block before.
    const AVCodecParameters& codec = *m_index->parameters;
    const bool isWma = codec.codec_id == AV_CODEC_ID_WMAV1 || codec.codec_id == AV_CODEC_ID_WMAV2;
    if (isWma && m_packetBytes == codec.block_align && m_spanDone == 0) {
        m_frameStart = std::max(m_frameStart, m_span.end - count);
    }
    m_frameEnd = std::min(m_frameStart + count, m_span.end);
    m_spanDone += count;
}

bool CodedFile::PrepareConverter()
{
    const FrameFormat format{m_frame->format, m_frame->ch_layout.nb_channels};
    if (m_converter && format == m_converterFormat) {
        return true;
    }
    const auto sampleFormat = static_cast<AVSampleFormat>(format.format);
    const auto type = TypeOf(av_get_packed_sample_fmt(sampleFormat));
    if (!type || format.channels < 1) {
        m_frameStart = m_frameEnd = 0;
        return false;
    }
    const AVChannelLayout& layout = m_frame->ch_layout;
    const std::uint64_t speakers = layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0;
    m_converter.emplace(*type, av_sample_fmt_is_planar(sampleFormat) != 0, static_cast<std::uint32_t>(format.channels),
                        speakers, m_index->channels);
    m_converterFormat = format;
    return true;
}

void CodedFile::CopyFromFrame(std::int64_t frames, std::int16_t* out)
{
    const auto* planes = reinterpret_cast<const std::byte* const*>(m_frame->extended_data);
    m_converter->Convert(planes, static_cast<std::size_t>(m_sample - m_frameStart), static_cast<std::size_t>(frames),
                         out);
}

} // namespace velmora::soundlayer
