#include "audio/internal/ExportGuards.h"

#include "audio/AudioPlayer_Class.h"
#include "audio/internal/OfflineMaster.h"
#include "core/MsgIds.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "effects/FX_ChainContainer_Class.h"
#include "engine/audioplayer.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>

namespace velmora::audio {
namespace {

constexpr std::int32_t kMeterPriority = 100;
constexpr std::int32_t kMeterRange = 40;
/// Longer than effects take to leave a stream.
constexpr std::int64_t kForgetMS = 20;

} // namespace

LiveMonitoringPause::LiveMonitoringPause(project::ProjectFile_Class& project)
    : m_project(project)
{
    for (std::int32_t i = 0; i < project.Chn_GetChannelClass_TotalN(); ++i) {
        const project::Channel_Class* channel = project.Chn_GetChannelObj_by_Index(i);
        if (channel && channel->LiveStatus) {
            m_live.push_back(channel->ClassID());
        }
    }
}

LiveMonitoringPause::~LiveMonitoringPause()
{
    for (const core::ClassID id : m_live) {
        const project::Channel_Class* channel = m_project.Chn_GetChannelClassObj_by_ID(id);
        if (!channel || channel->LiveStatus) {
            continue;
        }
        core::MsgParametersClass params;
        params.ChannelID = id;
        params.Value = core::kTrue;
        try {
            m_project.MsgSender->SendMsg(core::kNoSender, core::Msg_Channel_SetLive, params);
        } catch (...) {
            // A receiver's failure must not keep the other channels from coming back.
        }
    }
}

void LiveMonitoringPause::Begin()
{
    core::MsgParametersClass params;
    m_project.MsgSender->SendMsg(core::kNoSender, core::Msg_AllChannelsLiveOff, params);
}

AutoStopPause::AutoStopPause(project::ProjectFile_Class& project)
    : m_project(project)
{
    m_project.Player->Cursor.AutoStopEnabled = false;
}

AutoStopPause::~AutoStopPause()
{
    m_project.Player->Cursor.AutoStopEnabled = true;
}

FreshEffects::FreshEffects(project::ProjectFile_Class& project, OfflineMaster& master)
    : m_project(project)
    , m_master(master)
{
    Forget();
}

FreshEffects::~FreshEffects()
{
    Forget();
}

void FreshEffects::Forget()
{
    for (const bool bypassed : {true, false}) {
        for (std::int32_t i = 0; i < m_project.Chn_GetChannelClass_TotalN(); ++i) {
            if (const project::Channel_Class* channel = m_project.Chn_GetChannelObj_by_Index(i)) {
                channel->FX->Bypass(bypassed);
            }
        }
        if (bypassed) {
            m_master.Pull(core::FrameOfMS(kForgetMS, m_project.Environment().config.BassDevice_Freq));
        }
    }
}

MeteredStream::MeteredStream(std::uint32_t stream)
    : m_stream(stream)
    , m_dsp(BASS_ChannelSetDSP(stream, reinterpret_cast<DSPPROC*>(get_GetLevelDSP_memaddress()), 0, kMeterPriority))
{
}

MeteredStream::~MeteredStream()
{
    BASS_ChannelRemoveDSP(m_stream, m_dsp);
}

std::int32_t MeteredStream::Meter() const
{
    std::int32_t left = 0;
    std::int32_t right = 0;
    GetRMSLevel(m_stream, &left, &right);
    return std::clamp(core::RoundToInt(core::PeakPairToDB(left, right)) + kMeterRange, 0, kMeterRange);
}

} // namespace velmora::audio
