#include "soundlayer/internal/WmaEncoder.h"

#include "soundlayer/internal/AvHandles.h"

#include <algorithm>
#include <cstdio>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

namespace velmora::soundlayer {

namespace {

constexpr const char* kLengthTag = "SourceSamples";

/// The tag's text, always of one width, so that the header can be written again in its place.
void SetLengthTag(AVFormatContext* container, std::int64_t frames)
{
    char text[32];
    std::snprintf(text, sizeof text, "%012lld", static_cast<long long>(frames));
    av_dict_set(&container->metadata, kLengthTag, text, 0);
}

} // namespace

struct WmaEncoder::Streams {
    FormatPtr container;
    DecoderPtr codec;
    FramePtr frame;
    PacketPtr packet;
    AVStream* stream = nullptr;

    ~Streams()
    {
        if (container && container->pb) {
            avio_closep(&container->pb);
        }
    }

    EncoderError OpenCodec(AudioFormat format, std::uint32_t bitrate)
    {
        AVFormatContext* made = nullptr;
        const AVCodec* wma = avcodec_find_encoder(AV_CODEC_ID_WMAV2);
        if (!wma || avformat_alloc_output_context2(&made, nullptr, "asf", nullptr) < 0) {
            return EncoderError::InvalidFormat;
        }
        container.reset(made);
        codec.reset(avcodec_alloc_context3(wma));
        frame.reset(av_frame_alloc());
        packet.reset(av_packet_alloc());
        codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
        codec->sample_rate = static_cast<int>(format.rate);
        av_channel_layout_default(&codec->ch_layout, static_cast<int>(format.channels));
        codec->bit_rate = bitrate;
        codec->time_base = {1, static_cast<int>(format.rate)};
        codec->thread_count = 1;
        codec->flags |= AV_CODEC_FLAG_BITEXACT;
        if (container->oformat->flags & AVFMT_GLOBALHEADER) {
            codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        container->flags |= AVFMT_FLAG_BITEXACT;
        if (avcodec_open2(codec.get(), wma, nullptr) < 0) {
            return EncoderError::InvalidFormat;
        }
        stream = avformat_new_stream(container.get(), nullptr);
        if (!stream || avcodec_parameters_from_context(stream->codecpar, codec.get()) < 0) {
            return EncoderError::InvalidFormat;
        }
        stream->time_base = codec->time_base;
        frame->format = codec->sample_fmt;
        frame->nb_samples = codec->frame_size;
        frame->sample_rate = codec->sample_rate;
        av_channel_layout_copy(&frame->ch_layout, &codec->ch_layout);
        return av_frame_get_buffer(frame.get(), 0) < 0 ? EncoderError::InvalidFormat : EncoderError::None;
    }

    EncoderError OpenFile(const std::string& file)
    {
        if (avio_open(&container->pb, file.c_str(), AVIO_FLAG_WRITE) < 0) {
            return EncoderError::CannotCreate;
        }
        // Eight blocks to a packet; the muxer's own size leaves most of the file empty.
        AVDictionary* options = nullptr;
        av_dict_set_int(&options, "packet_size", 8 * (codec->block_align + 17) + 30, 0);
        SetLengthTag(container.get(), 0);
        const int result = avformat_write_header(container.get(), &options);
        av_dict_free(&options);
        return result < 0 ? EncoderError::CannotCreate : EncoderError::None;
    }
};

std::unique_ptr<FileEncoder> WmaEncoder::Open(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                              EncoderError& error)
{
    av_log_set_level(AV_LOG_QUIET);
    auto streams = std::make_unique<Streams>();
    error = streams->OpenCodec(format, bitrate);
    if (error == EncoderError::None) {
        error = streams->OpenFile(file);
    }
    if (error != EncoderError::None) {
        return nullptr;
    }
    return std::make_unique<WmaEncoder>(std::move(streams), format);
}

WmaEncoder::WmaEncoder(std::unique_ptr<Streams> streams, AudioFormat format)
    : FileEncoder(format)
    , m_streams(std::move(streams))
{
    SendSilence();
}

WmaEncoder::~WmaEncoder() = default;

bool WmaEncoder::Encode(std::span<const std::int16_t> interleaved)
{
    m_sourceFrames += static_cast<std::int64_t>(interleaved.size() / Format().channels);
    m_waiting.insert(m_waiting.end(), interleaved.begin(), interleaved.end());
    const auto blockFrames = static_cast<std::size_t>(m_streams->codec->frame_size);
    while (m_waiting.size() >= blockFrames * Format().channels) {
        if (!SendBlock(blockFrames)) {
            return false;
        }
    }
    return true;
}

bool WmaEncoder::Close()
{
    bool complete = m_waiting.empty() || SendBlock(m_waiting.size() / Format().channels);
    complete = SendSilence() && complete;
    complete = avcodec_send_frame(m_streams->codec.get(), nullptr) >= 0 && TakePackets() && complete;
    AVFormatContext* container = m_streams->container.get();
    SetLengthTag(container, m_sourceFrames);
    complete = av_write_trailer(container) >= 0 && complete;
    avio_flush(container->pb);
    complete = container->pb->error >= 0 && complete;
    return avio_closep(&container->pb) >= 0 && complete;
}

bool WmaEncoder::SendSilence()
{
    const auto frames = static_cast<std::size_t>(m_streams->codec->frame_size);
    m_waiting.assign(frames * Format().channels, 0);
    return SendBlock(frames);
}

bool WmaEncoder::SendBlock(std::size_t frames)
{
    AVFrame* frame = m_streams->frame.get();
    if (av_frame_make_writable(frame) < 0) {
        return false;
    }
    const std::size_t channels = Format().channels;
    frame->nb_samples = static_cast<int>(frames);
    for (std::size_t side = 0; side < channels; ++side) {
        auto* out = reinterpret_cast<float*>(frame->extended_data[side]);
        for (std::size_t i = 0; i < frames; ++i) {
            out[i] = static_cast<float>(m_waiting[i * channels + side]) / 32768.0F;
        }
    }
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(frames * channels));
    frame->pts = m_sent;
    m_sent += static_cast<std::int64_t>(frames);
    return avcodec_send_frame(m_streams->codec.get(), frame) >= 0 && TakePackets();
}

bool WmaEncoder::TakePackets()
{
    AVPacket* packet = m_streams->packet.get();
    AVFormatContext* container = m_streams->container.get();
    while (true) {
        const int result = avcodec_receive_packet(m_streams->codec.get(), packet);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return container->pb->error >= 0;
        }
        if (result < 0) {
            return false;
        }
        av_packet_rescale_ts(packet, m_streams->codec->time_base, m_streams->stream->time_base);
        packet->stream_index = m_streams->stream->index;
        if (av_write_frame(container, packet) < 0) {
            return false;
        }
        av_packet_unref(packet);
    }
}

} // namespace velmora::soundlayer
