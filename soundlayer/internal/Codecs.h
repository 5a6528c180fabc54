#pragma once

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/FileEncoder.h"

#include <cstdint>
#include <memory>
#include <string>

namespace velmora::soundlayer {

class FileBytes;

/// The formats other than WAV. What decodes and codes them brings a hundred libraries, so it stands in a library of its
/// own: a program starts without it, and plain files never need it.
struct Codecs {
    /// Null if there is no sound that can be decoded.
    std::unique_ptr<AudioFile> (*openFile)(std::shared_ptr<const FileBytes> file);
    /// As `WmaEncoder::Open`.
    std::unique_ptr<FileEncoder> (*openWma)(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                            EncoderError& error);
};

/// The codecs; null where their library is missing. The first call loads it, which takes some 50 ms. Any thread.
const Codecs* GetCodecs();

/// The name under which the library gives its `GetCodecs`.
inline constexpr char kCodecsEntry[] = "velmora_GetCodecs";

} // namespace velmora::soundlayer
