#pragma once

#include "app/ChildWindows.h"
#include "app/Commands.h"
#include "app/KeyCommands.h"
#include "app/MainWindowModel.h"
#include "app/MenuModel.h"
#include "app/WindowState.h"
#include "app/Workspace.h"
#include "core/Environment.h"

#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <string>

class QKeyEvent;

namespace velmora::app {

class HelpWindow;
class MainPanel;
class MenuBar;

/// The main window: shows the present project, and turns what the user does into commands. Holds almost no state of
/// its own. `WindowViews` brings it what the document tells its views.
class frmMain final : public QMainWindow, public ChildWindows, private WorkspaceListener, private MainWindowView {
public:
    /// `environment` outlives this.
    explicit frmMain(core::Environment& environment);
    ~frmMain() override;

    app::Workspace& Workspace() { return m_workspace; }
    MainPanel& Panel() { return *m_panel; }

    /// A project begins: listens to it, before anything else of the window does.
    void InitializeMainWindow();
    void InitializeMusicFrame();
    void InitializeVoiceFrame();
    /// False refuses all input but that to other windows.
    void EnableMainWindow(bool enable);

    /// Shows the window where `state` tells, as far as there still is a screen.
    void Place(const WindowState& state);
    /// Notes where the window is.
    void NotePlace(WindowState& state) const;

    void ExportProject(std::int32_t format, const std::string& path) override;
    void CompressProject() override;
    void ShowHelpTopic(std::string_view topic) override;
    void CloseMainWindow() override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void ProjectEnds() override;
    void PathsChanged() override;
    void MarksChanged() override;
    void ToolbarChanged() override;
    void TimeChanged() override;
    void MasterChanged() override;

    bool PressKey(const QKeyEvent& event);
    core::ClassID ChannelAt(const QPoint& place) const;
    /// A modal child window has gone.
    void ExportForm_Closed();

    core::Environment& m_environment;
    app::Workspace m_workspace;
    Commands m_commands;
    KeyCommands m_keys;
    MenuModel m_menus;
    std::unique_ptr<MainWindowModel> m_model;
    MainPanel* m_panel;
    MenuBar* m_menuBar = nullptr;
    HelpWindow* m_help = nullptr;
    bool m_enabled = true;
    /// Who had the focus when the window was disabled.
    QPointer<QWidget> m_focusBefore;
};

/// The port through which the document reaches the window; until there is one, nothing happens.
class WindowViews final : public core::Views {
public:
    void SetWindow(frmMain* window) { m_window = window; }

    void InitializeMainWindow() override;
    void InitializeMusicFrame() override;
    void InitializeVoiceFrame() override;
    void EnableMainWindow(bool enable) override;

private:
    frmMain* m_window = nullptr;
};

} // namespace velmora::app
