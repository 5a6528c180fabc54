#include "app/KeyCommands.h"

#include "audio/AudioPlayer_Class.h"
#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "core/Units.h"
#include "project/Channel_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

#include <algorithm>

namespace velmora::app {
namespace {

constexpr std::int32_t kStep = 10;
/// By which the changes of one channel's sliders and keys make one step of undo.
constexpr std::int32_t kSliderTag = 10;
constexpr char kUndoTitle[] = "change channel properties";

bool IsDigit(char key)
{
    return key >= '0' && key <= '9';
}

bool Switches(char key)
{
    return key == 'P' || key == 'R' || key == 'L' || key == 'M' || key == 'S';
}

bool Plain(const KeyPress& press)
{
    return !press.shift && !press.ctrl && !press.alt;
}

bool PlainOrShift(const KeyPress& press)
{
    return !press.ctrl && !press.alt;
}

} // namespace

KeyCommands::KeyCommands(Commands& commands)
    : m_commands(commands)
{
}

bool KeyCommands::Press(const KeyPress& press)
{
    if (press.repeated && Switches(press.key)) {
        return true;
    }
    return Transport(press) || (PlainOrShift(press) && (Channel(press) || Select(press)));
}

bool KeyCommands::Transport(const KeyPress& press)
{
    const bool plain = Plain(press);
    if (press.key == 'R') {
        const bool recording = m_commands.Project().Recorder->isRecording();
        if (recording) {
            m_commands.Toolbar(ToolbarButton::Stop);
        } else if (plain) {
            m_commands.Toolbar(ToolbarButton::Record);
        } else if (press.ctrl && !press.shift && !press.alt) {
            m_commands.Toolbar(ToolbarButton::RepeatRecording);
        }
        return true;
    }
    if (!plain) {
        return false;
    }
    switch (press.key) {
    case 'P':
        m_commands.Toolbar(m_commands.Project().Player->isPlaying() ? ToolbarButton::Stop : ToolbarButton::Play);
        return true;
    case 'B':
        m_commands.Toolbar(ToolbarButton::Back5);
        return true;
    case 'N':
        m_commands.Toolbar(ToolbarButton::Ahead5);
        return true;
    case 'W':
        m_commands.Toolbar(ToolbarButton::Rewind);
        return true;
    case 'L':
        if (const project::Channel_Class* voice = Selected(false)) {
            Toggle(*voice, core::Msg_Channel_SetLive, voice->LiveStatus);
        }
        return true;
    default:
        return false;
    }
}

bool KeyCommands::Channel(const KeyPress& press)
{
    const bool sign = press.key == '+' || press.key == '-' || press.key == '*' || press.key == '/';
    if (!(sign && press.numpad) && press.key != 'M' && press.key != 'S' && press.key != 'C') {
        return false;
    }
    const project::Channel_Class* channel = Selected(press.shift);
    if (channel == nullptr) {
        return true;
    }
    switch (press.key) {
    case '+':
    case '-':
        ChangeProperty(*channel, core::Msg_Channel_SetVolume,
                       std::clamp(channel->Volume + (press.key == '+' ? kStep : -kStep), 0, 100));
        break;
    case '*':
    case '/':
        ChangeProperty(*channel, core::Msg_Channel_SetPan,
                       std::clamp(channel->Pan + (press.key == '*' ? kStep : -kStep), -100, 100));
        break;
    case 'C':
        ChangeProperty(*channel, core::Msg_Channel_SetPan, 0);
        break;
    case 'M':
        m_commands.Project().Undo->AddUndo(kUndoTitle, project::kUndoChannel, channel->ClassID());
        Toggle(*channel, core::Msg_Channel_SetMute, channel->Mute);
        break;
    default:
        m_commands.Project().Undo->AddUndo(kUndoTitle, project::kUndoChannel, channel->ClassID());
        Toggle(*channel, core::Msg_Channel_SetSolo, channel->Solo);
        break;
    }
    return true;
}

bool KeyCommands::Select(const KeyPress& press)
{
    if (!IsDigit(press.key) || (press.numpad && press.key != '0')) {
        return false;
    }
    const std::int32_t index = press.key == '0' ? 9 : press.key - '1';
    const project::ProjectFile_Class& project = m_commands.Project();
    const project::Channel_Class* channel =
        press.shift ? project.Chn_GetMusicChannelObj_by_Index(index) : project.Chn_GetVoiceChannelObj_by_Index(index);
    if (channel != nullptr) {
        core::MsgParametersClass params;
        params.SelectChannelID = channel->ClassID();
        m_commands.Send(press.shift ? core::Msg_SelectMusicChannel : core::Msg_SelectVoiceChannel, params);
    }
    return true;
}

project::Channel_Class* KeyCommands::Selected(bool music) const
{
    const project::ProjectFile_Class& project = m_commands.Project();
    return project.Chn_GetChannelClassObj_by_ID(music ? project.Selected_MusicChannel()
                                                      : project.Selected_VoiceChannel());
}

void KeyCommands::ChangeProperty(const project::Channel_Class& channel, std::int32_t msgID, std::int32_t value)
{
    project::Undo_Class& undo = *m_commands.Project().Undo;
    if (undo.CurUndo_SpecialID() != kSliderTag || undo.CurUndo_ChannelID() != channel.ClassID()) {
        undo.AddUndo(kUndoTitle, project::kUndoChannel, channel.ClassID(), kSliderTag);
    }
    core::MsgParametersClass params;
    params.ChannelID = channel.ClassID();
    params.Value = value;
    m_commands.Send(msgID, params);
}

void KeyCommands::Toggle(const project::Channel_Class& channel, std::int32_t msgID, bool now)
{
    core::MsgParametersClass params;
    params.ChannelID = channel.ClassID();
    params.Value = now ? core::kFalse : core::kTrue;
    m_commands.Send(msgID, params);
}

} // namespace velmora::app
