#pragma once

#include "soundlayer/internal/FileEncoder.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace velmora::soundlayer {

/// A WMA file that lines up with what it was made of: a frame of silence stands before the sound, as the codec gives
/// its first frame only half, another one behind it keeps the tail whole, and the tag `SourceSamples` (twelve digits)
/// holds the true count of frames.
///
/// The same input gives the same bytes on every run.
class WmaEncoder final : public FileEncoder {
public:
    /// `bitrate` in bit/s. Null with `CannotCreate` for the file or `InvalidFormat` for what the codec refuses.
    static std::unique_ptr<FileEncoder> Open(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                             EncoderError& error);
    ~WmaEncoder() override;

protected:
    bool Encode(std::span<const std::int16_t> interleaved) override;
    bool Close() override;

private:
    struct Streams;
    WmaEncoder(std::unique_ptr<Streams> streams, AudioFormat format);

    std::unique_ptr<Streams> m_streams; // null once closed
};

} // namespace velmora::soundlayer
