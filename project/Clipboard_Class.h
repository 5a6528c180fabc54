#pragma once

#include "core/ClassIds.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::project {

class ProjectFile_Class;

/// Events that were copied, as text, so that they can be pasted after their sources have changed or gone.
///
/// Filled once: each copy replaces the project's clipboard by a new one. Interface thread only.
class Clipboard_Class {
public:
    /// `project` outlives the clipboard.
    explicit Clipboard_Class(const ProjectFile_Class& project);

    /// What the content is, as its maker says: 6 for events.
    std::int32_t ContentFlags = 0;

    /// An event was added.
    bool ValidData() const { return !m_items.empty(); }
    /// `ChannelRow` is the channel's row in the editor. An event that is not there adds nothing.
    void AddEvent_To_Clipboard(core::ClassID ChannelClassID, std::int32_t EventID, std::int32_t ChannelRow);
    /// 0 for an event, the only kind; -1 outside.
    std::int32_t GetItem_DataType(std::int32_t Index) const;
    /// False, with everything as it was, outside. `TimePos` in ms.
    bool GetEventData(std::int32_t Index, core::ClassID& ChannelClassID, std::int32_t& ChannelRow,
                      std::int32_t& EventType, double& TimePos, std::string& EventXML) const;
    /// The last index, -1 when empty.
    std::int32_t GetTotalDataI() const { return static_cast<std::int32_t>(m_items.size()) - 1; }
    /// The earliest event's time in ms, and 10000000 at most: where a paste takes the block to begin.
    double Helper_GetChannelEvents_MinTimePos() const;

private:
    struct Item {
        core::ClassID ChannelClassID = 0;
        std::int32_t EventID = 0;
        std::int32_t ChannelRow = 0;
        double TimePos = 0;
        std::int32_t EventType = 0;
        std::string EventXML;
    };
    const Item* At(std::int32_t index) const;

    const ProjectFile_Class& m_project;
    std::vector<Item> m_items;
};

} // namespace velmora::project
