#include "audio/ProjectCompression.h"

#include "audio/internal/EncodedFile.h"
#include "audio/internal/ExportGuards.h"
#include "audio/internal/WmaConversion.h"
#include "core/MsgIds.h"
#include "core/TextUtilities.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/LockedInterface.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

#include <algorithm>
#include <map>

namespace velmora::audio {
namespace {

constexpr std::string_view kWaveEnding = ".wav";

bool InProjectFolder(const std::string& path)
{
    return path.find(':') == std::string::npos;
}

} // namespace

ProjectCompression::ProjectCompression(core::Environment& environment, project::ProjectFile_Class& project,
                                       CompressionProgress& progress)
    : m_environment(environment)
    , m_project(project)
    , m_progress(progress)
    , m_alive(std::make_shared<const bool>(true))
{
}

ProjectCompression::~ProjectCompression() = default;

void ProjectCompression::StartCompression()
{
    if (m_compressing) {
        return;
    }
    m_project.MsgSender->WhenIdle([this, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired()) {
            Run();
        }
    });
}

void ProjectCompression::Run()
{
    const FlagScope compressing(m_compressing);
    m_cancelled = false;
    m_errors = 0;
    m_errorLog.clear();
    m_project.util_StopIfPlayingOrRecording();
    Collect();
    core::MessageBoxes& messages = m_environment.ports.messages;
    if (m_takes.empty()) {
        m_outcome = Outcome::NothingToDo;
        messages.Show("There are no files to compress");
        return;
    }
    const project::LockedInterface locked(m_project);
    m_project.Undo->AddUndo("compress project", project::kUndoProject);
    if (!ConvertAll()) {
        m_outcome = Outcome::Cancelled;
        RemoveNewFiles();
        messages.Show("Compression cancelled");
        m_project.Undo->Undo();
        return;
    }
    RePoint();
    m_outcome = Outcome::Done;
    Report();
}

void ProjectCompression::Collect()
{
    m_takes.clear();
    m_takenFiles.clear();
    m_allBytes = 0;
    std::set<std::string> seen;
    std::vector<std::string> names;
    for (const auto& event : WaveEvents()) {
        const std::string& path = event->FilePath;
        const std::string file = FileOf(path);
        m_takenFiles.insert(file);
        if (InProjectFolder(path) && core::LowerCase(path).ends_with(kWaveEnding) && seen.insert(file).second) {
            names.push_back(path);
        }
    }
    for (const std::string& name : names) {
        Take take;
        take.name = name;
        take.file = FileOf(name);
        take.bytes = static_cast<double>(std::max<std::int64_t>(m_environment.files.FileLength(take.file), 0));
        take.newName = NewName(name);
        m_takenFiles.insert(FileOf(take.newName));
        m_allBytes += take.bytes;
        m_takes.push_back(std::move(take));
    }
}

std::string ProjectCompression::NewName(const std::string& name) const
{
    return FreeName(core::FileExtensionCut(name), ".wma", [this](const std::string& candidate) {
        const std::string file = FileOf(candidate);
        const core::Files& files = m_environment.files;
        const auto isFile = [&](const std::string& taken) { return files.SameFile(taken, file); };
        return m_takenFiles.contains(file) || (files.FileExists(file) && std::ranges::any_of(m_takenFiles, isFile));
    });
}

bool ProjectCompression::ConvertAll()
{
    double doneBytes = 0;
    for (std::size_t i = 0; i < m_takes.size(); ++i) {
        Take& take = m_takes[i];
        m_progress.ShowFile(i + 1, m_takes.size(), take.name, take.newName);
        m_progress.Update(0, doneBytes / std::max(m_allBytes, 1.0));
        m_environment.ports.pendingEvents.Run();
        take.converted = ConvertFile(take, doneBytes);
        if (m_cancelled) {
            return false;
        }
        m_errors += take.converted ? 0 : 1;
        doneBytes += take.bytes;
    }
    return true;
}

bool ProjectCompression::ConvertFile(Take& take, double doneBytes)
{
    const std::string newFile = FileOf(take.newName);
    WmaConversion conversion(m_environment.files, take.file, newFile);
    if (!conversion.Open(m_environment.config.EncWMAFormat.bitrate)) {
        AddError(conversion.Error());
        return false;
    }
    bool more = true;
    while (more && !m_cancelled) {
        more = conversion.Step();
        m_progress.Update(conversion.Done(), (doneBytes + conversion.Done() * take.bytes) / std::max(m_allBytes, 1.0));
        m_environment.ports.pendingEvents.Run();
    }
    if (m_cancelled) {
        return false;
    }
    take.replaces = m_environment.files.FileExists(newFile);
    if (!conversion.Finish(m_environment.ports.trash, m_environment.ports.pendingEvents)) {
        AddError(conversion.Error());
        return false;
    }
    return true;
}

void ProjectCompression::RePoint()
{
    std::map<std::string, std::string> newNames;
    for (const Take& take : m_takes) {
        if (take.converted) {
            newNames.emplace(take.file, take.newName);
        }
    }
    for (const auto& event : WaveEvents()) {
        const auto found = InProjectFolder(event->FilePath) ? newNames.find(FileOf(event->FilePath)) : newNames.end();
        if (found != newNames.end()) {
            event->FilePath = found->second;
        }
    }
    // The engine and the views know clips by their files.
    core::MsgParametersClass params;
    m_project.MsgSender->SendMsg(core::kNoSender, core::Msg_Refresh, params);
}

void ProjectCompression::RemoveNewFiles()
{
    for (const Take& take : m_takes) {
        if (take.converted && !take.replaces) {
            m_environment.files.DeleteFile(FileOf(take.newName));
        }
    }
}

void ProjectCompression::AddError(const std::string& text)
{
    m_errorLog += "\n" + text;
}

void ProjectCompression::Report() const
{
    std::string text = "Done !";
    if (m_errors > 0) {
        text += "\nError: " + std::to_string(m_errors) + " file(s) were not compressed\nErrors:" + m_errorLog;
    }
    m_environment.ports.messages.Show(text, core::Icon::Information, "Compress project");
}

std::string ProjectCompression::FileOf(const std::string& path) const
{
    std::string file = m_project.FixAudioFilePath(path);
    return file.empty() ? path : file;
}

std::vector<std::shared_ptr<project::CDC_Event_Wave_Class>> ProjectCompression::WaveEvents() const
{
    std::vector<std::shared_ptr<project::CDC_Event_Wave_Class>> events;
    for (std::int32_t i = 0; i < m_project.Chn_GetChannelClass_TotalN(); ++i) {
        for (const project::EventRow* row : m_project.Chn_GetChannelObj_by_Index(i)->ChannelData->InTimeOrder()) {
            if (row->EventType == core::kWaveEvent && row->EventOBJ) {
                events.push_back(row->EventOBJ);
            }
        }
    }
    return events;
}

} // namespace velmora::audio
