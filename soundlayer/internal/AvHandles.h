#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace velmora::soundlayer {

/// Owners of the decoding library's objects.
struct AvDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVBufferRef* buffer) const { av_buffer_unref(&buffer); }
    void operator()(AVIOContext* io) const
    {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

using PacketPtr = std::unique_ptr<AVPacket, AvDeleter>;
using FramePtr = std::unique_ptr<AVFrame, AvDeleter>;
using DecoderPtr = std::unique_ptr<AVCodecContext, AvDeleter>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, AvDeleter>;
using FormatPtr = std::unique_ptr<AVFormatContext, AvDeleter>;
using BufferPtr = std::unique_ptr<AVBufferRef, AvDeleter>;
using IoPtr = std::unique_ptr<AVIOContext, AvDeleter>;

} // namespace velmora::soundlayer
