#pragma once

#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velmora::soundlayer {

/// What the fields of a BASS_DX8 block may be, and are in a new effect. Bit n of `wholeFields` tells that field n is an
/// integer; all others are 32-bit floats.
template <typename Block>
struct BlockLimits {
    Block low;
    Block high;
    Block initial;
    std::uint32_t wholeFields = 0;
};

template <typename Block>
inline constexpr BlockLimits<Block> kBlockLimits{};

template <>
inline constexpr BlockLimits<BASS_DX8_CHORUS> kBlockLimits<BASS_DX8_CHORUS>{
    {0, 0, -99, 0, 0, 0, 0}, {100, 100, 99, 10, 1, 20, 4}, {50, 25, 0, 0, 0, 0, 3}, 0b1010000};
template <>
inline constexpr BlockLimits<BASS_DX8_COMPRESSOR> kBlockLimits<BASS_DX8_COMPRESSOR>{
    {-60, 0.01F, 50, -60, 1, 0}, {60, 500, 3000, 0, 100, 4}, {0, 0.2F, 50, -10, 10, 0}};
template <>
inline constexpr BlockLimits<BASS_DX8_DISTORTION> kBlockLimits<BASS_DX8_DISTORTION>{
    {-60, 0, 100, 100, 100}, {0, 100, 8000, 4000, 8000}, {0, 50, 4000, 100, 4000}};
// Any number but 0 swaps the sides.
template <>
inline constexpr BlockLimits<BASS_DX8_ECHO> kBlockLimits<BASS_DX8_ECHO>{
    {0, 0, 1, 1, INT32_MIN}, {100, 100, 2000, 2000, INT32_MAX}, {50, 0, 350, 350, 0}, 0b10000};
template <>
inline constexpr BlockLimits<BASS_DX8_FLANGER> kBlockLimits<BASS_DX8_FLANGER>{
    {0, 0, -99, 0, 0, 0, 0}, {100, 100, 99, 10, 1, 4, 4}, {50, 25, 0, 0, 0, 0, 2}, 0b1010000};
template <>
inline constexpr BlockLimits<BASS_DX8_PARAMEQ> kBlockLimits<BASS_DX8_PARAMEQ>{
    {80, 1, -15}, {16000, 36, 15}, {1000, 12, 3}};
template <>
inline constexpr BlockLimits<BASS_DX8_REVERB> kBlockLimits<BASS_DX8_REVERB>{
    {-96, -96, 1, 0.001F}, {0, 0, 3000, 0.999F}, {0, -10, 1000, 0.001F}};

/// The block at `block`, each field within its limits; a float that is no number becomes what it is in a new effect.
template <typename Block>
Block LimitedBlock(const void* block)
{
    using Fields = std::array<std::uint32_t, sizeof(Block) / 4>;
    static_assert(sizeof(Fields) == sizeof(Block));
    constexpr BlockLimits<Block> kLimits = kBlockLimits<Block>;
    constexpr auto kLow = std::bit_cast<Fields>(kLimits.low);
    constexpr auto kHigh = std::bit_cast<Fields>(kLimits.high);
    constexpr auto kInitial = std::bit_cast<Fields>(kLimits.initial);
    Fields fields;
    std::memcpy(fields.data(), block, sizeof fields);
    const auto limited = [&]<typename T>(std::size_t i, T) {
        return std::bit_cast<std::uint32_t>(
            std::clamp(std::bit_cast<T>(fields[i]), std::bit_cast<T>(kLow[i]), std::bit_cast<T>(kHigh[i])));
    };
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if ((kLimits.wholeFields >> i & 1U) != 0) {
            fields[i] = limited(i, std::int32_t{});
        } else if (std::isnan(std::bit_cast<float>(fields[i]))) {
            fields[i] = kInitial[i];
        } else {
            fields[i] = limited(i, float{});
        }
    }
    return std::bit_cast<Block>(fields);
}

} // namespace velmora::soundlayer
