#include "audio/internal/OfflineMaster.h"

#include "audio/MasterVolume_Class.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>

namespace velmora::audio {
namespace {

constexpr std::uint32_t kOfflineBufferMS = 200;
constexpr std::uint32_t kOfflineUpdateMS = 50;
constexpr std::int64_t kBlockFrames = 16384;
constexpr std::uint32_t kFrameBytes = 4;

} // namespace

OfflineMaster::OfflineMaster(const MasterVolume_Class& master)
    : m_masterMixer(master.BassMixStreamHandle())
    , m_deviceMixer(master.RealMixHandle())
    , m_bufferMS(BASS_GetConfig(BASS_CONFIG_BUFFER))
    , m_updateMS(BASS_GetConfig(BASS_CONFIG_UPDATEPERIOD))
    , m_block(2 * kBlockFrames)
{
    BASS_SetConfig(BASS_CONFIG_BUFFER, kOfflineBufferMS);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, kOfflineUpdateMS);
    BASS_ChannelStop(m_deviceMixer);
    BASS_Mixer_ChannelRemove(m_masterMixer);
    BASS_ChannelPlay(m_masterMixer, 1);
}

OfflineMaster::~OfflineMaster()
{
    BASS_SetConfig(BASS_CONFIG_BUFFER, m_bufferMS);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, m_updateMS);
    BASS_Mixer_StreamAddChannel(m_deviceMixer, m_masterMixer, 0);
    BASS_ChannelPlay(m_deviceMixer, 1);
    BASS_ChannelPlay(m_masterMixer, 1);
}

bool OfflineMaster::Pull(std::int64_t frames)
{
    while (frames > 0) {
        const auto wanted = static_cast<std::uint32_t>(std::min(frames, kBlockFrames)) * kFrameBytes;
        const std::uint32_t got = BASS_ChannelGetData(m_masterMixer, m_block.data(), wanted);
        if (got == 0 || got == static_cast<std::uint32_t>(-1)) {
            return false;
        }
        frames -= got / kFrameBytes;
    }
    return true;
}

} // namespace velmora::audio
