#include "controls/RenameChannel.h"

#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "core/Units.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

namespace velmora::controls {

void RenameChannel(project::ProjectFile_Class& project, core::ClassID channel, core::ClassID sender)
{
    if (!project.util_ChannelExists(channel)) {
        return;
    }
    const auto title = project.Environment().ports.input.Ask(
        "Change name", "Insert the channel's name:", project.util_GetChannelTitle(channel));
    // The channel may go while the box is open.
    if (!title || title->empty() || !project.util_ChannelExists(channel)) {
        return;
    }
    project.Undo->AddUndo("change name", project::kUndoChannel, channel);
    core::MsgParametersClass params;
    params.ChannelID = channel;
    params.Text = *title;
    project.MsgSender->SendMsg(core::RoundToInt(sender), core::Msg_Channel_SetTitle, params);
}

} // namespace velmora::controls
