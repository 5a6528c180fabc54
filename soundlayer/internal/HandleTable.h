#pragma once

#include "soundlayer/internal/Object.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace velmora::soundlayer {

/// Objects by their 32-bit handle. A handle is never 0 and never given twice: it names a slot and how often that slot
/// was used, and a slot whose count is used up is retired.
///
/// Threads: the interface thread adds and removes, any thread finds, nobody waits. An object found on the mixing
/// thread stays valid until that thread's block ends, because what `Remove` gives back is destroyed after it.
class HandleTable {
public:
    static constexpr std::uint32_t kSlotBits = 14;
    static constexpr std::uint32_t kSlots = 1U << kSlotBits;

    HandleTable();

    /// The handle of `object`, or 0 when all slots are taken.
    std::uint32_t Add(std::shared_ptr<Object> object);
    /// Makes the handle stale and gives its object to whoever must keep it alive for a while; null for a stale one.
    std::shared_ptr<Object> Remove(std::uint32_t handle);
    /// The object of `handle`, or null. [RT]
    Object* Find(std::uint32_t handle) const;
    /// Owning form, interface thread only.
    std::shared_ptr<Object> Share(std::uint32_t handle) const;
    /// All live objects in the order of their slots.
    std::vector<std::shared_ptr<Object>> All() const;

private:
    struct Slot {
        std::atomic<std::uint32_t> handle{0};
        std::atomic<Object*> object{nullptr};
        std::shared_ptr<Object> owner;
        std::uint32_t uses = 0;
    };

    std::unique_ptr<Slot[]> m_slots;
    std::deque<std::uint32_t> m_free;
};

} // namespace velmora::soundlayer
