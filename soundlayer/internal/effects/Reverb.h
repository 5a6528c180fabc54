#pragma once

#include "soundlayer/internal/effects/Glide.h"
#include "soundlayer/internal/effects/GrainEffect.h"
#include "soundlayer/internal/effects/ReverbNetwork.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace velmora::soundlayer {

/// A room around the sound. What comes in, times the input gain, is heard as it is, and the room is added: with a mix
/// of 0 dB noise on both sides is about as loud in the room as it comes in. At -96 dB each of the two gains is 0.
class Reverb final : public ParameterEffect<BASS_DX8_REVERB> {
public:
    explicit Reverb(std::uint32_t rate);

    bool AtRest() const override { return m_atRest; }

private:
    static constexpr std::size_t kBlock = ReverbNetwork::kBlock;

    void Aim(const BASS_DX8_REVERB& block, bool atOnce) override;
    void Move() override;
    void Run(float* left, float* right, std::size_t frames, std::size_t at) override;
    void EndGrain() override;

    ReverbNetwork m_network;
    Glide m_input;
    Glide m_mix;
    /// The room works on whole blocks: where these stand, what has come in lies before, what is to be heard after.
    std::array<float, kBlock> m_left{};
    std::array<float, kBlock> m_right{};
    /// Whether something was heard in this grain, and in this block of the network.
    bool m_grainHeard = false;
    bool m_blockHeard = false;
    std::size_t m_quietFrames = 0;
    bool m_atRest = true;
};

} // namespace velmora::soundlayer
