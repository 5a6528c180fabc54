#include "project/internal/FolderTransfer.h"

#include "core/RunBeside.h"
#include "core/TextUtilities.h"
#include "project/internal/ProjectFolder.h"

#include <cmath>
#include <utility>

namespace velmora::project {
namespace {

constexpr double kSpareBytes = 10'000'000;
constexpr double kMegabyte = 1'048'576;
constexpr std::string_view kNewFile = ".velmora-new";
constexpr std::string_view kOldFile = ".velmora-old";

std::string Beside(const std::string& target, std::string_view ending)
{
    return target + std::string(ending);
}

} // namespace

FolderTransfer::FolderTransfer(core::Environment& environment, std::string from, std::string to)
    : m_environment(environment)
    , m_files(environment.files)
    , m_from(std::move(from))
    , m_to(std::move(to))
{
}

FolderTransfer::~FolderTransfer()
{
    if (!m_committed) {
        TakeBack();
    }
}

bool FolderTransfer::Prepare(bool isNewProject)
{
    if (!HasSpace(isNewProject)) {
        return false;
    }
    core::MessageBoxes& messages = m_environment.ports.messages;
    const bool existed = m_files.FolderExists(m_to);
    if (existed && messages.Ask("Folder already exists: " + m_to + "\nOverwrite files ?") != core::Answer::Yes) {
        return false;
    }
    if (!m_files.MakeFolderIfMissing(m_to)) {
        messages.Show("Error creating folder", core::Icon::Exclamation);
        return false;
    }
    m_madeFolder = !existed;
    m_lock = m_files.LockFileCreate(ProjectFolder::LockFileIn(m_to));
    if (!m_lock) {
        messages.Show("Folder in use: " + m_to, core::Icon::Exclamation);
        return false;
    }
    return true;
}

bool FolderTransfer::HasSpace(bool isNewProject) const
{
    const std::string drive = core::FolderOfPath(m_to);
    if (!isNewProject && m_files.SameDrive(m_from, drive)) {
        return true;
    }
    const double bytes = m_files.FolderSizeBytes(m_from);
    if (m_files.DiskFreeBytes(drive) > bytes + kSpareBytes) {
        return true;
    }
    const auto megabytes = static_cast<std::int64_t>(std::ceil((bytes + kSpareBytes) / kMegabyte));
    m_environment.ports.messages.Show(
        "Not enough free space to save the project, you need \nat least: " + std::to_string(megabytes) + " MB",
        core::Icon::Exclamation);
    return false;
}

bool FolderTransfer::Copy()
{
    for (const std::string& name : m_files.ListFiles(m_from, "*")) {
        if (core::LowerCase(name) == "accheck.dat") {
            continue;
        }
        const std::string target = m_to + '\\' + name;
        const bool waits = m_files.FileExists(target);
        m_copied.push_back({target, waits, false});
        const auto copy = [&, source = m_from + '\\' + name, to = waits ? Beside(target, kNewFile) : target] {
            return m_files.CopyFile(source, to);
        };
        if (!core::RunBeside(m_environment.ports.pendingEvents, copy)) {
            return Fail(name);
        }
    }
    return true;
}

bool FolderTransfer::Swap()
{
    for (Copied& file : m_copied) {
        if (!file.waits) {
            continue;
        }
        if (!m_files.Replace(file.target, Beside(file.target, kOldFile))) {
            return Fail(core::FileNameOfPath(file.target));
        }
        file.swapped = true;
        if (!m_files.Replace(Beside(file.target, kNewFile), file.target)) {
            return Fail(core::FileNameOfPath(file.target));
        }
    }
    return true;
}

std::unique_ptr<core::FileLock> FolderTransfer::Commit()
{
    m_committed = true;
    for (const Copied& file : m_copied) {
        if (file.swapped) {
            m_files.DeleteFile(Beside(file.target, kOldFile));
        }
    }
    return std::move(m_lock);
}

bool FolderTransfer::Fail(const std::string& file) const
{
    m_environment.ports.messages.Show("Error copying files to new folder: " + m_to + "\nFile: " + file +
                                          "\nProject wasn't saved",
                                      core::Icon::Exclamation);
    return false;
}

void FolderTransfer::TakeBack()
{
    for (const Copied& file : m_copied) {
        if (file.swapped) {
            m_files.Replace(Beside(file.target, kOldFile), file.target);
        }
        const std::string copy = file.waits ? Beside(file.target, kNewFile) : file.target;
        if (m_files.FileExists(copy)) {
            m_files.DeleteFile(copy);
        }
    }
    if (m_madeFolder) {
        m_lock.reset();
        m_files.DeleteFile(ProjectFolder::LockFileIn(m_to));
        m_files.DeleteEmptyFolder(m_to);
    }
}

} // namespace velmora::project
