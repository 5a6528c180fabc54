#include "controls/MusicFileDialog.h"

namespace velmora::controls {

std::optional<std::string> AskForMusicFile(core::Environment& environment)
{
    auto file = environment.ports.fileDialogs.Open("Load music file", {{"Audio files", "*.mp3;*.wav;*.wma"},
                                                                       {"MP3 files", "*.mp3"},
                                                                       {"Wave files", "*.wav"},
                                                                       {"Windows media audio files", "*.wma"},
                                                                       {"All files", "*.*"}});
    if (!file || file->empty()) {
        return std::nullopt;
    }
    if (!environment.files.FileExists(*file)) {
        environment.ports.messages.Show("The file does not exist:\n" + *file + "\nPlease choose another one.",
                                        core::Icon::Exclamation);
        return std::nullopt;
    }
    return file;
}

} // namespace velmora::controls
