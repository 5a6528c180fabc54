#include "soundlayer/internal/AudioFile.h"

#include "soundlayer/internal/Codecs.h"
#include "soundlayer/internal/FileBytes.h"
#include "soundlayer/internal/PcmFile.h"

namespace velmora::soundlayer {

std::unique_ptr<AudioFile> AudioFile::Open(const std::string& file, OpenResult& result)
{
    const auto bytes = FileBytes::Open(file);
    if (!bytes) {
        result = OpenResult::CannotRead;
        return nullptr;
    }
    std::unique_ptr<AudioFile> opened;
    if (const auto layout = ReadWavLayout(*bytes)) {
        opened = std::make_unique<PcmFile>(bytes, *layout);
    } else if (const Codecs* codecs = GetCodecs()) {
        opened = codecs->openFile(bytes);
    }
    result = opened ? OpenResult::Ok : OpenResult::NoSound;
    return opened;
}

} // namespace velmora::soundlayer
