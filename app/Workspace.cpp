#include "app/Workspace.h"

#include "app/ShownText.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"

#include <utility>
#include <vector>

namespace velmora::app {
namespace {

constexpr std::chrono::milliseconds kFirstRedrawDelay{500};

const std::vector<core::FileType>& ProjectTypes()
{
    static const std::vector<core::FileType> types{{"Audio Project", "*.audioproj"}, {"All files", "*.*"}};
    return types;
}

} // namespace

Workspace::Workspace(core::Environment& environment, WorkspaceListener& listener)
    : m_environment(environment)
    , m_listener(listener)
    , m_refreshTimer(environment.ports.timers.Create(kFirstRedrawDelay, true, [this] { Refresh(); }))
{
}

Workspace::~Workspace()
{
    End();
}

std::string Workspace::Title() const
{
    const std::string path = m_project ? m_project->ProjectPath() : std::string();
    return path.empty() ? "Velmora " : "Velmora [" + ShownPath(path) + "]";
}

void Workspace::Begin()
{
    End();
    m_environment.ids.Reset();
    m_project = std::make_unique<project::ProjectFile_Class>(m_environment);
    m_project->InitializeClass();
}

void Workspace::End()
{
    if (m_project) {
        m_listener.ProjectEnds();
        m_project.reset();
    }
}

void Workspace::New()
{
    WhenIdle([this] {
        StopAll();
        AllChannelsLiveOff();
        if (AskToSave()) {
            MakeNew();
        }
    });
}

void Workspace::Open()
{
    WhenIdle([this] {
        StopAll();
        if (!AskToSave()) {
            return;
        }
        if (const auto path = m_environment.ports.fileDialogs.Open("Load project", ProjectTypes())) {
            LoadFile(*path);
        }
    });
}

void Workspace::OpenRecent(std::int32_t index)
{
    const std::string path = m_environment.recent.GetFile_ByIndex(index);
    if (!path.empty() && m_environment.files.FileExists(path)) {
        OpenFile(path);
    }
}

void Workspace::OpenFile(const std::string& path)
{
    WhenIdle([this, path] {
        StopAll();
        if (AskToSave()) {
            LoadFile(path);
        }
    });
}

bool Workspace::Save()
{
    StopAll();
    const std::string path = m_project->ProjectPath();
    return path.empty() ? SaveAs() : SaveTo(path);
}

bool Workspace::SaveAs()
{
    StopAll();
    const auto path = m_environment.ports.fileDialogs.Save("Save project", ProjectTypes(), m_project->ProjectPath());
    return path && SaveTo(*path);
}

bool Workspace::MayClose()
{
    if (!m_project) {
        return true;
    }
    StopAll();
    return AskToSave();
}

bool Workspace::LoadFile(const std::string& path)
{
    core::MessageBoxes& messages = m_environment.ports.messages;
    const core::NotesScope notes(messages, {{}, path + "\nChoose another copy of it, or another project."});
    AllChannelsLiveOff();
    auto opened = project::OpenedProject::Open(m_environment, path, project::OpenMode::Edit, m_project->GetAudioPath());
    if (!opened) {
        messages.Show("Error loading project", core::Icon::Exclamation);
        if (!HasDocument()) {
            CreateNewProject();
        }
        return false;
    }
    if (HasDocument()) {
        Begin();
    }
    if (!m_project->LoadProject(std::move(*opened))) {
        messages.Show("Error loading project", core::Icon::Exclamation);
        MakeNew();
        return false;
    }
    // Whom the file marks as live nobody hears yet.
    AllChannelsLiveOff();
    m_environment.recent.AddFile(path);
    m_listener.PathsChanged();
    m_refreshTimer->Start();
    return true;
}

bool Workspace::CreateNewProject()
{
    const bool created = m_project->CreateNewProject();
    m_listener.PathsChanged();
    return created;
}

void Workspace::WhenIdle(std::function<void()> command)
{
    if (m_project) {
        // The command may replace the project, and with it the bus.
        const auto bus = m_project->MsgSender;
        bus->WhenIdle(std::move(command));
    }
}

void Workspace::StopAll()
{
    m_project->util_StopIfPlayingOrRecording();
}

bool Workspace::AskToSave()
{
    if (!m_project->Modified) {
        return true;
    }
    const core::Answer answer = m_environment.ports.messages.Ask(
        "The project was modified, would you like to save first ?", core::Buttons::YesNoCancel);
    return answer == core::Answer::Yes ? Save() : answer == core::Answer::No;
}

bool Workspace::SaveTo(const std::string& path)
{
    const core::NotesScope notes(m_environment.ports.messages,
                                 {{}, path + "\nMake room on the disk, or save to another folder."});
    if (!m_project->SaveProject(path)) {
        return false;
    }
    m_environment.recent.AddFile(m_project->ProjectPath());
    m_listener.PathsChanged();
    return true;
}

bool Workspace::MakeNew()
{
    Begin();
    return CreateNewProject();
}

void Workspace::AllChannelsLiveOff()
{
    Send(core::Msg_AllChannelsLiveOff);
}

void Workspace::Refresh()
{
    if (m_project && HasDocument()) {
        Send(core::Msg_Refresh);
    }
}

void Workspace::Send(std::int32_t msgID)
{
    core::MsgParametersClass params;
    m_project->MsgSender->SendMsg(core::kNoSender, msgID, params);
}

bool Workspace::HasDocument() const
{
    return !m_project->GetAudioPath().empty();
}

} // namespace velmora::app
