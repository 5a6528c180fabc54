#pragma once

#include "soundlayer/internal/effects/BlockLimits.h"
#include "soundlayer/internal/effects/Effect.h"
#include "soundlayer/internal/effects/FlushDenormals.h"
#include "soundlayer/internal/effects/Mailbox.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

namespace velmora::soundlayer {

/// An effect that counts its frames in grains, so that what it does does not depend on how they are cut into calls:
/// parameters come in, glides turn and tails end between two grains only.
class GrainEffect : public Effect {
public:
    /// Frames of a grain.
    static constexpr std::size_t kGrain = 128;
    /// What lies below (-144 dB) is set to zero between two grains, so that a tail comes to its end.
    static constexpr float kSilence = 0x1p-24F;

    void Process(float* left, float* right, std::size_t frames) final;
    void Skip(std::size_t frames) final;

    /// Where in its grain the effect stands. [RT]
    std::size_t Position() const { return m_position; }

protected:
    /// Before the first frame of each grain. [RT]
    virtual void BeginGrain() = 0;
    /// Works on frames `at`, `at` + 1 ... of the grain. [RT]
    virtual void Run(float* left, float* right, std::size_t frames, std::size_t at) = 0;
    /// After the last frame of each grain: what has become too quiet is set to zero. [RT]
    virtual void EndGrain() {}
    /// Whether the beginnings of the next grains change nothing. [RT]
    virtual bool Still() const = 0;
    /// What whole grains of silence do while at rest and still: only what goes on without sound does so. [RT]
    virtual void PassGrains(std::size_t /*grains*/) {}

    /// Cuts `frames` into pieces within a grain of `effects`, which all stand at one position: `work(done, frames,
    /// at)`. [RT]
    template <typename Work>
    static void ByGrains(std::span<GrainEffect* const> effects, std::size_t frames, Work&& work);

private:
    std::size_t m_position = 0;
};

template <typename Work>
void GrainEffect::ByGrains(std::span<GrainEffect* const> effects, std::size_t frames, Work&& work)
{
    const FlushDenormals flush;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t at = effects.front()->m_position;
        const std::size_t now = std::min(frames - done, kGrain - at);
        if (at == 0) {
            std::ranges::for_each(effects, &GrainEffect::BeginGrain);
        }
        work(done, now, at);
        done += now;
        for (GrainEffect* effect : effects) {
            effect->m_position = (at + now) % kGrain;
            if (effect->m_position == 0) {
                effect->EndGrain();
            }
        }
    }
}

/// `value`, or zero when it is too quiet to be heard. [RT]
inline float ZeroIfQuiet(float value)
{
    return std::abs(value) < GrainEffect::kSilence ? 0.0F : value;
}

/// A `GrainEffect` with the parameters of a BASS_DX8 block.
template <typename Block>
class ParameterEffect : public GrainEffect {
public:
    void SetParameters(const void* block) final { m_mail.Put(LimitedBlock<Block>(block)); }

protected:
    /// New parameters, between two grains. `atOnce`: nothing was heard yet, so nothing glides. [RT]
    virtual void Aim(const Block& block, bool atOnce) = 0;
    /// After that, before each grain: what glides moves on. [RT]
    virtual void Move() = 0;

private:
    /// Grains, some 3 s, by which everything that glides has come to its end.
    static constexpr std::size_t kLongestGlide = 1024;

    void BeginGrain() final
    {
        Block block = kBlockLimits<Block>.initial;
        if (m_mail.Take(block) || !m_begun) {
            Aim(block, !m_begun);
            m_begun = true;
            m_glided = 0;
        }
        Move();
        ++m_glided;
    }
    bool Still() const final { return m_glided > kLongestGlide && m_mail.Empty(); }

    Mailbox<Block> m_mail;
    bool m_begun = false;
    /// Grains since the parameters came.
    std::size_t m_glided = 0;
};

} // namespace velmora::soundlayer
