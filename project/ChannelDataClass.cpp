#include "project/ChannelDataClass.h"

#include "core/MsgHandlerClass.h"
#include "core/MsgSenderClass.h"
#include "persistence/ItemNumbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/LoadContext.h"
#include "project/internal/Times.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <cmath>

namespace velmora::project {
namespace {

constexpr std::int32_t kLastRowAtStart = 10;
constexpr std::int32_t kRowStep = 10;
constexpr std::int32_t kFirstEventID = 10;
/// Ids of a text above it are replaced, so that the counter cannot run over.
constexpr std::int32_t kGreatestEventID = 1'000'000'000;
constexpr std::int32_t kGreatestRow = 1'000'000'000;
/// A move changes its own row and its neighbours in time, which may stand in as many blocks.
constexpr std::int32_t kRowsPerBlock = 16;

double OnTimeline(double timePos)
{
    return std::isnan(timePos) ? 0 : std::clamp(timePos, -kLatestMS, kLatestMS);
}

} // namespace

ChannelDataClass::ChannelDataClass(core::Environment& environment, std::shared_ptr<core::MsgSenderClass> bus)
    : m_environment(environment)
    , m_bus(std::move(bus))
    , m_classID(environment.ids.Draw())
    , m_lastRow(kLastRowAtStart)
    , m_eventIDCounter(kFirstEventID)
{
}

ChannelDataClass::~ChannelDataClass()
{
    if (m_handler) {
        m_handler->Detach();
    }
}

void ChannelDataClass::DeleteAllEvents()
{
    m_rows.clear();
    m_byID.clear();
    m_lastRow = kLastRowAtStart;
    m_firstFree = 0;
    m_linksStale = true;
    m_lengthStale = true;
}

void ChannelDataClass::ReceiveMsgs(bool Enable, std::int32_t Priority)
{
    if (!Enable) {
        m_environment.ports.messages.Show("ChannelDataClass::ReceiveMsgs not implemented yet");
        return;
    }
    // The list answers no message itself: its channel does.
    m_handler = std::make_shared<core::MsgHandlerClass>(m_environment.ids,
                                                        [](std::int32_t, std::int32_t, core::MsgParametersClass&) {});
    m_bus->Add_MsgHandlerOBJ(Priority, m_handler);
}

void ChannelDataClass::FastExport_ClearFlags()
{
    for (auto& [index, row] : m_rows) {
        if (row.EventOBJ) {
            row.EventOBJ->FastExport_Flag = false;
            row.EventOBJ->FastExport_Stream = 0;
        }
    }
}

void ChannelDataClass::FastExport_CloseStreams()
{
    for (auto& [index, row] : m_rows) {
        if (row.EventOBJ && row.EventOBJ->FastExport_Flag) {
            BASS_StreamFree(row.EventOBJ->FastExport_Stream);
        }
    }
    FastExport_ClearFlags();
}

std::int32_t ChannelDataClass::AddEvent(std::int32_t EventType, double TimePos)
{
    auto occupied = m_rows.lower_bound(m_firstFree);
    while (occupied != m_rows.end() && occupied->first == m_firstFree) {
        ++occupied;
        ++m_firstFree;
    }
    if (m_firstFree > m_lastRow) {
        m_lastRow += kRowStep;
    }
    EventRow& row = NewRow(m_firstFree++);
    row.ID = m_eventIDCounter++;
    row.EventType = EventType;
    row.TimePos = OnTimeline(TimePos);
    m_byID[row.ID] = &row;
    return row.ID;
}

void ChannelDataClass::DeleteEvent(std::int32_t ID)
{
    const EventRow* row = Find(ID);
    if (!row) {
        return;
    }
    m_firstFree = std::min(m_firstFree, row->Index);
    m_byID.erase(ID);
    m_rows.erase(row->Index);
    m_linksStale = true;
    m_lengthStale = true;
}

std::shared_ptr<CDC_Event_Wave_Class> ChannelDataClass::GetEventOBJ(std::int32_t ID) const
{
    const EventRow* row = Find(ID);
    return row ? row->EventOBJ : nullptr;
}

void ChannelDataClass::SetEventObj(std::int32_t ID, std::shared_ptr<CDC_Event_Wave_Class> object)
{
    if (EventRow* row = Find(ID)) {
        row->EventOBJ = std::move(object);
        m_lengthStale = true;
    }
}

bool ChannelDataClass::GetEventData(std::int32_t ID, std::int32_t& EventType, double& TimePos) const
{
    const EventRow* row = Find(ID);
    if (!row) {
        return false;
    }
    EventType = row->EventType;
    TimePos = row->TimePos;
    return true;
}

bool ChannelDataClass::SetEvent_TimePos(std::int32_t ID, double TimePos)
{
    EventRow* row = Find(ID);
    if (!row) {
        return false;
    }
    row->TimePos = OnTimeline(TimePos);
    m_lengthStale = true;
    return true;
}

std::int32_t ChannelDataClass::GetFirstEvent_ID() const
{
    Link();
    return m_inTimeOrder.empty() ? -1 : m_inTimeOrder.front()->ID;
}

std::int32_t ChannelDataClass::GetNextEvent_ID(std::int32_t ID) const
{
    const EventRow* row = Find(ID);
    if (!row) {
        return -1;
    }
    Link();
    return row->Rank + 1 < m_inTimeOrder.size() ? m_inTimeOrder[row->Rank + 1]->ID : -1;
}

std::span<const EventRow* const> ChannelDataClass::InTimeOrder() const
{
    Link();
    return m_inTimeOrder;
}

double ChannelDataClass::Length() const
{
    if (m_lengthStale) {
        m_length = 0;
        for (const auto& [index, row] : m_rows) {
            m_length = std::max(m_length, row.TimePos + (row.EventOBJ ? row.EventOBJ->GetEventLength() : 0));
        }
        m_lengthStale = false;
    }
    return m_length;
}

persistence::SharedText ChannelDataClass::GetSharedXML() const
{
    Link();
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("ChannelData_Class");
    writer.Add_Element("ClassID", m_classID);
    writer.Add_Element("EventsA_Size", m_lastRow);
    writer.Add_Element("EventIDCounter", m_eventIDCounter);
    writer.Add_Element("List_FirstItem", m_inTimeOrder.empty() ? -1 : m_inTimeOrder.front()->Index);
    // Rows are bound in blocks, so that a list with few changes has few pieces of its own.
    for (auto row = m_rows.begin(); row != m_rows.end();) {
        persistence::UTIL_XMLWrite block;
        block.Indent = writer.Indent;
        const std::int32_t number = row->first / kRowsPerBlock;
        for (; row != m_rows.end() && row->first / kRowsPerBlock == number; ++row) {
            block.Add_Elements(RowText(row->second, block.Indent));
        }
        writer.Add_Elements(block.GetSharedXML());
    }
    return writer.GetSharedXML();
}

persistence::SharedText ChannelDataClass::RowText(const EventRow& row, std::int32_t indent)
{
    persistence::UTIL_XMLWrite item;
    item.Add_Element("ID", row.ID);
    item.Add_Element("EventType", row.EventType);
    item.Add_Element("TimePos", row.TimePos);
    item.Add_Element("PrevItemI", row.PrevItemI);
    item.Add_Element("NextItemI", row.NextItemI);
    item.Add_RawElement("EventOBJData", row.EventOBJ ? row.EventOBJ->GetSharedXML() : persistence::SharedText());
    persistence::UTIL_XMLWrite element;
    element.Indent = indent;
    element.Add_RawElement(persistence::ItemName("EventData", row.Index), item.GetSharedXML());
    return element.GetSharedXML();
}

bool ChannelDataClass::LoadXMLData(std::string_view XML, bool AdoptClassID, LoadContext& load)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XML);
    if (!reader.MasterTagIs("channeldata_class")) {
        return false;
    }
    core::ClassID stated = -1;
    reader.ReadElement("ClassID", stated, -1);
    if (AdoptClassID) {
        m_classID = load.Adopt(stated);
    } else if (stated != m_classID) {
        m_environment.ports.messages.Show("Invalid channel ID, channel won't be loaded\nChannelDataClass::LoadXMLData");
        return false;
    }

    DeleteAllEvents();
    bool whole = reader.ReadElement("EventsA_Size", m_lastRow, kLastRowAtStart);
    if (m_lastRow < 0 || m_lastRow > kGreatestRow) {
        m_lastRow = m_lastRow < 0 ? kLastRowAtStart : kGreatestRow;
        whole = false;
    }
    reader.ReadElement("EventIDCounter", m_eventIDCounter, kFirstEventID);
    if (m_eventIDCounter < kFirstEventID || m_eventIDCounter > kGreatestEventID) {
        m_eventIDCounter = kFirstEventID;
    }
    std::vector<EventRow*> withoutID;
    persistence::RowBudget budget(XML);
    for (const std::int32_t i : persistence::ItemNumbers(XML, "EventData", m_lastRow, &whole)) {
        const auto raw = budget.Take(reader.ReadRaw(persistence::ItemName("EventData", i)));
        if (!raw || !LoadRow(i, *raw, load, withoutID)) {
            whole = false;
        }
    }
    for (EventRow* row : withoutID) {
        row->ID = m_eventIDCounter++;
        m_byID[row->ID] = row;
    }
    if (!whole) {
        load.CountLoss();
    }
    return true;
}

