#pragma once

#include "soundlayer/internal/effects/BlockLine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// Turns each impulse of one side into a short dense rush of the same power and colour: allpass filters in a row
/// (M. R. Schroeder, "Natural Sounding Artificial Reverberation", 1962). All but the making is [RT].
class Diffuser {
public:
    static constexpr std::size_t kStages = 4;

    /// `delays` in ms.
    Diffuser(std::uint32_t rate, const std::array<double, kStages>& delays);

    /// From where it is now, each stage goes to falling by 60 dB within `seconds`, or sooner where that would ring.
    void SetTime(double seconds);
    /// A block of `BlockLine::kBlock` frames in place. Before it the stages have gone `way` (0..1), and with each frame
    /// they go `step` further.
    void Process(float* block, float way, float step);
    void Clear();
    /// The frames of all stages together.
    std::size_t Length() const;

private:
    struct Stage {
        explicit Stage(std::size_t frames)
            : delay(frames)
            , line(frames)
        {
        }
        std::size_t delay;
        float from = 0.0F;
        float to = 0.0F;
        BlockLine line;
    };

    const double m_rate;
    std::vector<Stage> m_stages;
};

} // namespace velmora::soundlayer
