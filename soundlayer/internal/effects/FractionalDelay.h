#pragma once

#include "soundlayer/internal/effects/GrainEffect.h"
#include "soundlayer/internal/effects/Quad.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// The last frames of one side, heard at any time between two of them.
///
/// Between frames Lagrange's polynomial through the eight around is taken: it never amplifies, so that what is fed back
/// stays bounded, and at 44.1 kHz loses 0.4 dB of 12 kHz at the worst (T. Laakso et al., "Splitting the Unit Delay",
/// 1996). Where the newest of the eight have not come yet, fewer are taken; all agree at whole frames, so nothing jumps
/// there. What is too quiet to be heard is kept as zero. All but the making is [RT].
class FractionalDelay {
public:
    /// For delays up to `longest` frames.
    explicit FractionalDelay(double longest);

    /// The next frame.
    void Write(float frame)
    {
        frame = ZeroIfQuiet(frame);
        m_silentFrames = frame == 0.0F ? m_silentFrames + 1 : 0;
        m_newest = (m_newest + 1) & m_mask;
        m_frames[m_newest] = frame;
        if (m_newest < kTaps) {
            // Behind the end the start stands once more, so that no eight are cut.
            m_frames[m_newest + m_mask + 1] = frame;
        }
    }
    /// What came `delay` frames before the newest.
    float Read(float delay) const
    {
        const auto whole = static_cast<std::int32_t>(delay);
        const float place = (delay - static_cast<float>(whole)) * kPlaces;
        const auto row = static_cast<std::int32_t>(place);
        const float* weights =
            m_weights[static_cast<std::size_t>(std::min(whole, kTaps / 2 - 1))][static_cast<std::size_t>(row)].data();
        const float* oldest = m_frames.data() + ((m_newest - static_cast<std::uint32_t>(whole + kTaps / 2)) & m_mask);
        // Between two rows of the table the weights lie on straight lines, which is exact to -94 dB.
        const Quad share = (place - static_cast<float>(row)) + Quad{};
        const Quad first = LoadQuad(weights) + share * (LoadQuad(weights + kTaps) - LoadQuad(weights));
        const Quad second = LoadQuad(weights + 4) + share * (LoadQuad(weights + kTaps + 4) - LoadQuad(weights + 4));
        const Quad sum = first * LoadQuad(oldest) + second * LoadQuad(oldest + 4);
        return (sum[0] + sum[2]) + (sum[1] + sum[3]);
    }
    /// Nothing but zeros is kept.
    bool Silent() const { return m_silentFrames > m_mask; }

private:
    static constexpr std::int32_t kTaps = 8;
    /// Places between two frames.
    static constexpr std::int32_t kPlaces = 256;

    using Row = std::array<float, kTaps>;
    /// Weights of the frames from the oldest on, for delays of 0, 1, 2, and 3 or more whole frames.
    using Weights = std::array<std::array<Row, kPlaces + 1>, kTaps / 2>;

    static Weights MakeWeights();
    static const Weights& SharedWeights();

    const Weights& m_weights;
    const std::uint32_t m_mask;
    std::uint32_t m_newest = 0;
    std::size_t m_silentFrames;
    std::vector<float> m_frames;
};

} // namespace velmora::soundlayer
