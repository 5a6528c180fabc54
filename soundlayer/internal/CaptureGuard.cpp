#include "soundlayer/internal/CaptureGuard.h"

#include <limits>

namespace velmora::soundlayer {

void CaptureGuard::Look(std::span<const std::int16_t> stereo)
{
    constexpr int kRun = 3;
    constexpr auto kLow = std::numeric_limits<std::int16_t>::min();
    constexpr auto kHigh = std::numeric_limits<std::int16_t>::max();
    for (std::size_t i = 0; i + 1 < stereo.size(); i += 2) {
        const bool zero = stereo[i] == 0 && stereo[i + 1] == 0;
        m_zeros = zero ? m_zeros + 1 : 0;
        ++m_sinceClip;
        for (std::size_t side = 0; side < 2; ++side) {
            const std::int16_t sample = stereo[i + side];
            m_atLimit[side] = sample == kLow || sample == kHigh ? m_atLimit[side] + 1 : 0;
            if (m_atLimit[side] >= kRun) {
                m_sinceClip = 0;
            }
        }
    }
}

} // namespace velmora::soundlayer
