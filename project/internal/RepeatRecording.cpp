#include "project/internal/RepeatRecording.h"

#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "core/Units.h"
#include "project/ProjectFile_Class.h"
#include "project/Undo_Class.h"

namespace velmora::project {

namespace {

void RepeatAt(ProjectFile_Class& project, std::int32_t timePos, core::ClassID channelID)
{
    const auto send = [&project](std::int32_t msgID, core::MsgParametersClass params) {
        project.MsgSender->SendMsg(core::RoundToInt(project.ClassID()), msgID, params);
    };
    project.util_StopIfPlayingOrRecording();
    const bool drops = project.Undo->CurUndo_Title() == "Undo recording";
    if (drops) {
        project.Undo->Undo();
    }
    core::MsgParametersClass select;
    select.SelectChannelID = channelID;
    send(core::Msg_SelectVoiceChannel, select);
    core::MsgParametersClass range;
    range.PlayFromMS = core::kUnset;
    range.PlayToMS = timePos;
    send(core::Msg_Player_SetRange, range);
    send(core::Msg_Recorder_Start, {});
    if (!project.Recorder->isRecording()) {
        if (drops) {
            project.Undo->Redo();
        }
        project.LastRecTimePos = timePos;
        project.LastRecChannelID = core::RoundToInt(channelID);
    }
}

} // namespace

void RepeatRecording(ProjectFile_Class& project, const std::weak_ptr<const bool>& alive)
{
    // What follows changes both.
    const std::int32_t timePos = project.LastRecTimePos;
    const core::ClassID channelID = project.LastRecChannelID;
    project.MsgSender->WhenIdle([&project, alive, timePos, channelID] {
        if (!alive.expired()) {
            RepeatAt(project, timePos, channelID);
        }
    });
}

} // namespace velmora::project
