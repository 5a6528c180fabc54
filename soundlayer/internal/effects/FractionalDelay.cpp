#include "soundlayer/internal/effects/FractionalDelay.h"

#include <bit>
#include <cmath>

namespace velmora::soundlayer {

FractionalDelay::FractionalDelay(double longest)
    : m_weights(SharedWeights())
    , m_mask(std::bit_ceil(static_cast<std::uint32_t>(std::ceil(longest)) + kTaps) - 1)
    , m_silentFrames(std::size_t{m_mask} + 1)
    , m_frames(m_mask + 1 + kTaps)
{
}

const FractionalDelay::Weights& FractionalDelay::SharedWeights()
{
    static const Weights weights = MakeWeights();
    return weights;
}

FractionalDelay::Weights FractionalDelay::MakeWeights()
{
    Weights weights{};
    for (std::size_t whole = 0; whole < std::size_t{kTaps} / 2; ++whole) {
        // As many frames on either side of the place; those on the newer one have come.
        const auto half = static_cast<int>(whole) + 1;
        for (std::size_t place = 0; place <= std::size_t{kPlaces}; ++place) {
            const double delay = static_cast<double>(place) / kPlaces;
            for (int tap = 1 - half; tap <= half; ++tap) {
                double weight = 1.0;
                for (int other = 1 - half; other <= half; ++other) {
                    weight *= other == tap ? 1.0 : (delay - other) / (tap - other);
                }
                weights[whole][place][static_cast<std::size_t>(kTaps / 2 - tap)] = static_cast<float>(weight);
            }
        }
    }
    return weights;
}

} // namespace velmora::soundlayer
