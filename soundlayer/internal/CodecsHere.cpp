#include "soundlayer/internal/Codecs.h"
#include "soundlayer/internal/CodedFile.h"
#include "soundlayer/internal/WmaEncoder.h"

#include <utility>

namespace velmora::soundlayer {

const Codecs* GetCodecs()
{
    static constexpr Codecs kCodecs{
        [](std::shared_ptr<const FileBytes> file) -> std::unique_ptr<AudioFile> {
            return CodedFile::Open(std::move(file));
        },
        &WmaEncoder::Open,
    };
    return &kCodecs;
}

} // namespace velmora::soundlayer

/// `kCodecsEntry`.
extern "C" [[gnu::visibility("default")]] const velmora::soundlayer::Codecs* velmora_GetCodecs()
{
    return velmora::soundlayer::GetCodecs();
}
