#include "soundlayer/internal/WmaEncoder.h"

#include "soundlayer/internal/AvHandles.h"

#include <algorithm>
#include <cstdio>
#include <utility>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
}

namespace velmora::soundlayer {

namespace {

/// Closes the file, which the deleter of what is read does not.
struct ContainerDeleter {
    void operator()(AVFormatContext* container) const
    {
        avio_closep(&container->pb);
        avformat_free_context(container);
    }
};

} // namespace

struct WmaEncoder::Streams {
    bool OpenCodec(AudioFormat format, std::uint32_t bitrate);
    bool OpenFile(const std::string& file);
    void NoteSourceSamples();
    /// Fills the frame up with silence.
    bool PadAndSend();
    bool SendFrame();
    bool Send(const AVFrame* toSend);
    bool DiskTookAll() const { return container->pb->error == 0; }

    std::unique_ptr<AVFormatContext, ContainerDeleter> container;
    DecoderPtr codec;
    FramePtr frame;
    PacketPtr packet;
    int filled = 0; // frames of sound that wait in `frame`
    std::int64_t sourceFrames = 0;
    std::int64_t position = 0; // of `frame`, silence counted
};

bool WmaEncoder::Streams::OpenCodec(AudioFormat format, std::uint32_t bitrate)
{
    const AVCodec* wma = avcodec_find_encoder(AV_CODEC_ID_WMAV2);
    codec.reset(avcodec_alloc_context3(wma));
    frame.reset(av_frame_alloc());
    packet.reset(av_packet_alloc());
    if (!wma || !codec || !frame || !packet) {
        return false;
    }
    codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
    codec->sample_rate = static_cast<int>(format.rate);
    codec->time_base = {1, codec->sample_rate};
    codec->bit_rate = bitrate;
    codec->flags |= AV_CODEC_FLAG_BITEXACT;
    codec->thread_count = 1;
    av_channel_layout_default(&codec->ch_layout, static_cast<int>(format.channels));
    if (avcodec_open2(codec.get(), wma, nullptr) < 0) {
        return false;
    }
    frame->format = codec->sample_fmt;
    frame->sample_rate = codec->sample_rate;
    frame->nb_samples = codec->frame_size;
    return av_channel_layout_copy(&frame->ch_layout, &codec->ch_layout) >= 0 &&
           av_frame_get_buffer(frame.get(), 0) >= 0;
}

bool WmaEncoder::Streams::OpenFile(const std::string& file)
{
    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, nullptr, "asf", nullptr) < 0) {
        return false;
    }
    container.reset(made);
    // No name of the library, no date: nothing that differs from run to run.
    container->flags |= AVFMT_FLAG_BITEXACT;
    AVStream* stream = avformat_new_stream(made, nullptr);
    // With the scheme in front, a colon in the name is no scheme.
    if (!stream || avcodec_parameters_from_context(stream->codecpar, codec.get()) < 0 ||
        avio_open(&made->pb, ("file:" + file).c_str(), AVIO_FLAG_WRITE) < 0) {
        return false;
    }
    stream->time_base = codec->time_base;
    NoteSourceSamples();
    // Eight frames fill a packet with its headers; the default packet is mostly padding.
    AVDictionary* options = nullptr;
    av_dict_set_int(&options, "packet_size", 8 * (codec->block_align + 17) + 30, 0);
    const bool written = avformat_write_header(made, &options) >= 0;
    av_dict_free(&options);
    avio_flush(made->pb);
    return written && DiskTookAll();
}

void WmaEncoder::Streams::NoteSourceSamples()
{
    char digits[24];
    std::snprintf(digits, sizeof(digits), "%012lld", static_cast<long long>(sourceFrames));
    av_dict_set(&container->metadata, "SourceSamples", digits, 0);
}

bool WmaEncoder::Streams::PadAndSend()
{
    if (av_frame_make_writable(frame.get()) < 0) {
        return false;
    }
    for (int channel = 0; channel < codec->ch_layout.nb_channels; ++channel) {
        float* plane = reinterpret_cast<float*>(frame->extended_data[channel]);
        std::fill(plane + filled, plane + codec->frame_size, 0.0f);
    }
    return SendFrame();
}

bool WmaEncoder::Streams::SendFrame()
{
    frame->pts = position;
    position += codec->frame_size;
    filled = 0;
    return Send(frame.get());
}

bool WmaEncoder::Streams::Send(const AVFrame* toSend)
{
    if (avcodec_send_frame(codec.get(), toSend) < 0) {
        return false;
    }
    while (true) {
        const int received = avcodec_receive_packet(codec.get(), packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) {
            return DiskTookAll();
        }
        if (received < 0) {
            return false;
        }
        packet->stream_index = 0;
        av_packet_rescale_ts(packet.get(), codec->time_base, container->streams[0]->time_base);
        const bool written = av_write_frame(container.get(), packet.get()) >= 0;
        av_packet_unref(packet.get());
        if (!written) {
            return false;
        }
    }
}

std::unique_ptr<FileEncoder> WmaEncoder::Open(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                              EncoderError& error)
{
    av_log_set_level(AV_LOG_QUIET);
    auto streams = std::make_unique<Streams>();
    if (!streams->OpenCodec(format, bitrate)) {
        error = EncoderError::InvalidFormat;
        return nullptr;
    }
    if (!streams->OpenFile(file) || !streams->PadAndSend()) {
        error = EncoderError::CannotCreate;
        return nullptr;
    }
    error = EncoderError::None;
    return std::unique_ptr<FileEncoder>(new WmaEncoder(std::move(streams), format));
}

WmaEncoder::WmaEncoder(std::unique_ptr<Streams> streams, AudioFormat format)
    : FileEncoder(format)
    , m_streams(std::move(streams))
{
}

WmaEncoder::~WmaEncoder() = default;

bool WmaEncoder::Encode(std::span<const std::int16_t> interleaved)
{
    Streams& streams = *m_streams;
    const std::size_t channels = Format().channels;
    while (interleaved.size() >= channels) {
        const auto room = static_cast<std::size_t>(streams.codec->frame_size - streams.filled);
        const std::size_t frames = std::min(room, interleaved.size() / channels);
        if (av_frame_make_writable(streams.frame.get()) < 0) {
            return false;
        }
        for (std::size_t channel = 0; channel < channels; ++channel) {
            float* plane = reinterpret_cast<float*>(streams.frame->extended_data[channel]) + streams.filled;
            for (std::size_t i = 0; i < frames; ++i) {
                plane[i] = static_cast<float>(interleaved[i * channels + channel]) * (1.0f / 32768.0f);
            }
        }
        streams.filled += static_cast<int>(frames);
        streams.sourceFrames += static_cast<std::int64_t>(frames);
        interleaved = interleaved.subspan(frames * channels);
        if (streams.filled == streams.codec->frame_size && !streams.SendFrame()) {
            return false;
        }
    }
    return true;
}

bool WmaEncoder::Close()
{
    const auto streams = std::exchange(m_streams, nullptr);
    bool whole = streams->DiskTookAll() && (streams->filled == 0 || streams->PadAndSend()) && streams->PadAndSend() &&
                 streams->Send(nullptr);
    if (whole) {
        // The trailer writes the header once more, now with the true count in the same place.
        streams->NoteSourceSamples();
        whole = av_write_trailer(streams->container.get()) >= 0;
        avio_flush(streams->container->pb);
        whole = whole && streams->DiskTookAll();
    }
    return avio_closep(&streams->container->pb) >= 0 && whole;
}

} // namespace velmora::soundlayer
