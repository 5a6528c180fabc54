#include "core/ProgramFolders.h"

#include "core/TextUtilities.h"

#include <algorithm>
#include <array>

namespace velmora::core {
namespace {

constexpr std::string_view kLockFile = "accheck.dat";
constexpr std::string_view kAudioFolderEnding = " - audio files";
/// What the program itself puts beside the sound.
constexpr std::array<std::string_view, 2> kOwnFiles{kLockFile, "wavecache.dat"};

constexpr std::array<std::string_view, 3> kPresetFolders{"Fx", "FxPacks-Voice", "FxPacks-Music"};

void MakeFolderWithParents(Files& files, const std::string& folder)
{
    if (folder.empty() || files.FolderExists(folder)) {
        return;
    }
    const std::string parent = FolderOfPath(folder);
    if (parent != folder) {
        MakeFolderWithParents(files, parent);
    }
    files.MakeFolderIfMissing(folder);
}

/// Whether `name` in `parent` is the audio folder of a project file beside it.
bool BelongsToProjectFile(const Files& files, const std::string& parent, const std::string& name)
{
    if (!LowerCase(name).ends_with(kAudioFolderEnding)) {
        return false;
    }
    const std::string base = name.substr(0, name.size() - kAudioFolderEnding.size());
    return !files.ListFiles(parent, base + ".audioproj").empty();
}

std::string Inside(std::string_view folder, std::string_view name)
{
    return std::string(folder).append("\\").append(name);
}

/// All of a folder; what is there already stays, and what cannot be copied is left out.
void CopyFolder(Files& files, const std::string& from, const std::string& to)
{
    MakeFolderWithParents(files, to);
    for (const std::string& name : files.ListFiles(from, "*.*")) {
        if (!files.FileExists(Inside(to, name))) {
            files.CopyFile(Inside(from, name), Inside(to, name));
        }
    }
    for (const std::string& name : files.ListFolders(from)) {
        CopyFolder(files, Inside(from, name), Inside(to, name));
    }
}

void ClearProject(Environment& environment, const std::string& folder)
{
    Files& files = environment.files;
    if (!files.FileCanBeOpened(Inside(folder, kLockFile)) || !files.ListFolders(folder).empty()) {
        return;
    }
    const std::vector<std::string> names = files.ListFiles(folder, "*.*");
    const auto endsWith = [&names](std::string_view ending) {
        return std::ranges::any_of(names, [ending](const auto& name) { return LowerCase(name).ends_with(ending); });
    };
    if (endsWith(".take") || endsWith(".audioproj")) {
        return;
    }
    const auto isOwn = [](const std::string& name) {
        return std::ranges::find(kOwnFiles, LowerCase(name)) != kOwnFiles.end();
    };
    if (!std::ranges::all_of(names, isOwn)) {
        environment.ports.trash.Move(folder);
        return;
    }
    for (const std::string& name : names) {
        files.DeleteFile(Inside(folder, name));
    }
    files.DeleteEmptyFolder(folder);
}

} // namespace

void MakeProgramFolders(Environment& environment)
{
    Files& files = environment.files;
    const std::string presets = environment.paths.GetPath("presets");
    const bool isNew = !files.FolderExists(presets);
    for (const std::string& folder : {environment.paths.GetPath("newprojects"), environment.paths.GetPath("config")}) {
        MakeFolderWithParents(files, folder);
    }
    for (const std::string_view name : kPresetFolders) {
        MakeFolderWithParents(files, Inside(presets, name));
    }
    if (isNew && environment.paths.HasPath("starterpresets")) {
        const std::string starter = environment.paths.GetPath("starterpresets");
        for (const std::string_view name : kPresetFolders) {
            CopyFolder(files, Inside(starter, name), Inside(presets, name));
        }
    }
    if (environment.paths.HasPath("starterexamples")) {
        const std::string examples = environment.paths.GetPath("examples");
        if (!files.FolderExists(examples)) {
            CopyFolder(files, environment.paths.GetPath("starterexamples"), examples);
        }
    }
}

std::vector<std::string> AbandonedProjects(const Environment& environment)
{
    const std::string parent = environment.paths.GetPath("newprojects");
    std::vector<std::string> folders;
    for (const std::string& name : environment.files.ListFolders(parent)) {
        if (LowerCase(name).find("project") != std::string::npos &&
            !BelongsToProjectFile(environment.files, parent, name)) {
            folders.push_back(Inside(parent, name));
        }
    }
    return folders;
}

void ClearAbandonedProjects(Environment& environment)
{
    for (const std::string& folder : AbandonedProjects(environment)) {
        ClearProject(environment, folder);
    }
}

} // namespace velmora::core
