#include "app/Commands.h"

#include "app/ShownText.h"
#include "audio/AudioExport.h"
#include "audio/AudioPlayer_Class.h"
#include "audio/Metronome_Class.h"
#include "controls/NewClip.h"
#include "controls/RenameChannel.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "project/Channel_Class.h"
#include "project/MarkList_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

#include <algorithm>

namespace velmora::app {
namespace {

constexpr std::int32_t kJumpMS = 5000;
constexpr std::string_view kProjectEnding = ".audioproj";

} // namespace

Commands::Commands(core::Environment& environment, app::Workspace& workspace, ChildWindows& windows)
    : m_environment(environment)
    , m_workspace(workspace)
    , m_windows(windows)
{
}

void Commands::Send(std::int32_t msgID, core::MsgParametersClass& params) const
{
    Project().MsgSender->SendMsg(core::RoundToInt(m_sender), msgID, params);
}

void Commands::Send(std::int32_t msgID, double value) const
{
    core::MsgParametersClass params;
    params.Value = value;
    Send(msgID, params);
}

void Commands::Toolbar(ToolbarButton button)
{
    switch (button) {
    case ToolbarButton::New:
        m_workspace.New();
        break;
    case ToolbarButton::Open:
        m_workspace.Open();
        break;
    case ToolbarButton::Save:
        m_workspace.Save();
        break;
    case ToolbarButton::Undo:
        Project().Undo->Undo();
        break;
    case ToolbarButton::Redo:
        Project().Undo->Redo();
        break;
    case ToolbarButton::Play:
        Send(core::Msg_Player_Play);
        break;
    case ToolbarButton::Stop:
        Project().util_StopIfPlayingOrRecording();
        break;
    case ToolbarButton::Rewind:
        Seek(core::kUnset, 0);
        break;
    case ToolbarButton::Back5:
        Seek(-kJumpMS, 0);
        break;
    case ToolbarButton::Ahead5:
        Seek(kJumpMS, 0);
        break;
    case ToolbarButton::Record:
        Send(core::Msg_Recorder_Start);
        break;
    case ToolbarButton::RepeatRecording:
        Project().util_RepeatLastRecording();
        break;
    case ToolbarButton::AddMark:
        AddMark(AddMarkToolbarTitle());
        break;
    }
}

void Commands::Seek(std::int32_t fromMS, std::int32_t toMS) const
{
    core::MsgParametersClass params;
    params.PlayFromMS = fromMS;
    params.PlayToMS = toMS;
    Send(core::Msg_Player_SetRange, params);
}

void Commands::Undo()
{
    Project().util_StopIfPlayingOrRecording();
    Project().Undo->Undo();
}

void Commands::Redo()
{
    Project().util_StopIfPlayingOrRecording();
    Project().Undo->Redo();
}

void Commands::EditChannels(const char* undoTitle, std::int32_t msgID, core::ClassID channel)
{
    Project().Undo->AddUndo(undoTitle, project::kUndoProject);
    core::MsgParametersClass params;
    params.ChannelID = channel;
    Send(msgID, params);
}

void Commands::ClearChannel(core::ClassID channel)
{
    EditChannels("clear channel", core::Msg_ClearChannel, channel);
}

void Commands::AddMusicChannel()
{
    EditChannels("add music channel", core::Msg_AddMusicChannel, 0);
}

void Commands::AddVoiceChannel()
{
    EditChannels("add voice channel", core::Msg_AddVoiceChannel, 0);
}

void Commands::DeleteChannel(core::ClassID channel)
{
    EditChannels("delete channel", core::Msg_DeleteChannel, channel);
}

void Commands::ChangeChannelName(core::ClassID channel)
{
    controls::RenameChannel(Project(), channel, m_sender);
}

std::string Commands::AddMarkToolbarTitle() const
{
    return "Add mark (" + ShownTime(Project().Player_LTimePos()) + ")";
}

void Commands::AddMark(std::string_view title)
{
    // The cursor may move on while the box is open.
    const std::int32_t timePos = Project().Player_LTimePos();
    const auto mark = m_environment.ports.input.Ask(
        title, "Insert the mark title: ", "Mark " + std::to_string(Project().Counter_MarkN));
    if (!mark || mark->empty()) {
        return;
    }
    Project().Undo->AddUndo("add mark", project::kUndoMarks);
    core::MsgParametersClass params;
    params.TimePosMS = timePos;
    params.MarkTimeMS = timePos;
    params.MarkTitle = *mark;
    Send(core::Msg_AddMark, params);
}

void Commands::JumpToMark(std::int32_t index)
{
    std::int32_t id = 0;
    double timePos = 0;
    std::string title;
    if (Project().Marks->GetMark_by_Index(index, id, timePos, title)) {
        Project().util_StopIfPlayingOrRecording();
        Seek(core::kUnset, core::RoundToInt(timePos));
    }
}

void Commands::DeleteMark(std::int32_t index)
{
    core::MsgParametersClass params;
    double timePos = 0;
    std::string title;
    if (Project().Marks->GetMark_by_Index(index, params.MarkID, timePos, title)) {
        Project().Undo->AddUndo("delete mark", project::kUndoMarks);
        Send(core::Msg_DeleteMark, params);
    }
}

void Commands::ToggleSetting(std::int32_t msgID, bool now) const
{
    Send(msgID, now ? core::kFalse : core::kTrue);
}

void Commands::ToggleMetronome()
{
    ToggleSetting(core::Msg_Metronome_Enable, Project().Metronome->Metronome_Enabled());
}

void Commands::ToggleMetronomeOnPlayback()
{
    ToggleSetting(core::Msg_Metronome_SetOnPlayback, Project().Metronome->Metronome_PlayerEnabled());
}

void Commands::ToggleMetronomeOnRecording()
{
    ToggleSetting(core::Msg_Metronome_SetOnRecording, Project().Metronome->Metronome_RecorderEnabled());
}

void Commands::ToggleJumpBack()
{
    auto& jumpBack = m_environment.config.Playback_Jumpback;
    jumpBack = jumpBack == 0 ? 1 : 0;
}

void Commands::SetMasterVolume(std::int32_t volume)
{
    Send(core::Msg_Master_SetVolume, std::clamp(volume, 0, 100));
}

void Commands::SetMasterMute(bool mute)
{
    Send(core::Msg_Master_SetMute, mute ? core::kTrue : core::kFalse);
}

void Commands::Export(std::int32_t format)
{
    const bool wma = format == audio::AudioExport::kWma;
    const core::FileType type =
        wma ? core::FileType{"Windows media audio files", "*.wma"} : core::FileType{"Wave files", "*.wav"};
    const std::string name =
        core::FileExtensionCut(core::FileNameOfPath(Project().ProjectPath())) + (wma ? ".wma" : ".wav");
    const auto path = m_environment.ports.fileDialogs.Save("Export project", {type, {"All files", "*.*"}},
                                                           Project().ProjectPath().empty() ? "" : name);
    if (path) {
        Project().util_StopIfPlayingOrRecording();
        m_windows.ExportProject(format, *path);
    }
}

void Commands::Compress()
{
    const core::Answer answer = m_environment.ports.messages.Ask(
        "This will convert all the recorded audio files to windows media audio (WMA) files."
        "This will reduce the space used by the project, but will increase the cpu usage  during playback."
        "Continue ? (you can later use the undo function to remove the changes)",
        core::Buttons::YesNo, core::Icon::Question, "Compress project");
    if (answer == core::Answer::Yes) {
        m_windows.CompressProject();
    }
}

void Commands::About()
{
    m_environment.ports.messages.Show("Velmora\nVersion: " VELMORA_VERSION, core::Icon::Information, "About...");
}

void Commands::AddFiles(const std::vector<std::string>& paths, core::ClassID channel)
{
    const auto isProject = [](const std::string& path) { return core::LowerCase(path).ends_with(kProjectEnding); };
    if (const auto found = std::ranges::find_if(paths, isProject); found != paths.end()) {
        m_workspace.OpenFile(*found);
        return;
    }
    const core::ClassID target = ChannelForFiles(channel);
    if (target == core::kUnsetFloat) {
        m_environment.ports.messages.Show("Please select a channel from the list", core::Icon::Exclamation);
        return;
    }
    bool recorded = false;
    double timePos = Project().Player_LTimePos();
    for (const std::string& path : paths) {
        auto clip = controls::NewClipOf(Project(), path);
        if (!clip) {
            continue;
        }
        if (!recorded) {
            Project().Undo->AddUndo("add audio file", project::kUndoEvents, target);
            recorded = true;
        }
        clip->wave.ChannelID = target;
        clip->wave.AddTimePosMS = timePos;
        clip->wave.SelectNewEvent = true;
        Send(core::Msg_AddEvent_Wave, clip->wave);
        timePos += clip->lengthMS;
    }
}

core::ClassID Commands::ChannelForFiles(core::ClassID wanted) const
{
    for (const core::ClassID id : {wanted, Project().Selected_MusicChannel(), Project().util_GetFirstChannelID()}) {
        if (Project().util_ChannelExists(id)) {
            return id;
        }
    }
    return core::kUnsetFloat;
}

} // namespace velmora::app
