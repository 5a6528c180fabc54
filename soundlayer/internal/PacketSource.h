#pragma once

#include "soundlayer/internal/MediaInput.h"
#include "soundlayer/internal/PacketIndex.h"

#include <cstdint>
#include <memory>

namespace velmora::soundlayer {

/// The packets of a file in their order, each with the samples that it stands for, from any place on.
class PacketSource {
public:
    /// The samples of a packet, counted as in PacketIndex.
    struct Span {
        std::int64_t start = 0;
        std::int64_t end = 0;
    };

    /// At the first packet; null if the file has gone or changed so that its container cannot be read.
    static std::unique_ptr<PacketSource> Open(std::shared_ptr<const FileBytes> file,
                                              std::shared_ptr<const PacketIndex> index);
    virtual ~PacketSource() = default;

    /// Goes to the packet where decoding has to begin so that `sample` comes out as in decoding from the start; true if
    /// that is the file's first.
    virtual bool GoTo(std::int64_t sample) = 0;
    /// Puts the next packet into `packet`, whose former content is dropped. Packets that cannot be read are left out;
    /// false once there are no more.
    virtual bool Next(AVPacket& packet, Span& span) = 0;
};

} // namespace velmora::soundlayer
