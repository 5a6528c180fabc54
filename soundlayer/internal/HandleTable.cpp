#include "soundlayer/internal/HandleTable.h"

#include <utility>

namespace velmora::soundlayer {

namespace {
constexpr std::uint32_t kSlotMask = HandleTable::kSlots - 1;
constexpr std::uint32_t kMaxUses = (1U << (32 - HandleTable::kSlotBits)) - 1;
} // namespace

HandleTable::HandleTable()
    : m_slots(std::make_unique<Slot[]>(kSlots))
{
    for (std::uint32_t i = 0; i < kSlots; ++i) {
        m_free.push_back(i);
    }
}

std::uint32_t HandleTable::Add(std::shared_ptr<Object> object)
{
    if (m_free.empty()) {
        return 0;
    }
    const std::uint32_t index = m_free.front();
    m_free.pop_front();
    Slot& slot = m_slots[index];
    const std::uint32_t handle = (++slot.uses << kSlotBits) | index;
    object->m_handle = handle;
    slot.owner = std::move(object);
    slot.object.store(slot.owner.get(), std::memory_order_release);
    slot.handle.store(handle, std::memory_order_release);
    return handle;
}

std::shared_ptr<Object> HandleTable::Remove(std::uint32_t handle)
{
    const std::uint32_t index = handle & kSlotMask;
    Slot& slot = m_slots[index];
    if (handle == 0 || slot.handle.load(std::memory_order_relaxed) != handle) {
        return nullptr;
    }
    slot.handle.store(0, std::memory_order_release);
    if (slot.uses < kMaxUses) {
        m_free.push_back(index);
    }
    return std::exchange(slot.owner, nullptr);
}

Object* HandleTable::Find(std::uint32_t handle) const
{
    const Slot& slot = m_slots[handle & kSlotMask];
    if (handle == 0 || slot.handle.load(std::memory_order_acquire) != handle) {
        return nullptr;
    }
    Object* object = slot.object.load(std::memory_order_acquire);
    // The slot may have changed hands between the two loads.
    return slot.handle.load(std::memory_order_acquire) == handle ? object : nullptr;
}

std::shared_ptr<Object> HandleTable::Share(std::uint32_t handle) const
{
    return Find(handle) ? m_slots[handle & kSlotMask].owner : nullptr;
}

std::vector<std::shared_ptr<Object>> HandleTable::All() const
{
    std::vector<std::shared_ptr<Object>> all;
    for (std::uint32_t i = 0; i < kSlots; ++i) {
        if (m_slots[i].handle.load(std::memory_order_relaxed) != 0) {
            all.push_back(m_slots[i].owner);
        }
    }
    return all;
}

} // namespace velmora::soundlayer
