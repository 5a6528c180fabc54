#pragma once

#include "core/Files.h"
#include "soundlayer/soundlayer.h"

#include <cstdint>
#include <functional>
#include <string>

/// What all files have in common that an encoder makes.
namespace velmora::audio {

/// What is said of an encoder that did not start, by its code, with a blank in front; "" for other codes.
std::string EncoderErrorSuffix(std::int32_t code);

/// The format block of a file of 16-bit samples.
WAVEFORMATEX WaveFormat(std::int32_t rate, std::int32_t channels);

/// `stem` + `ending`, or the first with a number between the two that is not `taken`.
std::string FreeName(const std::string& stem, const std::string& ending,
                     const std::function<bool(const std::string& name)>& taken);
/// The same with a name that no file has.
std::string FreeName(const core::Files& files, const std::string& stem, const std::string& ending);

} // namespace velmora::audio
