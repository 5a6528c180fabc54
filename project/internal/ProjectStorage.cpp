#include "project/internal/ProjectStorage.h"

#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "core/Units.h"
#include "project/AudioFileCheck.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/LoadContext.h"
#include "project/LockedInterface.h"
#include "project/ProjectFile_Class.h"
#include "project/internal/ChannelRegistry.h"
#include "project/internal/FolderTransfer.h"
#include "project/internal/PathText.h"
#include "project/internal/ProjectFileText.h"
#include "project/internal/ProjectText.h"
#include "project/internal/TakeRecovery.h"

#include <optional>
#include <utility>

namespace velmora::project {
namespace {

constexpr std::int32_t kNewVoiceChannels = 4;

std::string WaveCacheIn(const std::string& folder)
{
    return folder + "\\wavecache.dat";
}

} // namespace

ProjectStorage::ProjectStorage(ProjectFile_Class& project, ChannelRegistry& channels)
    : m_project(project)
    , m_channels(channels)
    , m_environment(project.Environment())
    , m_folder(m_environment)
{
}

bool ProjectStorage::Create()
{
    if (m_created) {
        m_environment.ports.messages.Show(
            "ProjectFile::CreateNewProject already called, it is recommended to use another\n"
            "instance instead of call this function again.",
            core::Icon::Exclamation);
        return false;
    }
    std::string folder;
    auto lock = ProjectFolder::MakeNew(m_environment, folder);
    if (!lock) {
        return false;
    }
    EnterFolder(folder, std::move(lock));
    m_environment.ports.views.LoadWaveCache({});

    Send(core::Msg_AddMusicChannel);
    for (std::int32_t i = 0; i < kNewVoiceChannels; ++i) {
        Send(core::Msg_AddVoiceChannel);
    }
    core::MsgParametersClass mark;
    mark.MarkTitle = "Start";
    m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), core::Msg_AddMark, mark);
    Send(core::Msg_Master_SetMute);
    Send(core::Msg_Refresh);
    Send(core::Msg_EvEd_ViewPosChanged);
    m_isNewProject = true;
    m_created = true;
    return true;
}

bool ProjectStorage::Load(OpenedProject opened, bool ignoreMissing)
{
    core::Views& views = m_environment.ports.views;
    m_mode = opened.mode;
    const bool edits = m_mode == OpenMode::Edit;
    if (edits && !opened.lock) {
        // The project before this one held it, and has gone by now.
        opened.lock = m_environment.files.LockFileCreate(ProjectFolder::LockFileIn(opened.audioFolder));
        if (!opened.lock) {
            m_environment.ports.messages.Show("Error opening project", core::Icon::Exclamation);
            return false;
        }
    }
    EnterFolder(opened.audioFolder, std::move(opened.lock));
    if (edits) {
        views.LoadWaveCache(m_environment.files.ReadTextFile(WaveCacheIn(opened.audioFolder)));
    }
    if (!ReadInto(opened, ignoreMissing)) {
        m_channels.Clear();
        EnterFolder({}, nullptr);
        return false;
    }

    Send(core::Msg_Master_SetMute);
    Send(core::Msg_Refresh);
    if (edits) {
        TakeRecovery(m_project).OfferOwn();
    }
    DeleteUnusedFiles();
    if (edits) {
        views.RemoveUnusedWaveCacheItems();
    }
    Send(core::Msg_EvEd_ViewPosChanged);
    m_projectPath = opened.path;
    m_created = true;
    return true;
}

bool ProjectStorage::ReadInto(const OpenedProject& opened, bool ignoreMissing)
{
    if (!m_project.LoadXMLData(opened.data, true, true, true)) {
        m_environment.ports.messages.Show("Error loading file", core::Icon::Exclamation);
        return false;
    }
    return opened.mode == OpenMode::Edit || ignoreMissing || m_missingFiles.empty();
}

