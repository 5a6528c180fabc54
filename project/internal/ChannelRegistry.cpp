#include "project/internal/ChannelRegistry.h"

#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velmora::project {

ChannelRegistry::ChannelRegistry(ProjectFile_Class& project)
    : m_project(project)
{
}

ChannelRegistry::~ChannelRegistry() = default;

std::int32_t ChannelRegistry::TotalN() const
{
    return static_cast<std::int32_t>(m_music.size() + m_voice.size());
}

Channel_Class& ChannelRegistry::Add(std::int32_t mode)
{
    auto channel = std::make_unique<Channel_Class>(m_project);
    channel->SetChannelMode(mode);
    return *TableOf(mode).emplace_back(std::move(channel));
}

ChannelRegistry::Table ChannelRegistry::TakeOut()
{
    Table all = std::exchange(m_music, {});
    std::ranges::move(m_voice, std::back_inserter(all));
    Clear();
    return all;
}

Channel_Class& ChannelRegistry::PutBack(std::unique_ptr<Channel_Class> channel)
{
    Table& table = TableOf(channel->ChannelMode());
    return *table.emplace_back(std::move(channel));
}

void ChannelRegistry::Remove(core::ClassID id)
{
    Channel_Class* channel = Find(id);
    if (channel) {
        m_byID.clear();
        std::erase_if(TableOf(channel->ChannelMode()), [channel](const auto& owned) { return owned.get() == channel; });
    }
}

void ChannelRegistry::RemoveLast(std::int32_t mode)
{
    m_byID.clear();
    TableOf(mode).pop_back();
}

void ChannelRegistry::Clear()
{
    m_byID.clear();
    m_music.clear();
    m_voice.clear();
}

Channel_Class* ChannelRegistry::Find(core::ClassID id) const
{
    const auto known = m_byID.find(id);
    if (known != m_byID.end() && known->second->ClassID() == id) {
        return known->second;
    }
    m_byID.clear();
    ForEach([this](Channel_Class& channel) { m_byID.emplace(channel.ClassID(), &channel); });
    const auto found = m_byID.find(id);
    return found == m_byID.end() ? nullptr : found->second;
}

Channel_Class* ChannelRegistry::Find(core::ClassID id, std::int32_t mode) const
{
    Channel_Class* channel = Find(id);
    return channel && channel->ChannelMode() == mode ? channel : nullptr;
}

Channel_Class* ChannelRegistry::At(std::int32_t index, std::int32_t mode) const
{
    const Table& table = TableOf(mode);
    return index >= 0 && static_cast<std::size_t>(index) < table.size() ? table[static_cast<std::size_t>(index)].get()
                                                                        : nullptr;
}

Channel_Class* ChannelRegistry::At(std::int32_t index) const
{
    const auto musicN = static_cast<std::int32_t>(m_music.size());
    return index < musicN ? At(index, Channel_Class::kMusic) : At(index - musicN, Channel_Class::kVoice);
}

void ChannelRegistry::ForEach(const std::function<void(Channel_Class&)>& visit) const
{
    for (const Table* table : {&m_music, &m_voice}) {
        for (const auto& channel : *table) {
            visit(*channel);
        }
    }
}

ChannelRegistry::Table& ChannelRegistry::TableOf(std::int32_t mode)
{
    return mode == Channel_Class::kVoice ? m_voice : m_music;
}

const ChannelRegistry::Table& ChannelRegistry::TableOf(std::int32_t mode) const
{
    return mode == Channel_Class::kVoice ? m_voice : m_music;
}

} // namespace velmora::project
