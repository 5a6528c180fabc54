#include "render/Renderer.h"

#include "audio/AudioExport.h"
#include "audio/SoundSession.h"
#include "core/Environment.h"
#include "core/Paths.h"
#include "core/PosixFiles.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "render/ConsolePorts.h"
#include "render/ConsoleProgress.h"
#include "soundlayer/soundlayer.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>

#include <unistd.h>

namespace velmora::render {

namespace {

namespace fs = std::filesystem;

std::string Quoted(const std::string& name)
{
    return "'" + name + "'";
}

/// The reason why `project` cannot be a project file, or "".
std::string WhyUnreadable(const std::string& project)
{
    std::error_code error;
    if (fs::is_directory(project, error)) {
        return "it is a folder; give the .audioproj file";
    }
    return access(project.c_str(), R_OK) == 0 ? "" : std::strerror(errno);
}

/// The file that `out` stands for, behind links; the reason why it cannot be written goes to `reason`.
fs::path Target(const std::string& out, std::string& reason)
{
    std::error_code error;
    fs::path target = out;
    if (fs::exists(target, error)) {
        target = fs::canonical(target, error);
        if (!fs::is_regular_file(target, error)) {
            reason = "it is no plain file";
            return target;
        }
    } else if (fs::is_symlink(target, error)) {
        reason = "it is a link to nothing";
        return target;
    }
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) {
        reason = "there is no folder " + Quoted(folder.string()) + "; make it first";
    } else if (access(folder.c_str(), W_OK | X_OK) != 0) {
        reason = "folder " + Quoted(folder.string()) + ": " + std::strerror(errno);
    }
    return folder / target.filename();
}

/// One run of the program behind the command line.
class Job {
public:
    explicit Job(const Options& options)
        : m_options(options)
        , m_environment(m_ports.Ports(), m_files)
    {
        m_environment.config.Global_OutputDevice = 0;
    }

    int Run();

private:
    bool Open(project::ProjectFile_Class& project);
    bool OutIsSafe(const project::ProjectFile_Class& project) const;
    bool Export(project::ProjectFile_Class& project);
    bool SayMissing(const std::vector<std::string>& files, const char* what) const;

    bool Fail(const std::string& text) const
    {
        Say(text);
        return false;
    }

