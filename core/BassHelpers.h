#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Small wrappers over the sound layer, for paths in the internal form.
namespace velmora::core {

/// Opens a file as a stream, as a plain file first, then as WMA; 0 when neither reads it.
std::uint32_t BassOpenAudioFile(std::string_view path, std::uint32_t flags);

/// Sets up to three attributes at once: `freq` above -1 in Hz, `volume` above -1 as 0..100, `pan` above -101 as
/// -100..100. The markers -1, -1 and -101 leave a value alone.
void BassSetAttributes(std::uint32_t handle, std::int32_t freq, std::int32_t volume, std::int32_t pan);

/// Length of an audio file in ms, rounded. A file that does not open gives 0 and sets `failed`.
std::int32_t GetAudioFileLengthMS(std::string_view Path, bool* failed = nullptr);

} // namespace velmora::core
