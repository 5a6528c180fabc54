#include "project/internal/ChannelStrip.h"

#include "core/BassHelpers.h"
#include "core/SoundEdit.h"
#include "core/TextUtilities.h"
#include "engine/ClipFades.h"
#include "engine/audioplayer.h"

#include <algorithm>
#include <cmath>

namespace velmora::project {
namespace {

constexpr std::uint32_t kMixerFlags = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP;
/// The whole of a voice removal.
constexpr double kWholeRemoval = 10'000;
constexpr double kGainThreshold = 0.0001;
constexpr std::int32_t kVoiceRemovalPriority = 10;

} // namespace

ChannelStrip::ChannelStrip(core::MessageBoxes& messages, std::int32_t rate, HSTREAM masterMixer)
    : m_inMix(BASS_Mixer_StreamCreate(static_cast<std::uint32_t>(rate), 2, kMixerFlags))
    , m_outMix(BASS_Mixer_StreamCreate(static_cast<std::uint32_t>(rate), 2, kMixerFlags))
{
    BASS_ChannelSetDSP(m_outMix, reinterpret_cast<DSPPROC*>(get_GetLevelDSP_memaddress()), 0, 0);
    if (!BASS_Mixer_StreamAddChannel(masterMixer, m_outMix, 0)) {
        messages.Show("Can't add OUT channel to global mixer");
    }
    BASS_ChannelPlay(m_inMix, 0);
}

ChannelStrip::~ChannelStrip()
{
    if (m_gain != 0) {
        BASS_ChannelRemoveDSP(m_inMix, m_gain);
    }
    BASS_Mixer_ChannelRemove(m_outMix);
    BASS_Mixer_ChannelRemove(m_inMix);
    BASS_ChannelStop(m_inMix);
    BASS_ChannelStop(m_outMix);
    BASS_StreamFree(m_inMix);
    BASS_StreamFree(m_outMix);
}

void ChannelStrip::SetPan(std::int32_t pan)
{
    core::BassSetAttributes(m_outMix, -1, -1, std::clamp(pan, -100, 100));
}

void ChannelStrip::SetOutputVolume(std::int32_t volume)
{
    core::BassSetAttributes(m_outMix, -1, std::clamp(volume, 0, 100), -101);
}

void ChannelStrip::SetVoiceRemoval(std::int32_t amount)
{
    const double user = std::clamp(amount, 0, 100) / 100.0 * kWholeRemoval;
    ReplaceDSP(m_voiceRemoval, amount != 0 ? get_RemoveVocalsDSP_memaddress() : nullptr,
               static_cast<SOUND_USER>(std::lround(user)), kVoiceRemovalPriority);
}

void ChannelStrip::SetGain(double gain)
{
    const double factor = core::DBToGain(gain);
    ReplaceDSP(m_gain, std::abs(factor - 1) > kGainThreshold ? get_GainDSP_memaddress() : nullptr,
               engine::GainUserValue(factor), engine::kGainPriority);
}

void ChannelStrip::ReplaceDSP(HDSP& dsp, void* address, SOUND_USER user, std::int32_t priority)
{
    const core::SoundEdit edit;
    if (dsp != 0) {
        BASS_ChannelRemoveDSP(m_inMix, dsp);
        dsp = 0;
    }
    if (address) {
        dsp = BASS_ChannelSetDSP(m_inMix, reinterpret_cast<DSPPROC*>(address), user, priority);
    }
}

} // namespace velmora::project
