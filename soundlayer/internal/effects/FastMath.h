#pragma once

#include <bit>
#include <cstdint>

namespace velmora::soundlayer {

/// Logarithm to the base 2 of a positive, normal number, to 4e-6. Loops over it become vector code. [RT]
///
/// The exponent is taken from the number's bits; for a mantissa m within sqrt(1/2)..sqrt(2), the series of
/// 2 artanh((m - 1) / (m + 1)).
inline float FastLog2(float value)
{
    const auto bits = std::bit_cast<std::int32_t>(value);
    // Bits of sqrt(1/2): what lies above belongs to the next exponent.
    const std::int32_t exponent = (bits - 0x3F3504F3) >> 23;
    const auto mantissa = std::bit_cast<float>(bits - (exponent << 23));
    const float t = (mantissa - 1.0F) / (mantissa + 1.0F);
    const float t2 = t * t;
    constexpr float kScale = 2.88539008F; // 2 / ln 2
    return static_cast<float>(exponent) +
           kScale * t * (1.0F + t2 * (1.0F / 3.0F + t2 * (1.0F / 5.0F + t2 * (1.0F / 7.0F))));
}

/// 2 to the power of a number within -126..126, to 1e-6 of it. Loops over it become vector code. [RT]
///
/// The whole part goes into the exponent's bits; for the rest within -1/2..1/2, the series of exp(x ln 2).
inline float FastExp2(float value)
{
    // Adding 1.5 x 2^23 leaves no bits for a fraction.
    constexpr float kShift = 12582912.0F;
    const float shifted = value + kShift;
    const float x = (value - (shifted - kShift)) * 0.693147181F;
    const std::int32_t exponent = std::bit_cast<std::int32_t>(shifted) - std::bit_cast<std::int32_t>(kShift);
    const float power =
        1.0F + x * (1.0F + x * (1.0F / 2 + x * (1.0F / 6 + x * (1.0F / 24 + x * (1.0F / 120 + x * (1.0F / 720))))));
    return power * std::bit_cast<float>((exponent + 127) << 23);
}

} // namespace velmora::soundlayer
