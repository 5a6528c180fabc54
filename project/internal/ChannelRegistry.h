#pragma once

#include "core/ClassIds.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmora::project {

class Channel_Class;
class LoadContext;
class ProjectFile_Class;

/// The project's channels: music first, then voice, each kind in the order of making, without gaps.
class ChannelRegistry {
public:
    using Table = std::vector<std::unique_ptr<Channel_Class>>;

    explicit ChannelRegistry(ProjectFile_Class& project);
    ~ChannelRegistry();

    const Table& Music() const { return m_music; }
    const Table& Voice() const { return m_voice; }
    std::int32_t TotalN() const;

    /// A new channel of `mode` at the end of its table.
    Channel_Class& Add(std::int32_t mode);
    /// Takes all channels out; they go on sounding.
    Table TakeOut();
    /// Brings one that was taken out to the end of its table.
    Channel_Class& PutBack(std::unique_ptr<Channel_Class> channel);
    void Remove(core::ClassID id);
    /// The one made last of `mode`, whatever it has become.
    void RemoveLast(std::int32_t mode);
    void Clear();

    /// Of either kind; null for an unknown id.
    Channel_Class* Find(core::ClassID id) const;
    /// Of `mode` only.
    Channel_Class* Find(core::ClassID id, std::int32_t mode) const;
    /// Null outside the table.
    Channel_Class* At(std::int32_t index, std::int32_t mode) const;
    /// Music channels first, voice channels after.
    Channel_Class* At(std::int32_t index) const;

    void ForEach(const std::function<void(Channel_Class&)>& visit) const;

private:
    Table& TableOf(std::int32_t mode);
    const Table& TableOf(std::int32_t mode) const;

    ProjectFile_Class& m_project;
    Table m_music;
    Table m_voice;
    /// Channels by the id that they had when they were looked for; a channel that loads another id is found afresh.
    mutable std::unordered_map<core::ClassID, Channel_Class*> m_byID;
};

} // namespace velmora::project
