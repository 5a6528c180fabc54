#include "soundlayer/internal/AudioFile.h"

#include "soundlayer/internal/CodedFile.h"
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
    } else {
        opened = CodedFile::Open(bytes);
    }
    result = opened ? OpenResult::Ok : OpenResult::NoSound;
    return opened;
}

} // namespace velmora::soundlayer
