#pragma once

#include "effects/FX_Module.h"
#include "soundlayer/soundlayer.h"

#include <array>
#include <cstdint>
#include <vector>

namespace velmora::effects {

/// A graphic equalizer of seven bands, each a parametric EQ of the sound layer. A band is on the stream only while its
/// gain is more than 0.01 dB, so a flat one costs nothing. Interface thread only.
class FXwrp_GraphicEQ_Class {
public:
    static constexpr std::size_t BandCount = 7;

    FXwrp_GraphicEQ_Class() = default;
    /// Takes its bands off the stream.
    ~FXwrp_GraphicEQ_Class() { RemoveFX(); }
    FXwrp_GraphicEQ_Class(const FXwrp_GraphicEQ_Class&) = delete;
    FXwrp_GraphicEQ_Class& operator=(const FXwrp_GraphicEQ_Class&) = delete;

    /// Leaves the stream that it was on for this one. Nothing is attached until gains come.
    void StartFX(std::uint32_t StreamHandle, std::int32_t Priority);
    /// The priority of bands to come. Those that are there are added to `bands`, to be given it with others.
    void SetPriority(std::int32_t Priority, std::vector<HFX>& bands);
    /// Gains in dB, of which the eighth acts on nothing; ignored while there is no stream.
    void SetFX_Parameters(const FX_Block& block);
    void RemoveFX();

    /// `band` from 0; 0 while the band is not on the stream.
    HFX BandHandle(std::size_t band) const { return m_bandHandles[band]; }

private:
    std::uint32_t m_streamHandle = 0;
    std::int32_t m_priority = 0;
    std::array<HFX, BandCount> m_bandHandles{};
};

} // namespace velmora::effects
