#include "soundlayer/internal/PacketIndexCache.h"

#include <algorithm>

namespace velmora::soundlayer {

PacketIndexCache::PacketIndexCache(std::size_t keptBytes)
    : m_keptBytes(keptBytes)
{
}

PacketIndexCache& PacketIndexCache::Shared()
{
    static PacketIndexCache cache(std::size_t{64} << 20);
    return cache;
}

std::shared_ptr<const PacketIndex> PacketIndexCache::Get(const FileBytes& file, const Maker& make)
{
    const std::shared_ptr<Slot> slot = SlotOf({file.Name(), file.Size(), file.Modified()});
    const std::lock_guard lock(slot->making);
    std::shared_ptr<const PacketIndex> index = slot->index.lock();
    if (!index) {
        index = make();
        slot->index = index;
    }
    if (index) {
        Keep(index);
    }
    return index;
}

std::shared_ptr<PacketIndexCache::Slot> PacketIndexCache::SlotOf(const Key& key)
{
    const std::lock_guard lock(m_mutex);
    auto& slot = m_slots[key];
    if (!slot) {
        slot = std::make_shared<Slot>();
        std::shared_ptr<Slot> current = slot;
        std::erase_if(m_slots, [](const auto& entry) {
            if (entry.second.use_count() > 1) {
                return false;
            }
            const std::lock_guard slotLock(entry.second->making);
            return entry.second->index.expired();
        });
        return current;
    }
    return slot;
}

void PacketIndexCache::Keep(const std::shared_ptr<const PacketIndex>& index)
{
    const std::lock_guard lock(m_mutex);
    if (!m_recent.empty() && m_recent.back() == index) {
        return;
    }
    if (std::erase(m_recent, index) == 0) {
        m_recentBytes += index->MemoryBytes();
    }
    m_recent.push_back(index);
    while (m_recent.size() > 1 && (m_recentBytes > m_keptBytes || m_recent.size() > kMostKept)) {
        m_recentBytes -= m_recent.front()->MemoryBytes();
        m_recent.pop_front();
    }
}

} // namespace velmora::soundlayer
