#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace velmora::soundlayer {

/// Rates that are taken; a header that tells another lies.
constexpr bool IsRate(std::int64_t rate)
{
    return rate >= 1000 && rate <= 768'000;
}

enum class OpenResult { Ok, CannotRead, NoSound };

/// An audio file as 16-bit interleaved samples, exact to the sample in length and position for every format that is
/// decoded: a frame reads the same wherever reading began. Only noise that a format leaves to the decoder to make up
/// (AAC's noise bands, WMA of low rates) is other noise after a seek.
///
/// Files with more than 2 channels are mixed down to 2. Damage inside a file becomes silence of its length. One thread
/// at a time. Opening a format without exact timestamps walks its packets once; that index is kept for all openings of
/// the same file (path, size, modification time).
class AudioFile {
public:
    /// Opens a file by its name in the system's form; null with the reason in `result`.
    static std::unique_ptr<AudioFile> Open(const std::string& file, OpenResult& result);
    virtual ~AudioFile() = default;

    virtual std::uint32_t Rate() const = 0;
    /// 1 or 2.
    virtual std::uint32_t Channels() const = 0;
    virtual std::int64_t LengthFrames() const = 0;
    /// A container of Windows media audio.
    virtual bool IsWma() const = 0;
    /// The next read begins at `frame`, limited to 0..length.
    virtual void Seek(std::int64_t frame) = 0;
    /// Fills `interleaved` and returns the frames written, fewer only at the end of the file.
    virtual std::size_t Read(std::span<std::int16_t> interleaved) = 0;
};

} // namespace velmora::soundlayer
