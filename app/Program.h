#pragma once

#include "app/NamedMutex.h"
#include "app/QtMessageBoxes.h"
#include "app/QtSystem.h"
#include "app/Startup.h"
#include "app/UTIL_OpenSaveDialog_Class.h"
#include "app/WindowState.h"
#include "app/frmFileNotFound_DIALOG.h"
#include "app/frmMain.h"
#include "core/Environment.h"
#include "core/PosixFiles.h"

#include <QApplication>
#include <string>
#include <vector>

namespace velmora::app {

/// The program with its window: ports, disk, environment, main window, in the order in which each needs the one before.
/// One per process, after the application object.
class Program {
public:
    Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// From the start to the end of the program; its exit code. `arguments` are those behind the program's name.
    int Run(const std::vector<std::string>& arguments);

private:
    core::Ports Ports();
    void LoadPlace();
    void SavePlace();

    NamedMutex m_mutex{"VelmoraMUTEX"};
    QtMessageBoxes m_messages;
    QtInputBox m_input;
    QtFileDialogs m_fileDialogs;
    QtFileNotFoundQuestion m_fileNotFound{m_fileDialogs};
    QtTimers m_timers;
    QtPendingEvents m_pendingEvents;
    DesktopFolders m_shellFolders;
    DesktopTrash m_trash;
    WindowViews m_views;
    core::PosixFiles m_files;
    core::Environment m_environment;
    frmMain m_window;
    Startup m_startup;
    WindowState m_windowState;
};

/// The whole program: name, look, window, and the project that the application's arguments name; its exit code.
int RunProgram(QApplication& application);

} // namespace velmora::app
