#include "controls/NewClip.h"

#include "core/BassHelpers.h"
#include "core/ImportAudioFile.h"
#include "core/TextUtilities.h"
#include "project/ProjectFile_Class.h"

namespace velmora::controls {

std::optional<NewClip> NewClipOf(const project::ProjectFile_Class& project, const std::string& path)
{
    core::Environment& environment = project.Environment();
    NewClip clip;
    bool failed = false;
    clip.lengthMS = core::GetAudioFileLengthMS(path, &failed);
    if (failed) {
        environment.ports.messages.Show("Invalid sound file: " + path, core::Icon::Exclamation);
        return std::nullopt;
    }
    clip.wave.FilePath = core::ImportAudioFile(environment.files, project.GetAudioPath(), path);
    clip.wave.EventTitle = core::FileExtensionCut(core::FileNameOfPath(path));
    return clip;
}

} // namespace velmora::controls
