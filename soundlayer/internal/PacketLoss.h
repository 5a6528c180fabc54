#pragma once

#include "soundlayer/internal/PacketIndex.h"

#include <cstdint>
#include <optional>

namespace velmora::soundlayer {

/// Finds, while packets are entered into an index, how much sound is missing between them.
///
/// A container's time stamps tell it where there are any. They may be coarse, so only what a lost packet explains is
/// taken for a loss, and only as far as the length that the container declares. A bare stream of packets tells it by
/// its bytes: those that belong to no packet and are no tag stand for packets of the average size.
class PacketLoss {
public:
    /// For the index that `index` will be. `declared` is the container's length in samples, 0 if unknown;
    /// `wholeFrames` the samples that a loss is a multiple of, 1 if unknown.
    PacketLoss(PacketIndex& index, std::shared_ptr<const FileBytes> file, std::int64_t declared,
               std::int64_t wholeFrames);

    /// The samples that are missing before `packet`, which follows those in the index, the last ending at `end`; below
    /// 0 if that one is heard in part only. `stamp` is the container's time in samples. Where the loss turns out to lie
    /// further back, the index is corrected and `end` with it.
    std::int64_t Before(const PacketIndex::Packet& packet, std::optional<std::int64_t> stamp, std::int64_t& end);

    /// At the end of the walk: where losses were only guessed but the sum is declared, the largest guess is made to
    /// fit.
    void Settle(std::int64_t& end);

private:
    std::int64_t ByBytes(const PacketIndex::Packet& packet);
    std::int64_t ByPage(const PacketIndex::Packet& packet, std::int64_t ahead, std::int64_t& end);
    bool IsLoss(std::int64_t ahead, std::int64_t end, const PacketIndex::Packet& packet) const;

    PacketIndex& m_index;
    FileWindow m_window;
    std::int64_t m_declared;
    std::int64_t m_most;
    std::int64_t m_wholeFrames;
    /// The container's time of sample 0, once known.
    std::optional<std::int64_t> m_origin;
    /// Of the packets in the index.
    std::int64_t m_bytes = 0;
    /// The first packet of the page at hand, and the bytes before that page which belong to no packet.
    std::size_t m_pageFirst = 0;
    std::int64_t m_pageHole = 0;
    bool m_afterLoss = false;
    /// The largest loss that was guessed, and the packet behind it.
    std::int64_t m_guess = 0;
    std::size_t m_guessedBefore = 0;
};

} // namespace velmora::soundlayer
