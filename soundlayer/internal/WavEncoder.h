#pragma once

#include "soundlayer/internal/FileEncoder.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace velmora::soundlayer {

/// A WAV file of 16 bits whose header on disk is true after every write, so that a process that dies loses nothing
/// that a write had returned for.
///
/// The header keeps room for the 64-bit sizes of RF64, as an ignored chunk until they are needed. It is written here
/// and not by a library, because an RF64 of libsndfile has the extensible format tag also where it ends as plain WAV,
/// which simple readers refuse.
class WavEncoder final : public FileEncoder {
public:
    static constexpr std::size_t kHeaderBytes = 80;
    using Header = std::array<unsigned char, kHeaderBytes>;

    /// Null with `CannotCreate` when the file cannot be created or its header not be written, with `InvalidFormat` for
    /// one that the converter does not give.
    static std::unique_ptr<FileEncoder> Open(const std::string& file, AudioFormat format, EncoderError& error);
    /// What stands before `dataBytes` of samples: WAV with format tag 1, beyond 4 GiB in all RF64.
    static Header HeaderFor(AudioFormat format, std::uint64_t dataBytes);

    ~WavEncoder() override;

protected:
    bool Encode(std::span<const std::int16_t> interleaved) override;
    bool Close() override;

private:
    WavEncoder(int file, AudioFormat format);
    bool WriteAt(std::uint64_t position, const void* bytes, std::size_t count);

    int m_file; // -1 once closed
    std::uint64_t m_dataBytes = 0;
};

} // namespace velmora::soundlayer
