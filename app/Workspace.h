#pragma once

#include "core/Environment.h"
#include "project/ProjectFile_Class.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::app {

/// Who shows the present project.
class WorkspaceListener {
public:
    virtual ~WorkspaceListener() = default;
    /// The present project is about to end: nothing may refer to it afterwards.
    virtual void ProjectEnds() = 0;
    /// The project's path or the recent files changed.
    virtual void PathsChanged() = 0;
};

/// The present project and the commands that replace or write it. Each first stops playback and recording, and asks
/// to save what would be lost; commands that replace the project wait until the bus has delivered. Paths are in the
/// internal form. The sound must have started. Interface thread only.
class Workspace {
public:
    /// Both outlive this.
    Workspace(core::Environment& environment, WorkspaceListener& listener);
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// Null before `Begin` and after `End`.
    project::ProjectFile_Class* Project() const { return m_project.get(); }
    /// "Velmora", with the project's path if it has one.
    std::string Title() const;

    /// An initialised project, neither new nor loaded.
    void Begin();
    /// Drops the project.
    void End();

    void New();
    void Open();
    /// Does nothing for an entry that is gone from disk.
    void OpenRecent(std::int32_t index);
    /// Asks to save, then loads `path`.
    void OpenFile(const std::string& path);
    /// False: not saved, after a message or a cancel.
    bool Save();
    bool SaveAs();
    /// Whether the window may close; asks to save.
    bool MayClose();

    /// Loads `path` in place of the present project. A file that does not pass the checks leaves that one as it is;
    /// without one, and after a failure behind the checks, a new project is made. False for any failure.
    bool LoadFile(const std::string& path);
    /// Turns a project that was only begun into a new one.
    bool CreateNewProject();

    /// Runs `command` once no message is being delivered.
    void WhenIdle(std::function<void()> command);

private:
    void StopAll();
    bool AskToSave();
    bool SaveTo(const std::string& path);
    bool MakeNew();
    void AllChannelsLiveOff();
    void Refresh();
    void Send(std::int32_t msgID);
    /// A new or loaded project is there.
    bool HasDocument() const;

    core::Environment& m_environment;
    WorkspaceListener& m_listener;
    std::unique_ptr<project::ProjectFile_Class> m_project;
    /// `timer_UpdateEventsEditor`: delays the first full redraw of a loaded project until the window has been laid out.
    std::unique_ptr<core::Timer> m_refreshTimer;
};

} // namespace velmora::app
