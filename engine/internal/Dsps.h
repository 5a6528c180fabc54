#pragma once

#include "engine/internal/LevelStore.h"
#include "soundlayer/soundlayer.h"

#include <cstdint>
#include <span>

/// The work of the DSPs on one block of interleaved stereo samples. All are [RT].
namespace velmora::engine {

/// A user value of 1.0.
inline constexpr std::int32_t kUnitGain = 10000;

/// Each sample x (`user` / 10000), the quotient as a 32-bit float; the nearest 16-bit sample, halves to the even one,
/// limited to the range.
void ApplyGain(std::span<std::int16_t> samples, std::int32_t user);

/// Takes the middle of the stereo image away. With a = `user` / 10000 and d = left - right, each side becomes
/// (1 - a) x side + a x d: untouched at 0, the difference on both sides at 1. Rounded and limited as a gain.
void RemoveVocals(std::span<std::int16_t> interleaved, std::int32_t user);

/// The procedures to be set on streams; the user values are told at the library's entry points.
DSPPROC GainDsp;
DSPPROC LevelDsp;
DSPPROC RemoveVocalsDsp;
DSPPROC EncoderFeedDsp;
/// Fills a block with what the record channel `user` has; nothing is not the end.
STREAMPROC RecordStream;

/// Where `LevelDsp` keeps its levels.
LevelStore& Levels();

} // namespace velmora::engine
