#include "project/OpenedProject.h"

#include "project/internal/ProjectFileText.h"
#include "project/internal/ProjectFolder.h"

namespace velmora::project {
namespace {

bool HasAudioFolder(core::Environment& environment, const std::string& folder)
{
    core::MessageBoxes& messages = environment.ports.messages;
    if (environment.files.FolderExists(folder)) {
        return true;
    }
    if (messages.Ask("Folder does not exist:\n" + folder + "\nCreate folder") != core::Answer::Yes) {
        return false;
    }
    if (!environment.files.MakeFolderIfMissing(folder)) {
        messages.Show("Error creating folder", core::Icon::Exclamation);
        return false;
    }
    messages.Show("Folder created. However, if there were audio files in the\noriginal folder, those won't be loaded");
    return true;
}

std::unique_ptr<core::FileLock> TakeLock(core::Environment& environment, const std::string& folder)
{
    core::MessageBoxes& messages = environment.ports.messages;
    const std::string lockFile = ProjectFolder::LockFileIn(folder);
    auto lock = environment.files.LockFileCreate(lockFile);
    if (!lock && messages.Ask("Project already open. Force load ?") == core::Answer::Yes) {
        // A lock that a process holds stays its own; one that was only held a moment ago is free now.
        lock = environment.files.LockFileCreate(lockFile);
        if (!lock) {
            messages.Show("Error opening project", core::Icon::Exclamation);
        }
    }
    return lock;
}

} // namespace

OpenedProject::OpenedProject() = default;
OpenedProject::OpenedProject(OpenedProject&&) noexcept = default;
OpenedProject& OpenedProject::operator=(OpenedProject&&) noexcept = default;
OpenedProject::~OpenedProject() = default;

std::optional<OpenedProject> OpenedProject::Open(core::Environment& environment, std::string_view Path, OpenMode mode,
                                                 std::string_view ownFolder)
{
    core::MessageBoxes& messages = environment.ports.messages;
    core::Files& files = environment.files;
    OpenedProject opened;
    opened.mode = mode;
    opened.path = Path;
    opened.audioFolder = ProjectFolder::AudioFolderOf(Path);
    if (!files.FileExists(Path)) {
        messages.Show("Error loading file", core::Icon::Exclamation);
        return std::nullopt;
    }
    if (mode == OpenMode::Edit) {
        if (!HasAudioFolder(environment, opened.audioFolder)) {
            return std::nullopt;
        }
        if (ownFolder.empty() || !files.SameFile(ownFolder, opened.audioFolder)) {
            opened.lock = TakeLock(environment, opened.audioFolder);
            if (!opened.lock) {
                return std::nullopt;
            }
        }
    }
    std::string text = files.ReadTextFile(Path);
    if (text.empty()) {
        // Also what cannot be read, or is larger than any project, comes as no text.
        messages.Show(files.FileLength(Path) == 0 ? "File is empty" : "Error loading file", core::Icon::Exclamation);
        return std::nullopt;
    }
    auto data = ReadProjectFileText(std::move(text), messages);
    if (!data) {
        return std::nullopt;
    }
    opened.data = std::move(*data);
    return opened;
}

} // namespace velmora::project
