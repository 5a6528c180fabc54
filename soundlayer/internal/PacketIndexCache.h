#pragma once

#include "soundlayer/internal/PacketIndex.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>

namespace velmora::soundlayer {

/// The indexes of the files that are open, and of those opened last up to a limit in bytes. Any thread.
///
/// A file is known by its name, size and time of modification. Of several threads that ask for the same file at once
/// one makes the index and the others wait for it; other files do not wait.
class PacketIndexCache {
public:
    using Maker = std::function<std::shared_ptr<const PacketIndex>()>;

    explicit PacketIndexCache(std::size_t keptBytes);
    /// The one that all files share; it keeps 64 MB, some 15 hours of packets.
    static PacketIndexCache& Shared();

    /// The index of `file`, from `make` when it is not there. A null of `make` is returned and not kept.
    std::shared_ptr<const PacketIndex> Get(const FileBytes& file, const Maker& make);

private:
    using Key = std::tuple<std::string, std::int64_t, std::int64_t>;
    struct Slot {
        std::weak_ptr<const PacketIndex> index;
        bool beingMade = false;
    };
    static constexpr std::size_t kMostKept = 1000;

    /// What making the index of `key` came to.
    void Enter(const Key& key, const std::shared_ptr<const PacketIndex>& index);
    /// Under the lock.
    void Keep(const std::shared_ptr<const PacketIndex>& index);

    const std::size_t m_keptBytes;
    std::mutex m_mutex;
    std::condition_variable m_made;
    std::map<Key, Slot> m_slots;
    /// The latest last.
    std::deque<std::shared_ptr<const PacketIndex>> m_recent;
    std::size_t m_recentBytes = 0;
};

} // namespace velmora::soundlayer
