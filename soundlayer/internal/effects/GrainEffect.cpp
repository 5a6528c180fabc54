#include "soundlayer/internal/effects/GrainEffect.h"

#include <algorithm>

namespace velmora::soundlayer {

template <typename Work>
void GrainEffect::ByGrains(std::size_t frames, Work&& work)
{
    for (std::size_t done = 0; done < frames;) {
        if (m_position == 0) {
            BeginGrain();
        }
        const std::size_t now = std::min(frames - done, kGrain - m_position);
        work(done, now);
        done += now;
        m_position += now;
        if (m_position == kGrain) {
            m_position = 0;
            EndGrain();
        }
    }
}

void GrainEffect::Process(float* left, float* right, std::size_t frames)
{
    ByGrains(frames, [&](std::size_t done, std::size_t now) { Run(left + done, right + done, now, m_position); });
}

void GrainEffect::Skip(std::size_t frames)
{
    ByGrains(frames, [this](std::size_t, std::size_t now) { Pass(now); });
}

} // namespace velmora::soundlayer