bool ProjectStorage::Save(std::string_view path)
{
    core::Files& files = m_environment.files;
    const std::string oldFolder = m_folder.GetAudioPath();
    if (oldFolder.empty()) {
        m_environment.ports.messages.Show("Audio path empty, enter loop ?\nSaveProject", core::Icon::Critical);
        return false;
    }
    const bool same =
        path.empty() || path == m_projectPath || (!m_projectPath.empty() && files.SameFile(path, m_projectPath));
    const std::string target = same ? m_projectPath : std::string(path);
    if (target.empty() || m_mode == OpenMode::ReadOnly) {
        return false;
    }

    const std::string newFolder = ProjectFolder::AudioFolderOf(target);
    std::optional<FolderTransfer> transfer;
    if (!same && !files.SameFile(newFolder, oldFolder)) {
        EndTake();
        transfer.emplace(m_environment, oldFolder, newFolder);
        if (!transfer->Prepare(m_isNewProject)) {
            return false;
        }
    }
    const std::string text = WriteProjectFileText(GetSharedXML().Text());
    if (transfer) {
        if (!WriteWithCopy(target, text, *transfer)) {
            return false;
        }
        EnterFolder(newFolder, transfer->Commit());
    } else if (!files.WriteTextFile(target, text)) {
        return ReportNotWritten();
    }

    // The cache is made anew where it is missing, so a failure here costs nothing but time.
    const std::string cache = m_environment.ports.views.WaveCache();
    if (!cache.empty()) {
        files.WriteTextFile(WaveCacheIn(m_folder.GetAudioPath()), cache);
    }
    m_isNewProject = false;
    m_projectPath = target;
    m_project.Modified = false;
    m_project.Recorder->ProjectSaved(oldFolder);
    return true;
}

void ProjectStorage::EndTake() const
{
    if (m_project.Recorder->isRecording()) {
        Send(core::Msg_Recorder_Stop);
    }
}

bool ProjectStorage::WriteWithCopy(const std::string& path, const std::string& text, FolderTransfer& transfer)
{
    core::Files& files = m_environment.files;
    const LockedInterface locked(m_project);
    const std::string written = path + ".velmora-new";
    if (!files.WriteTextFile(written, text)) {
        return ReportNotWritten();
    }
    if (!transfer.Copy() || !transfer.Swap()) {
        files.DeleteFile(written);
        return false;
    }
    if (!files.Replace(written, path)) {
        files.DeleteFile(written);
        return ReportNotWritten();
    }
    return true;
}

bool ProjectStorage::ReportNotWritten() const
{
    m_environment.ports.messages.Show("Error creating file", core::Icon::Exclamation);
    return false;
}

void ProjectStorage::DeleteUnusedFiles()
{
    if (m_mode == OpenMode::ReadOnly || !m_whole) {
        return;
    }
    m_folder.DeleteUnusedFiles(ClipPaths());
}

std::unordered_set<std::string> ProjectStorage::FilesInUse() const
{
    std::unordered_set<std::string> names;
    for (const std::string& path : ClipPaths()) {
        if (!IsAbsolute(path)) {
            names.insert(path.substr(path.starts_with('\\') ? 1 : 0));
        }
    }
    return names;
}

std::vector<std::string> ProjectStorage::ClipPaths() const
{
    std::vector<std::string> paths;
    m_channels.ForEach([&paths](const Channel_Class& channel) {
        for (const EventRow* row : channel.ChannelData->InTimeOrder()) {
            if (row->EventOBJ) {
                paths.push_back(row->EventOBJ->FilePath);
            }
        }
    });
    return paths;
}

persistence::SharedText ProjectStorage::GetSharedXML() const
{
    return ProjectText(m_project, m_channels).GetSharedXML();
}

bool ProjectStorage::LoadXMLData(std::string_view xml, bool loadIDs, bool loadRecorder, bool checkFiles,
                                 core::ClassID& id)
{
    AudioFileCheck files(m_environment.files, m_folder,
                         m_mode == OpenMode::Edit ? &m_environment.ports.fileNotFound : nullptr);
    LoadContext load(m_environment.ids, checkFiles ? &files : nullptr);
    if (!ProjectText(m_project, m_channels).LoadXMLData(xml, loadIDs, loadRecorder, load, id)) {
        return false;
    }
    if (checkFiles) {
        m_missingFiles = files.Missing();
        m_whole = load.Losses() == 0;
        m_project.Modified = m_project.Modified || !m_whole || files.Replaced();
    }
    return true;
}

void ProjectStorage::EnterFolder(const std::string& folder, std::unique_ptr<core::FileLock> lock)
{
    m_project.Recorder->ProjectFolder = folder;
    m_folder.Enter(folder, std::move(lock));
}

void ProjectStorage::Send(std::int32_t msgID) const
{
    core::MsgParametersClass params;
    m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), msgID, params);
}

} // namespace velmora::project
