#pragma once

#include "soundlayer/internal/AvHandles.h"
#include "soundlayer/internal/FileBytes.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace velmora::soundlayer {

/// What one walk over a file's packets tells: where each lies and which samples it holds. Immutable once made, shared
/// by all openings of the file.
///
/// Samples are counted as the decoder gives them, from the first packet's first on. The file's frame 0 is sample
/// `begin`: before it lies what the encoder put in front. Where packets are lost, the count jumps: the next packet
/// begins where it sounds.
struct PacketIndex {
    struct Packet {
        /// In bytes; for a container that cuts packets up, of the page or block that it begins in.
        std::int64_t position = 0;
        /// The first sample.
        std::int64_t start = 0;
        std::uint32_t size = 0;
        /// Samples.
        std::uint32_t count = 0;
        /// For ByStamp the container's time stamp, for ByPage a fingerprint of the bytes.
        std::int64_t mark = 0;
    };

    /// How packets are had again.
    enum class Access {
        Direct,  ///< they lie in one piece in the file
        ByPage,  ///< through the container, whose pages are sought by byte
        ByStamp, ///< through the container, whose packets are sought by time stamp
        NoIndex  ///< through the container, whose time stamps are exact: there are no entries
    };

    Access access = Access::NoIndex;
    ParametersPtr parameters;
    int streamIndex = 0;
    bool isWma = false;
    std::uint32_t rate = 0;
    /// 1 or 2, as the file is given out.
    std::uint32_t channels = 0;
    std::int64_t begin = 0;
    /// In frames.
    std::int64_t length = 0;
    std::vector<Packet> packets;

    /// The number of the packet where decoding begins so that sample `sample` comes out as in decoding from the start.
    std::size_t FirstPacketFor(std::int64_t sample) const;
    /// In bytes, for the cache's limit.
    std::size_t MemoryBytes() const { return sizeof(*this) + packets.capacity() * sizeof(Packet); }

    /// Tells packets at one position apart.
    static std::int64_t Fingerprint(std::span<const std::uint8_t> bytes);
};

} // namespace velmora::soundlayer
