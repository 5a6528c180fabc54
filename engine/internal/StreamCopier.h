#pragma once

#include "soundlayer/soundlayer.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace velmora::engine {

/// Hands every block of a source stream to any number of destination streams, whichever of them is read first.
///
/// What one destination has read waits in a ring for the others; a destination that falls more than `kRingFrames`
/// behind loses the oldest. A destination begins with what is read next after its making. A mono source is heard on
/// both sides; rates are not converted, so a destination's rate is to be its source's.
///
/// Sources and destinations may go in any order: without its source a destination is silent. Within an edit of the
/// graph, what is removed goes on until that edit is in force, so that the old graph sounds until the new one does.
///
/// Threads: the interface thread adds and removes; one thread at a time pulls the destinations of a source.
class StreamCopier {
public:
    static constexpr std::size_t kRingFrames = 16384;

    /// False, with the sound layer's error code set, for a handle that is no stream. A source that is known is kept.
    bool AddSource(HSTREAM source);
    void RemoveSource(HSTREAM source);
    /// A new stream, or 0 when the source is unknown or the stream cannot be made.
    HSTREAM AddDestination(HSTREAM source, std::uint32_t freq, std::uint32_t flags);
    void RemoveDestination(HSTREAM destination);
    /// Bytes that the slowest destination has not read yet.
    std::int32_t BufferedBytes(HSTREAM source) const;
    void Clear();

    /// The procedure of destinations. [RT]
    static STREAMPROC Pull;

private:
    struct Source {
        /// 0 once it was removed.
        std::atomic<HSTREAM> stream{0};
        std::size_t channels = 2;
        std::vector<std::int16_t> ring = std::vector<std::int16_t>(2 * kRingFrames);
        std::atomic<std::uint64_t> written{0};

        /// Reads `frames` more from the stream into the ring, as far as they come. [RT]
        void Read(std::size_t frames);
    };
    struct Destination {
        std::shared_ptr<Source> source;
        std::atomic<std::uint64_t> read{0};
    };

    std::unordered_map<HSTREAM, std::shared_ptr<Source>> m_sources;
    std::unordered_map<HSTREAM, std::unique_ptr<Destination>> m_destinations;
};

} // namespace velmora::engine
