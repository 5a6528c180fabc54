#include "audio/MasterVolume_Class.h"

#include "core/BassHelpers.h"
#include "core/MsgIds.h"
#include "core/Units.h"
#include "soundlayer/soundlayer.h"

namespace velmora::audio {
namespace {

constexpr std::int32_t kBusPriority = 30;

void SetVolumeOf(std::uint32_t stream, std::int32_t volume)
{
    core::BassSetAttributes(stream, -1, volume, -101);
}

} // namespace

MasterVolume_Class::MasterVolume_Class(core::Environment& environment, core::MsgSenderClass& bus)
    : m_classID(environment.ids.Draw())
    , m_msgHandler(std::make_shared<core::MsgHandlerClass>(
          environment.ids, [this](std::int32_t, std::int32_t msgID, core::MsgParametersClass& params) {
              MsgHandler_MsgReceived(msgID, params);
          }))
{
    bus.Add_MsgHandlerOBJ(kBusPriority, m_msgHandler);
    const auto rate = static_cast<std::uint32_t>(environment.config.BassDevice_Freq);
    m_deviceMixer = BASS_Mixer_StreamCreate(rate, 2, BASS_MIXER_NONSTOP);
    m_masterMixer = BASS_Mixer_StreamCreate(rate, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    BASS_Mixer_StreamAddChannel(m_deviceMixer, m_masterMixer, 0);
    BASS_ChannelPlay(m_deviceMixer, 0);
}

MasterVolume_Class::~MasterVolume_Class()
{
    m_msgHandler->Detach();
    BASS_ChannelStop(m_deviceMixer);
    BASS_Mixer_ChannelRemove(m_masterMixer);
    BASS_StreamFree(m_masterMixer);
    BASS_StreamFree(m_deviceMixer);
}

void MasterVolume_Class::MsgHandler_MsgReceived(std::int32_t MsgID, const core::MsgParametersClass& Params)
{
    switch (MsgID) {
    case core::Msg_Master_SetMute:
        m_muted = Params.Value == core::kTrue;
        SetVolumeOf(m_masterMixer, m_muted ? 0 : m_volume);
        break;
    case core::Msg_Master_SetVolume:
        m_volume = core::RoundToInt(Params.Value);
        if (!m_muted) {
            SetVolumeOf(m_masterMixer, m_volume);
        }
        break;
    default:
        break;
    }
}

} // namespace velmora::audio
