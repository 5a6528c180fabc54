#include "project/internal/ChannelEdits.h"

#include "core/MsgIds.h"
#include "core/Units.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

#include <algorithm>

namespace velmora::project {
ChannelEdits::ChannelEdits(ProjectFile_Class& project, Channel_Class& channel)
    : m_project(project)
    , m_channel(channel)
{
}

ChannelDataClass& ChannelEdits::Events()
{
    return *m_channel.ChannelData;
}

bool ChannelEdits::Handle(std::int32_t msgID, core::MsgParametersClass& params)
{
    switch (msgID) {
    case core::Msg_ClearChannel:
        Events().DeleteAllEvents();
        return true;
    case core::Msg_AddEvent:
        Add(params);
        return true;
    case core::Msg_DeleteEvent:
        Events().DeleteEvent(params.EventID);
        return true;
    case core::Msg_EventEdit_ResizeRight:
        ResizeRight(params);
        return true;
    case core::Msg_EventEdit_ResizeLeft:
        ResizeLeft(params);
        return true;
    case core::Msg_EventEdit_Move:
        Move(params);
        return true;
    case core::Msg_EventEdit_Split:
        Split(params);
        return true;
    case core::Msg_EventEdit_SetGain:
        SetGain(params);
        return true;
    case core::Msg_EventEdit_SetFadeIn:
        SetFadeIn(params);
        return true;
    case core::Msg_EventEdit_SetFadeOut:
        SetFadeOut(params);
        return true;
    case core::Msg_EventEdit_Replace:
        Events().SetEventObj(params.EventID, params.EventOBJ);
        return true;
    default:
        return false;
    }
}

std::shared_ptr<CDC_Event_Wave_Class> ChannelEdits::WaveEvent(std::int32_t eventID)
{
    std::int32_t type = 0;
    double timePos = 0;
    return Events().GetEventData(eventID, type, timePos) && type == core::kWaveEvent ? Events().GetEventOBJ(eventID)
                                                                                     : nullptr;
}

void ChannelEdits::Add(core::MsgParametersClass& params)
{
    params.EventID = Events().AddEvent(params.EventType, params.TimePosMS);
    Events().SetEventObj(params.EventID, params.EventOBJ);
}

void ChannelEdits::ResizeRight(const core::MsgParametersClass& params)
{
    if (const auto event = Events().GetEventOBJ(params.EventID)) {
        std::int32_t applied = 0;
        event->UTIL_ResizeEvent_Right(params.EditDeltaMS, applied);
        Events().EventsChanged();
    }
}

void ChannelEdits::ResizeLeft(core::MsgParametersClass& params)
{
    std::int32_t type = 0;
    double timePos = 0;
    const auto event = Events().GetEventOBJ(params.EventID);
    if (!event || !Events().GetEventData(params.EventID, type, timePos)) {
        return;
    }
    if (timePos + params.EditDeltaMS < 0) {
        params.EditDeltaMS = core::RoundToInt(-timePos);
    }
    std::int32_t applied = 0;
    event->UTIL_ResizeEvent_Left(params.EditDeltaMS, applied);
    Events().SetEvent_TimePos(params.EventID, timePos + applied);
    Events().Relink();
}

void ChannelEdits::Move(const core::MsgParametersClass& params)
{
    std::int32_t type = 0;
    double timePos = 0;
    if (Events().GetEventData(params.EventID, type, timePos)) {
        Events().SetEvent_TimePos(params.EventID, std::max(timePos + params.NewTimePosMS, 0.0));
        Events().Relink();
    }
}

void ChannelEdits::Split(core::MsgParametersClass& params)
{
    std::int32_t type = 0;
    double timePos = 0;
    if (!Events().GetEventData(params.EventID, type, timePos)) {
        return;
    }
    const auto first = Events().GetEventOBJ(params.EventID);
    if (type == core::kWaveEvent && !first) {
        return;
    }
    params.SplitNewEventID = Events().AddEvent(type, timePos + params.SplitPosMS);
    if (type != core::kWaveEvent) {
        return;
    }
    const auto second = first->UTIL_CopyObj();
    first->EndMS = core::RoundToInt(first->StartMS + params.SplitPosMS);
    if (first->FadeIn_EndMS >= 0) {
        if (first->FadeIn_EndMS > first->EndMS) {
            first->FadeIn_EndMS = first->EndMS - 1;
        }
        second->FadeIn_EndMS = core::kUnset;
    }
    if (first->FadeOut_StartMS >= 0) {
        const std::int32_t start = core::RoundToInt(first->FadeOut_StartMS - params.SplitPosMS);
        second->FadeOut_StartMS = start < 0 ? 1 : start;
        first->FadeOut_StartMS = core::kUnset;
    }
    second->StartMS = first->EndMS;
    Events().SetEventObj(params.SplitNewEventID, second);
    Events().EventsChanged();
}

void ChannelEdits::SetGain(const core::MsgParametersClass& params)
{
    if (const auto event = WaveEvent(params.EventID)) {
        event->GainFactor = params.Value;
    }
}

void ChannelEdits::SetFadeIn(core::MsgParametersClass& params)
{
    const auto event = WaveEvent(params.EventID);
    if (!event) {
        return;
    }
    if (params.Value < 0) {
        event->FadeIn_EndMS = core::kUnset;
        return;
    }
    const double length = event->GetEventLength();
    params.Value = std::min(params.Value, length);
    if (event->FadeOut_StartMS >= 0 && params.Value > event->FadeOut_StartMS) {
        const double behind = params.Value + 1;
        Push(core::Msg_EventEdit_SetFadeOut, params.EventID, behind < length ? behind : core::kUnsetFloat);
    }
    event->FadeIn_EndMS = core::RoundToInt(params.Value);
}

void ChannelEdits::SetFadeOut(core::MsgParametersClass& params)
{
    const auto event = WaveEvent(params.EventID);
    if (!event) {
        return;
    }
    if (params.Value < 0) {
        event->FadeOut_StartMS = core::kUnset;
        return;
    }
    if (params.Value >= event->GetEventLength()) {
        params.Value = core::kUnsetFloat;
    }
    if (event->FadeIn_EndMS >= 0 && params.Value < event->FadeIn_EndMS) {
        const double before = params.Value - 1;
        Push(core::Msg_EventEdit_SetFadeIn, params.EventID, before > 0 ? before : core::kUnsetFloat);
    }
    event->FadeOut_StartMS = core::RoundToInt(params.Value);
}

void ChannelEdits::Push(std::int32_t msgID, std::int32_t eventID, double value)
{
    core::MsgParametersClass params;
    params.ChannelID = m_channel.ClassID();
    params.EventID = eventID;
    params.Value = value;
    m_project.MsgSender->SendMsg(core::RoundToInt(m_channel.ClassID()), msgID, params);
}

} // namespace velmora::project
