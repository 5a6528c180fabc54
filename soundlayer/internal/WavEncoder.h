#pragma once

#include "soundlayer/internal/FileEncoder.h"

#include <vector>

struct sf_private_tag;

namespace velmora::soundlayer {

/// A 16-bit PCM file. The header is brought up to date with every write.
class WavEncoder final : public FileEncoder {
public:
    static std::unique_ptr<FileEncoder> Open(const std::string& file, AudioFormat format, EncoderError& error);
    WavEncoder(sf_private_tag* file, AudioFormat format);
    ~WavEncoder() override;

protected:
    bool Encode(std::span<const std::int16_t> interleaved) override;
    bool Close() override;

private:
    sf_private_tag* m_file;
};

} // namespace velmora::soundlayer
