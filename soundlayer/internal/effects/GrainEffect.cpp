#include "soundlayer/internal/effects/GrainEffect.h"

namespace velmora::soundlayer {

void GrainEffect::Process(float* left, float* right, std::size_t frames)
{
    GrainEffect* const self = this;
    ByGrains({&self, 1}, frames,
             [&](std::size_t done, std::size_t now, std::size_t at) { Run(left + done, right + done, now, at); });
}

void GrainEffect::Skip(std::size_t frames)
{
    if (Still()) {
        PassGrains((m_position + frames) / kGrain);
        m_position = (m_position + frames) % kGrain;
        return;
    }
    GrainEffect* const self = this;
    ByGrains({&self, 1}, frames, [](std::size_t, std::size_t, std::size_t) {});
}

} // namespace velmora::soundlayer
