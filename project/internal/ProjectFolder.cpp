#include "project/internal/ProjectFolder.h"

#include "core/TextUtilities.h"
#include "project/internal/PathText.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace velmora::project {
namespace {

constexpr std::string_view kAudioFolderEnding = " - Audio files";
constexpr std::int32_t kNewProjects = 10'000;

} // namespace

ProjectFolder::ProjectFolder(core::Environment& environment)
    : m_environment(environment)
{
}

std::string ProjectFolder::LockFileIn(std::string_view folder)
{
    return std::string(folder) + "\\accheck.dat";
}

std::string ProjectFolder::AudioFolderOf(std::string_view projectPath)
{
    return WithoutExtension(projectPath).append(kAudioFolderEnding);
}

std::unique_ptr<core::FileLock> ProjectFolder::MakeNew(core::Environment& environment, std::string& folder)
{
    core::Files& files = environment.files;
    const std::string parent = environment.paths.GetPath("newprojects");
    if (!files.FolderExists(parent)) {
        environment.ports.messages.Show("Folder doesn't exist:\n" + parent);
        return nullptr;
    }
    for (std::int32_t i = 1; i <= kNewProjects; ++i) {
        folder = parent + "\\Project " + std::to_string(i);
        if (files.FolderExists(folder) || files.FileExists(folder)) {
            continue;
        }
        if (!files.MakeFolderIfMissing(folder)) {
            break;
        }
        // Another instance may have taken the same number in this moment; then the next one will do.
        if (auto lock = files.LockFileCreate(LockFileIn(folder))) {
            return lock;
        }
    }
    environment.ports.messages.Show("Error creating folder", core::Icon::Exclamation);
    return nullptr;
}

void ProjectFolder::Enter(std::string folder, std::unique_ptr<core::FileLock> lock)
{
    m_path = std::move(folder);
    m_lock = std::move(lock);
}

std::string ProjectFolder::FixAudioFilePath(std::string_view Path) const
{
    if (IsAbsolute(Path)) {
        return std::string(Path);
    }
    if (LeavesFolder(Path)) {
        return {};
    }
    std::string absolute = m_path;
    if (!Path.starts_with('\\')) {
        absolute += '\\';
    }
    return absolute.append(Path);
}

void ProjectFolder::DeleteUnusedFiles(const std::vector<std::string>& usedPaths)
{
    if (m_path.empty()) {
        m_environment.ports.messages.Show("AudioPath is empty\nProjectFile_Class::DeleteUnusedFiles");
        return;
    }
    const core::Files& files = m_environment.files;
    if (!files.ListFiles(m_path, "*.take").empty()) {
        return;
    }
    std::unordered_set<std::string> usedNames;
    std::unordered_set<std::string> otherPaths;
    for (const std::string& path : usedPaths) {
        const std::string_view name = std::string_view(path).substr(path.starts_with('\\') ? 1 : 0);
        if (IsAbsolute(name) || name.find_first_of("\\/") != std::string_view::npos) {
            otherPaths.insert(FixAudioFilePath(path));
        } else {
            usedNames.insert(core::LowerCase(name));
        }
    }
    for (const std::string_view pattern : {"*.wav", "*.wma"}) {
        for (const std::string& name : files.ListFiles(m_path, pattern)) {
            const std::string file = m_path + '\\' + name;
            if (!usedNames.contains(core::LowerCase(name)) && !PointedAt(file, otherPaths)) {
                m_environment.ports.trash.Move(file);
            }
        }
    }
}

bool ProjectFolder::PointedAt(const std::string& file, const std::unordered_set<std::string>& paths) const
{
    return std::ranges::any_of(paths,
                               [&](const std::string& path) { return m_environment.files.SameFile(file, path); });
}

} // namespace velmora::project
