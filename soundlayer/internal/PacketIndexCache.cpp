#include "soundlayer/internal/PacketIndexCache.h"

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
    const Key key{file.Name(), file.Size(), file.Modified()};
    std::unique_lock lock(m_mutex);
    // Looked up anew after each wait: another may have dropped the slot meanwhile.
    m_made.wait(lock, [&] { return !m_slots[key].beingMade; });
    if (auto index = m_slots[key].index.lock()) {
        Keep(index);
        return index;
    }
    m_slots[key].beingMade = true;
    lock.unlock();
    std::shared_ptr<const PacketIndex> index;
    try {
        index = make();
    } catch (...) {
        Enter(key, nullptr);
        throw;
    }
    Enter(key, index);
    return index;
}

void PacketIndexCache::Enter(const Key& key, const std::shared_ptr<const PacketIndex>& index)
{
    {
        const std::lock_guard lock(m_mutex);
        m_slots[key] = {index, false};
        if (index) {
            Keep(index);
        }
        std::erase_if(m_slots, [](const auto& slot) { return !slot.second.beingMade && slot.second.index.expired(); });
    }
    m_made.notify_all();
}

void PacketIndexCache::Keep(const std::shared_ptr<const PacketIndex>& index)
{
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
