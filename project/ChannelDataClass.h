#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"
#include "persistence/SharedText.h"

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmora::core {
class MsgHandlerClass;
class MsgSenderClass;
} // namespace velmora::core

namespace velmora::project {

class CDC_Event_Wave_Class;
class LoadContext;

/// One row of a channel's event list.
struct EventRow {
    std::int32_t Index = 0;
    /// Unique in its list.
    std::int32_t ID = 0;
    /// 0 for a wave event, the only type.
    std::int32_t EventType = 0;
    /// Start on the timeline, ms.
    double TimePos = 0;
    std::shared_ptr<CDC_Event_Wave_Class> EventOBJ;
    /// Rows before and after it in time, -1 for none.
    std::int32_t PrevItemI = -1;
    std::int32_t NextItemI = -1;
    /// Its place in `InTimeOrder`.
    std::size_t Rank = 0;
};

/// The events of one channel: a table of rows, linked in the order of time; rows of one time by their index.
///
/// Only rows in use take memory. Links are made afresh, in n log n, when they are first read after a change, so a
/// batch of changes costs one sort. `SetEvent_TimePos` alone keeps the links: a mover calls `Relink` when done.
/// Unknown ids are no error: getters say so, setters do nothing. Interface thread only.
class ChannelDataClass {
public:
    ChannelDataClass(core::Environment& environment, std::shared_ptr<core::MsgSenderClass> bus);
    ~ChannelDataClass();
    ChannelDataClass(const ChannelDataClass&) = delete;
    ChannelDataClass& operator=(const ChannelDataClass&) = delete;

    /// Back to 11 free rows. The ids go on.
    void DeleteAllEvents();
    core::ClassID ClassID() const { return m_classID; }
    void ReceiveMsgs(bool Enable, std::int32_t Priority);

    /// Every event has no stream, and then: the streams of those that have one are freed.
    void FastExport_ClearFlags();
    void FastExport_CloseStreams();

    /// Takes the first free row; the caller gives it its object by `SetEventObj`.
    std::int32_t AddEvent(std::int32_t EventType, double TimePos);
    void DeleteEvent(std::int32_t ID);
    std::shared_ptr<CDC_Event_Wave_Class> GetEventOBJ(std::int32_t ID) const;
    void SetEventObj(std::int32_t ID, std::shared_ptr<CDC_Event_Wave_Class> object);
    bool GetEventData(std::int32_t ID, std::int32_t& EventType, double& TimePos) const;
    bool SetEvent_TimePos(std::int32_t ID, double TimePos);
    /// -1 when the list is empty.
    std::int32_t GetFirstEvent_ID() const;
    /// -1 after the last event and for an unknown id.
    std::int32_t GetNextEvent_ID(std::int32_t ID) const;

    std::string GetXMLData() const { return GetSharedXML().Text(); }
    persistence::SharedText GetSharedXML() const;
    /// Replaces the events. Without `AdoptClassID` a text of another list is refused with a message. Events that do
    /// not load are left out, and `load` counts them.
    bool LoadXMLData(std::string_view XML, bool AdoptClassID, LoadContext& load);

    /// The links must be made afresh: a time was changed.
    void Relink() { m_linksStale = true; }
    /// All rows in the order of time; valid until the next change.
    std::span<const EventRow* const> InTimeOrder() const;
    std::size_t EventCount() const { return m_rows.size(); }
    /// End of the last event, ms; 0 when empty. Kept until something changes.
    double Length() const;
    /// An event's content was changed from outside.
    void EventsChanged() { m_lengthStale = true; }

private:
    EventRow* Find(std::int32_t id) const;
    EventRow& NewRow(std::int32_t index);
    bool LoadRow(std::int32_t index, std::string_view text, LoadContext& load, std::vector<EventRow*>& withoutID);
    void Link() const;
    static persistence::SharedText RowText(const EventRow& row, std::int32_t indent);

    core::Environment& m_environment;
    std::shared_ptr<core::MsgSenderClass> m_bus;
    std::shared_ptr<core::MsgHandlerClass> m_handler;
    core::ClassID m_classID;
    /// By row index. Links and ranks are brought up to date by readers.
    mutable std::map<std::int32_t, EventRow> m_rows;
    std::unordered_map<std::int32_t, EventRow*> m_byID;
    mutable std::vector<const EventRow*> m_inTimeOrder;
    mutable bool m_linksStale = false;
    mutable double m_length = 0;
    mutable bool m_lengthStale = false;
    /// Highest row index of the table, free rows included.
    std::int32_t m_lastRow;
    /// No row below it is free.
    std::int32_t m_firstFree = 0;
    std::int32_t m_eventIDCounter;
};

} // namespace velmora::project