    const Options& m_options;
    ConsolePorts m_ports;
    core::PosixFiles m_files;
    core::Environment m_environment;
    fs::path m_target;
};

int Job::Run()
{
    std::string reason;
    m_target = Target(m_options.out, reason);
    if (!reason.empty()) {
        Say("cannot write " + Quoted(m_options.out) + ": " + reason);
        return kFailed;
    }
    reason = WhyUnreadable(m_options.project);
    if (!reason.empty()) {
        Say("cannot open " + Quoted(m_options.project) + ": " + reason);
        return kFailed;
    }
    Sound_SetThreads(m_options.threads);
    const auto session = audio::SoundSession::Start(m_environment);
    if (session == nullptr) {
        Say("cannot start the sound layer; is the program installed whole?");
        return kFailed;
    }
    m_environment.ids.Reset();
    project::ProjectFile_Class project(m_environment);
    project.InitializeClass();
    return Open(project) && OutIsSafe(project) && Export(project) ? kDone : kFailed;
}

bool Job::Open(project::ProjectFile_Class& project)
{
    const bool loaded = project.LoadProject(core::InternalPath(m_options.project), project::OpenMode::ReadOnly,
                                            m_options.ignoreMissing);
    if (!SayMissing(project.MissingFiles(), "is missing")) {
        return false;
    }
    if (!loaded) {
        return Fail("cannot open " + Quoted(m_options.project) + ": it is no project of this version, or is damaged");
    }
    if (m_ports.Messages().Troubled() && !m_options.ignoreMissing) {
        return Fail(Quoted(m_options.project) + " is damaged; --ignore-missing renders what is left of it");
    }
    return true;
}

/// Names each file; false when they are an error.
bool Job::SayMissing(const std::vector<std::string>& files, const char* what) const
{
    for (const std::string& file : files) {
        const std::string posix = core::PosixPath(file);
        const std::string name = "audio file " + Quoted(posix.empty() ? file : posix) + " " + what;
        if (!m_options.ignoreMissing) {
            Say(name + "; put it back, or leave it out with --ignore-missing");
        } else if (!m_options.quiet) {
            Say(name + " and is left out");
        }
    }
    return files.empty() || m_options.ignoreMissing;
}

/// The file to write is nothing that the project needs, nor in its folder, where unused files are cleaned up.
bool Job::OutIsSafe(const project::ProjectFile_Class& project) const
{
    const std::string target = core::InternalPath(m_target.string());
    const std::string folder = core::InternalPath(m_target.parent_path().string());
    const std::string refusal = "will not write " + Quoted(m_options.out) + ": ";
    if (m_files.SameFile(target, core::InternalPath(m_options.project))) {
        return Fail(refusal + "it is the project itself");
    }
    if (m_files.SameFile(folder, project.GetAudioPath())) {
        return Fail(refusal + "that is the project's own audio folder; choose another");
    }
    std::set<std::string> used;
    for (std::int32_t i = 0; i < project.Chn_GetChannelClass_TotalN(); ++i) {
        for (const auto* row : project.Chn_GetChannelObj_by_Index(i)->ChannelData->InTimeOrder()) {
            used.insert(row->EventOBJ->FilePath);
        }
    }
    for (const std::string& file : used) {
        if (m_files.SameFile(target, project.FixAudioFilePath(file))) {
            return Fail(refusal + "the project uses it");
        }
    }
    return true;
}

bool Job::Export(project::ProjectFile_Class& project)
{
    // The exporter keeps a cancelled file; here only a whole one may take the name.
    const fs::path growing =
        m_target.parent_path() / (".velmora-render." + std::to_string(getpid()) + m_target.extension().string());
    const std::string growingPath = core::InternalPath(growing.string());

    m_ports.Messages().CallPath(growingPath, m_options.out);

    const auto begun = std::chrono::steady_clock::now();
    const bool talkative = !m_options.quiet && isatty(STDERR_FILENO) == 1;
    ConsoleProgress progress(talkative);
    audio::AudioExport exporter(m_environment, project, progress);
    exporter.FilePath = growingPath;
    exporter.SampleRate = m_options.rate;
    exporter.Channels = m_options.channels;
    exporter.Bitrate = m_options.bitrate;
    exporter.encoder_Format(m_options.format == OutFormat::Wma ? audio::AudioExport::kWma : audio::AudioExport::kWav);
    if (!Interrupted()) {
        exporter.StartExport();
    }
    progress.Clear();

    using Outcome = audio::AudioExport::Outcome;
    bool done = false;
    if (exporter.Result() == Outcome::Cancelled || exporter.Result() == Outcome::NotRun) {
        Say("interrupted; " + Quoted(m_options.out) + " was not written");
    } else if (exporter.Result() != Outcome::Done) {
        Say("cannot write " + Quoted(m_options.out));
    } else if (SayMissing(exporter.UnreadableFiles(), "cannot be read as sound")) {
        done = m_files.Replace(growingPath, core::InternalPath(m_target.string()));
        if (!done) {
            Say("cannot write " + Quoted(m_options.out) + ": the finished file does not take the name");
        }
    }
    if (!done) {
        m_files.DeleteFile(growingPath);
    } else if (talkative) {
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
        const auto seconds = static_cast<int>(project.util_GetProjectLength() / 1000);
        std::fprintf(stderr, "%s: %d:%02d in %.1f s\n", m_options.out.c_str(), seconds / 60, seconds % 60,
                     took.count());
    }
    return done;
}

} // namespace

int Render(const Options& options)
{
    CatchInterrupts();
    try {
        return Job(options).Run();
    } catch (const std::bad_alloc&) {
        Say("out of memory while rendering " + Quoted(options.project));
    } catch (const std::exception& error) {
        Say("cannot render " + Quoted(options.project) + ": " + error.what());
    }
    return kFailed;
}

} // namespace velmora::render
