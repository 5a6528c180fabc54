#include "audio/AudioPlayer_Class.h"

#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"

#include <algorithm>

namespace velmora::audio {

namespace {

constexpr std::int32_t kPriority = 30;
/// How far behind the project's end the position may be set.
constexpr double kBeyondEndMS = 30'000;

/// The engine's ids are the document's, cut to 32 bits.
std::int32_t EngineID(core::ClassID id)
{
    return core::RoundToInt(id);
}

} // namespace

AudioPlayer_Class::AudioPlayer_Class(core::Environment& environment, project::ProjectFile_Class& project)
    : Cursor(environment, project)
    , m_environment(environment)
    , m_project(project)
    , m_classID(environment.ids.Draw())
    , m_msgHandler(std::make_shared<core::MsgHandlerClass>(
          environment.ids, [this](std::int32_t /*senderID*/, std::int32_t msgID, core::MsgParametersClass& params) {
              MsgHandler_MsgReceived(msgID, params);
          }))
{
    project.MsgSender->Add_MsgHandlerOBJ(kPriority, m_msgHandler);
}

AudioPlayer_Class::~AudioPlayer_Class()
{
    m_msgHandler->Detach();
    Pause();
    ClearChannelList();
    ClearEventList();
}

std::int32_t AudioPlayer_Class::GetTimePos() const
{
    return player_GetTimePos();
}

bool AudioPlayer_Class::isPlaying() const
{
    return player_IsPlaying() != 0;
}

void AudioPlayer_Class::MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params)
{
    switch (MsgID) {
    case core::Msg_Refresh:
    case core::Msg_ClearChannel:
    case core::Msg_Player_ReloadEvents:
        ReloadEngineLists();
        break;
    case core::Msg_UndoRestored:
        if (Params.UndoDataType == project::kUndoEvents || Params.UndoDataType == project::kUndoProject) {
            ReloadEngineLists();
        }
        break;
    case core::Msg_AddVoiceChannel:
    case core::Msg_AddMusicChannel:
        if (const auto* channel = m_project.Chn_GetChannelClassObj_by_ID(Params.NewChannelID)) {
            addCC(EngineID(channel->ClassID()), channel->BassInMix_Handle);
        }
        break;
    case core::Msg_AddEvent:
        AddEvent(Params);
        break;
    case core::Msg_DeleteEvent:
        removeEvent(EngineID(Params.ChannelID), Params.EventID);
        break;
    case core::Msg_EventEdit_ResizeRight:
    case core::Msg_EventEdit_ResizeLeft:
    case core::Msg_EventEdit_Move:
    case core::Msg_EventEdit_SetGain:
    case core::Msg_EventEdit_SetFadeIn:
    case core::Msg_EventEdit_SetFadeOut:
    case core::Msg_EventEdit_Replace:
        UTIL_AddUpdateEvent(Params.ChannelID, Params.EventID);
        break;
    case core::Msg_EventEdit_MoveVertical:
        // It stays where it was when the two are one channel, or the other is gone.
        if (!m_project.util_EventExists(Params.FromChannelID, Params.EventID)) {
            removeEvent(EngineID(Params.FromChannelID), Params.EventID);
        }
        UTIL_AddUpdateEvent(Params.ToChannelID, Params.NewEventID);
        break;
    case core::Msg_EventEdit_Split:
        UTIL_AddUpdateEvent(Params.ChannelID, Params.EventID);
        UTIL_AddUpdateEvent(Params.ChannelID, Params.SplitNewEventID);
        break;
    case core::Msg_Player_Play:
        StartPlayback();
        break;
    case core::Msg_Player_Stop:
        StopPlayback();
        break;
    case core::Msg_Player_SetRange:
        Seek(Params);
        break;
    default:
        break;
    }
}

void AudioPlayer_Class::Play()
{
    player_Play();
    Cursor.Start();
}

void AudioPlayer_Class::Pause()
{
    player_Pause();
    Cursor.Stop();
}

void AudioPlayer_Class::StartPlayback()
{
    if (GetTimePos() >= m_project.util_GetProjectLength()) {
        SendSeek(0);
    }
    LastPlayStartMS = GetTimePos();
    Play();
}

void AudioPlayer_Class::StopPlayback()
{
    Pause();
    if (m_environment.config.Playback_Jumpback != 0) {
        SendSeek(LastPlayStartMS);
    }
}

void AudioPlayer_Class::Seek(core::MsgParametersClass& params)
{
    const double wanted =
        params.PlayFromMS != core::kUnset ? static_cast<double>(GetTimePos()) + params.PlayFromMS : params.PlayToMS;
    const double target = std::clamp(wanted, 0.0, m_project.util_GetProjectLength() + kBeyondEndMS);
    player_SetTimePos(core::RoundToInt(target));
    core::MsgParametersClass tick;
    tick.PlayerPosMS = core::RoundToInt(target);
    m_project.MsgSender->SendMsg(EngineID(m_classID), core::Msg_Player_Tick, tick);
    params.CancelDelivery = true;
}

void AudioPlayer_Class::SendSeek(std::int32_t positionMS)
{
    core::MsgParametersClass range;
    range.PlayFromMS = core::kUnset;
    range.PlayToMS = positionMS;
    m_project.MsgSender->SendMsg(EngineID(m_classID), core::Msg_Player_SetRange, range);
}

void AudioPlayer_Class::AddEvent(const core::MsgParametersClass& params)
{
    if (params.EventType != core::kWaveEvent || !params.EventOBJ) {
        return;
    }
    const project::CDC_Event_Wave_Class& event = *params.EventOBJ;
    addEvent(EngineID(params.ChannelID), params.EventID, event.GainFactor,
             m_project.FixAudioFilePath(event.FilePath).c_str(), core::RoundToInt(params.TimePosMS), event.StartMS,
             event.EndMS, event.FadeIn_EndMS, event.FadeOut_StartMS);
}

void AudioPlayer_Class::UTIL_AddUpdateEvent(core::ClassID channelID, std::int32_t eventID)
{
    const project::Channel_Class* channel = m_project.Chn_GetChannelClassObj_by_ID(channelID);
    core::MsgParametersClass params;
    if (!channel || !channel->ChannelData->GetEventData(eventID, params.EventType, params.TimePosMS)) {
        return;
    }
    params.ChannelID = channelID;
    params.EventID = eventID;
    params.EventOBJ = m_project.util_GetEvent_OBJ(channelID, eventID);
    AddEvent(params);
}

void AudioPlayer_Class::ReloadEngineLists()
{
    ClearChannelList();
    ClearEventList();
    for (std::int32_t i = 0; i < m_project.Chn_GetChannelClass_TotalN(); ++i) {
        const project::Channel_Class& channel = *m_project.Chn_GetChannelObj_by_Index(i);
        addCC(EngineID(channel.ClassID()), channel.BassInMix_Handle);
        for (std::int32_t id = channel.ChannelData->GetFirstEvent_ID(); id != -1;
             id = channel.ChannelData->GetNextEvent_ID(id)) {
            UTIL_AddUpdateEvent(channel.ClassID(), id);
        }
    }
}

} // namespace velmora::audio
