#include "controls/NewClip.h"

#include "core/BassHelpers.h"
#include "core/ImportAudioFile.h"
#include "core/RunBeside.h"
#include "core/TextUtilities.h"
#include "project/LockedInterface.h"
#include "project/ProjectFile_Class.h"

namespace velmora::controls {

std::optional<NewClip> NewClipOf(project::ProjectFile_Class& project, const std::string& path)
{
    core::Environment& environment = project.Environment();
    NewClip clip;
    const auto look = [&, folder = project.GetAudioPath()] {
        bool failed = false;
        clip.lengthMS = core::GetAudioFileLengthMS(path, &failed);
        clip.wave.FilePath = failed ? std::string() : core::ImportAudioFile(environment.files, folder, path);
        return !failed;
    };
    bool isSound = false;
    {
        // A long file is walked through once; what is found serves whoever opens it next.
        const project::LockedInterface locked(project);
        isSound = core::RunBeside(environment.ports.pendingEvents, look);
    }
    if (!isSound) {
        environment.ports.messages.Show("Invalid sound file: " + path, core::Icon::Exclamation);
        return std::nullopt;
    }
    clip.wave.EventTitle = core::FileExtensionCut(core::FileNameOfPath(path));
    return clip;
}

} // namespace velmora::controls
