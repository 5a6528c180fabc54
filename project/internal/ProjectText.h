#pragma once

#include "core/ClassIds.h"
#include "persistence/SharedText.h"
#include "project/internal/ChannelRegistry.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::persistence {
class RowBudget;
class UTIL_XMLRead;
class UTIL_XMLWrite;
} // namespace velmora::persistence

namespace velmora::project {

class LoadContext;
class ProjectFile_Class;

/// A project as text, and back.
class ProjectText {
public:
    /// More channels of a kind are not loaded: every channel hears every message of the bus.
    static constexpr std::int32_t kMostChannels = 1000;

    ProjectText(ProjectFile_Class& project, ChannelRegistry& channels);

    persistence::SharedText GetSharedXML() const;
    /// False for the text of another object. `id` takes the project's id of the text when `loadIDs` is set. What does
    /// not load is told by message, counted in `load`, and left out.
    bool LoadXMLData(std::string_view xml, bool loadIDs, bool loadRecorder, LoadContext& load, core::ClassID& id);

private:
    /// How many channels a text announced, and how many of them were loaded.
    struct Count {
        std::int64_t stated = 0;
        std::int64_t loaded = 0;
    };

    void WriteChannels(persistence::UTIL_XMLWrite& writer, std::int32_t mode) const;
    /// `earlier`: channels taken out; one that the text names goes on, the others stay there.
    Count LoadChannels(persistence::UTIL_XMLRead& reader, std::int32_t mode, ChannelRegistry::Table& earlier,
                       persistence::RowBudget& budget, LoadContext& load);
    Channel_Class& ChannelFor(core::ClassID id, std::int32_t mode, ChannelRegistry::Table& earlier);
    void LoadParts(persistence::UTIL_XMLRead& reader, bool loadRecorder, LoadContext& load);

    ProjectFile_Class& m_project;
    ChannelRegistry& m_channels;
};

} // namespace velmora::project
