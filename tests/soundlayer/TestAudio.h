#pragma once

#include "soundlayer/internal/AudioFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Sound files for tests: signals, WAV files written by hand, and other formats made by the command line tool ffmpeg.
namespace velmora::soundlayer::testing {

using Samples = std::vector<std::int16_t>;

/// Interleaved chords under noise that comes and goes; no second is like another, and the sides differ.
Samples Music(std::uint32_t rate, std::uint32_t channels, std::size_t frames);

void WriteFile(const std::filesystem::path& path, std::string_view bytes);
std::string ReadFile(const std::filesystem::path& path);

/// The bytes of `value`, lowest first.
std::string Little(std::uint64_t value, std::size_t bytes);
/// One chunk of a WAV file, padded to an even size.
std::string Chunk(std::string_view tag, std::string_view body);
/// The body of a format chunk.
std::string WavFormat(std::uint32_t tag, std::uint32_t channels, std::uint32_t rate, std::uint32_t bits);
std::string Bytes(const Samples& samples);
/// A whole file of 16-bit samples.
std::string Wav(const Samples& samples, std::uint32_t rate, std::uint32_t channels);

/// Encodes by ffmpeg with `options`; the ending of `to` decides on the format.
void Encode(const std::filesystem::path& from, const std::string& options, const std::filesystem::path& to);

/// Fails the test and throws if the file does not open.
std::unique_ptr<AudioFile> OpenOrThrow(const std::filesystem::path& path);
/// All frames, read in pieces of odd sizes.
Samples ReadAll(AudioFile& file);
Samples ReadAll(const std::filesystem::path& path);
/// `frames` frames from `frame` on.
Samples ReadAt(AudioFile& file, std::int64_t frame, std::size_t frames);
/// Frames [`frame`, `frame` + `frames`) of `samples`, fewer at the end.
Samples Cut(const Samples& samples, std::uint32_t channels, std::int64_t frame, std::size_t frames);

/// By how many frames `late` lags behind `source` where they match best, within `most` either way. First channel only.
int LagOf(const Samples& late, const Samples& source, std::uint32_t channels, int most);
/// The level of `samples` against that of its difference from `other`, in dB.
double SignalToNoise(const Samples& samples, const Samples& other);

} // namespace velmora::soundlayer::testing
