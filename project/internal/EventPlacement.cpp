#include "project/internal/EventPlacement.h"

#include "core/BassHelpers.h"
#include "core/MsgIds.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

#include <algorithm>
#include <vector>

namespace velmora::project {
namespace {

constexpr double kShortestRestMS = 10;

} // namespace

EventPlacement::EventPlacement(ProjectFile_Class& project)
    : m_project(project)
{
}

void EventPlacement::AddWave(core::MsgParametersClass& params)
{
    const std::string path = m_project.FixAudioFilePath(params.FilePath);
    bool failed = false;
    const std::int32_t lengthMS = core::GetAudioFileLengthMS(path, &failed);
    params.CancelDelivery = true;
    if (failed) {
        m_project.Environment().ports.messages.Show("Invalid sound file: " + path, core::Icon::Exclamation);
        return;
    }
    auto event = std::make_shared<CDC_Event_Wave_Class>();
    event->FilePath = params.FilePath;
    // A take that was over before its latency had passed has no length.
    event->StartMS = std::min(params.FileStartMS, lengthMS);
    event->EndMS = lengthMS;
    event->Title = params.EventTitle.empty() ? core::FileNameOfPath(params.FilePath) : params.EventTitle;
    if (params.OverwriteEvents) {
        MakeRoom(params.ChannelID, params.AddTimePosMS, event->GetEventLength());
    }
    core::MsgParametersClass fresh;
    fresh.ChannelID = params.ChannelID;
    fresh.TimePosMS = params.AddTimePosMS;
    fresh.EventOBJ = event;
    m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), core::Msg_AddEvent, fresh);
}

void EventPlacement::MakeRoom(double channelID, double timePos, double length)
{
    const Channel_Class* channel = m_project.Chn_GetChannelClassObj_by_ID(channelID);
    if (!channel) {
        return;
    }
    struct Edit {
        std::int32_t msgID;
        core::MsgParametersClass params;
    };
    std::vector<Edit> edits;
    for (const EventRow* row : channel->ChannelData->InTimeOrder()) {
        const double rowLength = row->EventOBJ ? row->EventOBJ->GetEventLength() : 0;
        const double end = row->TimePos + rowLength;
        Edit edit{core::Msg_DeleteEvent, {}};
        edit.params.ChannelID = channelID;
        edit.params.EventID = row->ID;
        const double rest = timePos - row->TimePos;
        if (row->TimePos >= timePos && end <= timePos + length) {
            edits.push_back(edit);
        } else if (rest >= kShortestRestMS && end > timePos) {
            edit.msgID = core::Msg_EventEdit_ResizeRight;
            edit.params.EditDeltaMS = core::RoundToInt(rest - rowLength);
            edits.push_back(edit);
        }
    }
    for (Edit& edit : edits) {
        m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), edit.msgID, edit.params);
    }
}

void EventPlacement::MoveVertical(core::MsgParametersClass& params)
{
    const Channel_Class* from = m_project.Chn_GetChannelClassObj_by_ID(params.FromChannelID);
    const Channel_Class* to = m_project.Chn_GetChannelClassObj_by_ID(params.ToChannelID);
    std::int32_t type = 0;
    double timePos = 0;
    if (!from || !to || from == to || !from->ChannelData->GetEventData(params.EventID, type, timePos)) {
        return;
    }
    const auto event = from->ChannelData->GetEventOBJ(params.EventID);
    params.NewEventID = to->ChannelData->AddEvent(type, timePos);
    to->ChannelData->SetEventObj(params.NewEventID, event);
    from->ChannelData->DeleteEvent(params.EventID);
}

} // namespace velmora::project
