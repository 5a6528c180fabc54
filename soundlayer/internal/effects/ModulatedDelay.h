#pragma once

#include "soundlayer/internal/effects/FractionalDelay.h"
#include "soundlayer/internal/effects/Glide.h"
#include "soundlayer/internal/effects/GrainEffect.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace velmora::soundlayer {

/// Chorus and flanger: each side beside itself, later by a time that swings (J. Dattorro, "Effect Design, Part 2:
/// Delay-Line Modulation and Chorus", 1997).
///
/// The delay of a side is `fDelay` x (1 + depth x swing), the swing going from -1 to 1 and back; it begins in the
/// middle, on the right by the phase further on. What is fed back is one frame later than what is heard, and the delay
/// line takes in so much less that noise in it stays as loud. The wet share of the delayed and the rest of the direct
/// sound are heard. Delay, depth, form and phase of the swing glide within 200 ms, so that the pitch bends
/// little.
template <typename Block>
class ModulatedDelay final : public ParameterEffect<Block> {
public:
    explicit ModulatedDelay(std::uint32_t rate);

    bool AtRest() const override { return m_left.line.Silent() && m_right.line.Silent(); }

private:
    static constexpr std::size_t kGrain = GrainEffect::kGrain;

    struct Side {
        explicit Side(double longest)
            : line(longest)
        {
        }
        FractionalDelay line;
        float fedBack = 0.0F;
        /// In each frame of the grain.
        std::array<float, kGrain> delays{};
    };

    void Aim(const Block& block, bool atOnce) override;
    void Move() override;
    void Run(float* left, float* right, std::size_t frames, std::size_t at) override;
    void EndGrain() override { PassGrains(1); }
    void PassGrains(std::size_t grains) override;
    /// The left swing's phase at a frame of the grain, in 2^-32 turns.
    std::uint32_t PhaseAt(std::size_t frame) const;
    void SetDelays();
    void RunSide(Side& side, float* sound, std::size_t frames, std::size_t at);

    const double m_rate;
    /// Frames; 0..1; from 0, a triangle, to 1, a sine; turns by which the right swing is ahead.
    Glide m_delay;
    Glide m_depth;
    Glide m_form;
    Glide m_ahead;
    Glide m_wet;
    Glide m_feedback;
    Glide m_drive;
    /// 2^-32 turns per frame.
    Glide m_speed;
    /// Before the grain's first frame.
    std::uint32_t m_phase = 0;
    bool m_delaysKnown = false;
    Side m_left;
    Side m_right;
};

using Chorus = ModulatedDelay<BASS_DX8_CHORUS>;
using Flanger = ModulatedDelay<BASS_DX8_FLANGER>;

} // namespace velmora::soundlayer
