#pragma once

#include "app/Commands.h"
#include "app/MainWindowModel.h"
#include "app/Startup.h"
#include "app/frmMain.h"
#include "audio/SoundSession.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "project/Channel_Class.h"
#include "project/MarkList_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/Undo_Class.h"
#include "tests/support/TestEnvironment.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::app {

/// Notes what is opened.
class NotedWindows final : public ChildWindows {
public:
    void ExportProject(std::int32_t format, const std::string& path) override
    {
        calls.push_back("export " + std::to_string(format) + " " + path);
    }
    void CompressProject() override { calls.push_back("compress"); }
    void ShowHelpTopic(std::string_view topic) override { calls.push_back("help " + std::string(topic)); }
    void CloseMainWindow() override { calls.push_back("close"); }

    std::vector<std::string> calls;
};

/// The commands on a new project, on the device without ears and without a window.
class CommandsFixture : public ::testing::Test, private WorkspaceListener {
protected:
    CommandsFixture();
    ~CommandsFixture() override;

    project::ProjectFile_Class& Project() { return *m_workspace.Project(); }
    testing::ScriptedMessageBoxes& Messages() { return m_environment.ports.messages; }
    testing::ScriptedFileDialogs& Dialogs() { return m_environment.ports.fileDialogs; }
    std::string Path(std::string_view name) const { return m_environment.Path(name); }
    /// A second of silence.
    std::string WriteSound(std::string_view name) const;
    /// The present project under `name`; its path.
    std::string SaveAs(const std::string& name);
    /// Marks the project as changed.
    void Touch() { Project().Modified = true; }
    project::Channel_Class& Voice(std::int32_t i) { return *Project().Chn_GetVoiceChannelObj_by_Index(i); }
    project::Channel_Class& Music(std::int32_t i) { return *Project().Chn_GetMusicChannelObj_by_Index(i); }
    void Select(const project::Channel_Class& channel, std::int32_t msgID);

    testing::TestEnvironment m_environment;
    std::unique_ptr<audio::SoundSession> m_session;
    NotedWindows m_windows;
    Workspace m_workspace;
    Commands m_commands;
    int m_ends = 0;
    int m_pathChanges = 0;

private:
    void ProjectEnds() override { ++m_ends; }
    void PathsChanged() override { ++m_pathChanges; }
};

/// The main window over scripted ports, started as the program starts it.
class MainWindowFixture : public ::testing::Test {
protected:
    MainWindowFixture();
    ~MainWindowFixture() override;

    /// With an empty path a new project.
    void Start(const std::string& project = {});
    project::ProjectFile_Class& Project() { return *m_window->Workspace().Project(); }
    std::string Path(std::string_view name) const { return m_folder.Path(name); }
    /// The action of an entry; null when there is none. `path` parts the names by "/", the menu's first.
    QAction* Entry(const QString& path) const;
    void ClickTool(int index);

    testing::TemporaryFolder m_folder;
    testing::ScriptedPorts m_ports;
    WindowViews m_views;
    core::PosixFiles m_disk;
    testing::FaultyFiles m_files{m_disk};
    std::unique_ptr<core::Environment> m_environment;
    std::unique_ptr<frmMain> m_window;
    std::unique_ptr<Startup> m_startup;
};

} // namespace velmora::app