bool ChannelDataClass::LoadRow(std::int32_t index, std::string_view text, LoadContext& load,
                               std::vector<EventRow*>& withoutID)
{
    auto reader = persistence::UTIL_XMLRead::Plain(text);
    double timePos = 0;
    if (!reader.ReadElement("TimePos", timePos, 0) || std::abs(timePos) > kLatestMS) {
        return false;
    }
    auto object = std::make_shared<CDC_Event_Wave_Class>();
    const auto objectText = reader.ReadRaw("EventOBJData");
    if (!objectText || !object->LoadXMLData(*objectText, load.Files())) {
        return false;
    }
    EventRow& row = NewRow(index);
    row.TimePos = timePos;
    row.EventOBJ = std::move(object);
    reader.ReadElement("EventType", row.EventType, 0);
    row.ID = -1;
    reader.ReadElement("ID", row.ID, -1);
    if (row.ID < 0 || row.ID > kGreatestEventID || !m_byID.try_emplace(row.ID, &row).second) {
        withoutID.push_back(&row);
    } else {
        m_eventIDCounter = std::max(m_eventIDCounter, row.ID + 1);
    }
    return true;
}

EventRow* ChannelDataClass::Find(std::int32_t id) const
{
    const auto found = m_byID.find(id);
    return found == m_byID.end() ? nullptr : found->second;
}

EventRow& ChannelDataClass::NewRow(std::int32_t index)
{
    EventRow& row = m_rows[index];
    row.Index = index;
    m_linksStale = true;
    m_lengthStale = true;
    return row;
}

void ChannelDataClass::Link() const
{
    if (!m_linksStale) {
        return;
    }
    std::vector<EventRow*> order;
    order.reserve(m_rows.size());
    for (auto& [index, row] : m_rows) {
        order.push_back(&row);
    }
    // Rows stand in the order of their index, which a stable sort keeps for equal times.
    std::ranges::stable_sort(order, {}, &EventRow::TimePos);
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i]->Rank = i;
        order[i]->PrevItemI = i > 0 ? order[i - 1]->Index : -1;
        order[i]->NextItemI = i + 1 < order.size() ? order[i + 1]->Index : -1;
    }
    m_inTimeOrder.assign(order.begin(), order.end());
    m_linksStale = false;
}

} // namespace velmora::project
