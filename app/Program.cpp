#include "app/Program.h"

#include "app/QtText.h"
#include "controls/Icons.h"
#include "controls/LookStyle.h"
#include "core/Paths.h"
#include "soundlayer/soundlayer.h"

#include <QDir>
#include <QFontDatabase>
#include <QTimer>
#include <chrono>

namespace velmora::app {
namespace {

constexpr int kFailed = 1;
/// After which the window has been painted on any machine that is worth the wait.
constexpr std::chrono::milliseconds kUntilPainted{200};

} // namespace

Program::Program()
    : m_environment(Ports(), m_files)
    , m_window(m_environment)
    , m_startup(m_environment, m_window.Workspace(), m_window)
{
    m_views.SetWindow(&m_window);
}

core::Ports Program::Ports()
{
    return {m_messages,      m_input,        m_fileDialogs, m_fileNotFound, m_timers,
            m_pendingEvents, m_shellFolders, m_trash,       m_views};
}

int Program::Run(const std::vector<std::string>& arguments)
{
    // Before the current folder changes, which a relative path counts from.
    const std::string project = Startup::ProjectFromCommandLine(arguments);
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    if (!m_startup.StartEngine()) {
        return kFailed;
    }
    LoadPlace();
    Sound_HoldCodecs(1);
    if (!m_startup.OpenFirstProject(project)) {
        Sound_HoldCodecs(0);
        m_startup.ShutDown();
        return kFailed;
    }
    m_window.Place(m_windowState);
    QTimer::singleShot(kUntilPainted, [] { Sound_HoldCodecs(0); });
    m_startup.Greet();
    m_startup.OfferAbandonedTakes();
    const int code = QApplication::exec();
    SavePlace();
    m_startup.ShutDown();
    return code;
}

void Program::LoadPlace()
{
    m_windowState.Load(m_files, m_environment.paths.GetPath("config"));
    m_fileDialogs.lastFolder = m_windowState.lastFolder;
}

void Program::SavePlace()
{
    m_window.NotePlace(m_windowState);
    m_windowState.lastFolder = m_fileDialogs.lastFolder;
    m_windowState.Save(m_files, m_environment.paths.GetPath("config"));
}

int RunProgram(QApplication& application)
{
    QApplication::setApplicationName("velmora");
    QApplication::setApplicationVersion(VELMORA_VERSION);
    QApplication::setDesktopFileName("velmora");
    // The window decides, by its questions.
    QApplication::setQuitOnLastWindowClosed(false);
    controls::InstallLook(application);
    if (QFontDatabase::families().isEmpty()) {
        // No window could say so.
        qWarning("No fonts are installed, so no text can be shown. Install fonts-dejavu-core.");
    }
    QApplication::setWindowIcon(controls::ProgramIcon());

    std::vector<std::string> arguments;
    for (const QString& argument : QApplication::arguments().sliced(1)) {
        arguments.push_back(argument.toStdString());
    }
    return Program().Run(arguments);
}

} // namespace velmora::app
