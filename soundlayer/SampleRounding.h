#pragma once

#include <bit>
#include <cstdint>

namespace velmora::soundlayer {

/// The nearest 16-bit sample of a finite value (halves to the even one), limited to the range. Loops over it become
/// vector code. [RT]
inline std::int16_t RoundSample(float value)
{
    // Adding 1.5 x 2^23 leaves no bits for a fraction, so the addition itself rounds, and the whole number stands in
    // the low bits. The compiler vectorises this, and not lrintf with its 64-bit result.
    constexpr float kShift = 12582912.0F;
    const float low = value < -32768.0F ? -32768.0F : value;
    const float limited = low > 32767.0F ? 32767.0F : low;
    return static_cast<std::int16_t>(std::bit_cast<std::int32_t>(limited + kShift) -
                                     std::bit_cast<std::int32_t>(kShift));
}

} // namespace velmora::soundlayer
