#include "effects/FXwrp_GraphicEQ_Class.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <utility>

namespace velmora::effects {
namespace {

/// A band that changes less than this, in dB, does nothing.
constexpr float kFlat = 0.01F;

struct Band {
    float center;
    float semitones;
};

constexpr std::array<Band, FXwrp_GraphicEQ_Class::BandCount> kBandTable{{
    {80, 6},
    {200, 12},
    {600, 12},
    {2000, 13},
    {4600, 9},
    {8200, 6},
    {16000, 9},
}};

} // namespace

void FXwrp_GraphicEQ_Class::StartFX(std::uint32_t StreamHandle, std::int32_t Priority)
{
    RemoveFX();
    m_streamHandle = StreamHandle;
    m_priority = Priority;
}

void FXwrp_GraphicEQ_Class::SetPriority(std::int32_t Priority, std::vector<HFX>& bands)
{
    m_priority = Priority;
    std::ranges::copy_if(m_bandHandles, std::back_inserter(bands), [](HFX handle) { return handle != 0; });
}

void FXwrp_GraphicEQ_Class::SetFX_Parameters(const FX_Block& block)
{
    if (m_streamHandle == 0) {
        return;
    }
    for (std::size_t i = 0; i < BandCount; ++i) {
        HFX& handle = m_bandHandles[i];
        const float gain = std::bit_cast<float>(block[i]);
        if (std::abs(gain) > kFlat) {
            if (handle == 0) {
                handle = BASS_ChannelSetFX(m_streamHandle, BASS_FX_DX8_PARAMEQ, m_priority);
            }
            const BASS_DX8_PARAMEQ parameters{kBandTable[i].center, kBandTable[i].semitones, gain};
            BASS_FXSetParameters(handle, &parameters);
        } else if (handle != 0) {
            BASS_ChannelRemoveFX(m_streamHandle, std::exchange(handle, 0));
        }
    }
}

void FXwrp_GraphicEQ_Class::RemoveFX()
{
    for (HFX& handle : m_bandHandles) {
        if (handle != 0) {
            BASS_ChannelRemoveFX(m_streamHandle, std::exchange(handle, 0));
        }
    }
    m_streamHandle = 0;
}

} // namespace velmora::effects
