#pragma once

#include "soundlayer/internal/FileEncoder.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace velmora::soundlayer {

/// A Windows media audio file. It comes back sample for sample in place: the tag `SourceSamples` tells a reader how
/// many frames were written, and one block of silence before and behind them takes what the codec loses at its ends.
class WmaEncoder final : public FileEncoder {
public:
    static std::unique_ptr<FileEncoder> Open(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                             EncoderError& error);
    struct Streams;
    WmaEncoder(std::unique_ptr<Streams> streams, AudioFormat format);
    ~WmaEncoder() override;

protected:
    bool Encode(std::span<const std::int16_t> interleaved) override;
    bool Close() override;

private:
    bool SendSilence();
    /// Sends the first `frames` frames of what waits.
    bool SendBlock(std::size_t frames);
    /// Moves finished packets to the file.
    bool TakePackets();

    std::unique_ptr<Streams> m_streams;
    std::vector<std::int16_t> m_waiting;
    std::int64_t m_sent = 0;
    std::int64_t m_sourceFrames = 0;
};

} // namespace velmora::soundlayer
