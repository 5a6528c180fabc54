#include "app/Startup.h"

#include "core/Paths.h"
#include "core/ProgramFolders.h"
#include "core/TextUtilities.h"

#include <algorithm>

namespace velmora::app {
namespace {

constexpr char kExample[] = "\\Welcome (Bar style).audioproj";

} // namespace

Startup::Startup(core::Environment& environment, Workspace& workspace, ChildWindows& windows)
    : m_environment(environment)
    , m_workspace(workspace)
    , m_windows(windows)
{
}

Startup::~Startup() = default;

std::string Startup::ProjectFromCommandLine(const std::vector<std::string>& arguments)
{
    std::string line;
    for (const std::string& argument : arguments) {
        line += (line.empty() ? "" : " ") + argument;
    }
    std::string path(core::Trim(line));
    std::erase(path, '"');
    return core::InternalPath(path);
}

bool Startup::StartEngine()
{
    m_environment.paths.LoadPaths(m_environment.ports.shellFolders.AppExe() + "\\paths.cfg");
    m_environment.LoadSettings();
    core::MakeProgramFolders(m_environment);
    core::ClearAbandonedProjects(m_environment);
    m_session = audio::SoundSession::Start(m_environment);
    return m_session != nullptr;
}

bool Startup::OpenFirstProject(const std::string& fromCommandLine)
{
    std::string path = fromCommandLine;
    if (path.empty() && m_environment.config.Global_FirstRun) {
        path = m_environment.paths.GetPath("examples") + kExample;
        if (!m_environment.files.FileExists(path)) {
            path.clear();
        }
    }
    m_workspace.Begin();
    if (path.empty()) {
        m_workspace.CreateNewProject();
    } else {
        m_workspace.LoadFile(path);
    }
    if (m_workspace.Project()->GetAudioPath().empty()) {
        m_environment.ports.messages.Show("Error creating project, the program will now exit", core::Icon::Critical);
        return false;
    }
    return true;
}

void Startup::Greet()
{
    if (!m_environment.config.Global_FirstRun) {
        return;
    }
    const core::Answer answer = m_environment.ports.messages.Ask("This is the first time you run Velmora.\n"
                                                                 "Would you like to read the quick guide ?");
    if (answer == core::Answer::Yes) {
        m_windows.ShowHelpTopic("html\\quick guide.html");
    }
    m_environment.config.Global_FirstRun = false;
}

void Startup::OfferAbandonedTakes()
{
    m_workspace.Project()->util_OfferAbandonedTakes();
}

void Startup::ShutDown()
{
    if (!m_session) {
        return;
    }
    if (!m_environment.SaveSettings()) {
        m_environment.ports.messages.Show(
            "The settings could not be saved. Make room on the disk, and check the folder:\n" +
                m_environment.paths.GetPath("config"),
            core::Icon::Exclamation);
    }
    m_workspace.End();
    m_session.reset();
}

} // namespace velmora::app
