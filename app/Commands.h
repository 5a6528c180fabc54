#pragma once

#include "app/ChildWindows.h"
#include "app/Workspace.h"
#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/MsgParametersClass.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::project {
class Channel_Class;
}

namespace velmora::app {

/// Buttons of the toolbar, by their index.
enum class ToolbarButton : std::int32_t {
    New,
    Open,
    Save,
    Undo,
    Redo,
    Play,
    Stop,
    Rewind,
    Back5,
    Ahead5,
    Record,
    RepeatRecording,
    AddMark,
};

/// What the menus, the toolbar and the keys do to the present project. Nothing here knows a widget. Interface thread
/// only.
class Commands {
public:
    /// All outlive this.
    Commands(core::Environment& environment, Workspace& workspace, ChildWindows& windows);
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    core::Environment& Environment() const { return m_environment; }
    app::Workspace& Workspace() const { return m_workspace; }
    ChildWindows& Windows() const { return m_windows; }
    project::ProjectFile_Class& Project() const { return *m_workspace.Project(); }

    /// The sender of what is sent from here, for the present project.
    void SetSender(core::ClassID sender) { m_sender = sender; }
    void Send(std::int32_t msgID, core::MsgParametersClass& params) const;
    void Send(std::int32_t msgID, double value = 0) const;

    void Toolbar(ToolbarButton button);

    void Undo();
    void Redo();
    void ClearChannel(core::ClassID channel);
    void ChangeChannelName(core::ClassID channel);
    void AddMusicChannel();
    void AddVoiceChannel();
    void DeleteChannel(core::ClassID channel);

    /// `title` of the input box; the mark lands at the cursor.
    void AddMark(std::string_view title);
    std::string AddMarkToolbarTitle() const;
    /// By its place in the list; an index without a mark does nothing.
    void JumpToMark(std::int32_t index);
    void DeleteMark(std::int32_t index);

    void ToggleMetronome();
    void ToggleMetronomeOnPlayback();
    void ToggleMetronomeOnRecording();
    void ToggleJumpBack();

    /// 0..100; what is beyond is limited.
    void SetMasterVolume(std::int32_t volume);
    void SetMasterMute(bool mute);

    /// Asks for the file; `format` is that of `audio::AudioExport`.
    void Export(std::int32_t format);
    /// Asks first.
    void Compress();
    void About();

    /// Puts sound files behind one another on a channel, from the cursor on, as one step; the unset value takes the
    /// selected music channel, else the first channel. A project file is opened instead. `paths` are internal.
    void AddFiles(const std::vector<std::string>& paths, core::ClassID channel);

private:
    void Seek(std::int32_t fromMS, std::int32_t toMS) const;
    core::ClassID ChannelForFiles(core::ClassID wanted) const;
    void ToggleSetting(std::int32_t msgID, bool now) const;
    void EditChannels(const char* undoTitle, std::int32_t msgID, core::ClassID channel);

    core::Environment& m_environment;
    app::Workspace& m_workspace;
    ChildWindows& m_windows;
    core::ClassID m_sender = -1;
};

} // namespace velmora::app
