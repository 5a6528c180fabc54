#include "project/Clipboard_Class.h"

#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

#include <algorithm>
#include <utility>

namespace velmora::project {
namespace {

constexpr std::int32_t kEvent = 0;
constexpr std::int32_t kNoItem = -1;
constexpr double kLatestOrigin = 10'000'000;

} // namespace

Clipboard_Class::Clipboard_Class(const ProjectFile_Class& project)
    : m_project(project)
{
}

void Clipboard_Class::AddEvent_To_Clipboard(core::ClassID ChannelClassID, std::int32_t EventID, std::int32_t ChannelRow)
{
    const Channel_Class* channel = m_project.Chn_GetChannelClassObj_by_ID(ChannelClassID);
    Item item{ChannelClassID, EventID, ChannelRow, 0, 0, {}};
    if (!channel || !channel->ChannelData->GetEventData(EventID, item.EventType, item.TimePos)) {
        return;
    }
    const auto event = m_project.util_GetEvent_OBJ(ChannelClassID, EventID);
    if (!event) {
        return;
    }
    item.EventXML = event->GetXMLData();
    m_items.push_back(std::move(item));
}

std::int32_t Clipboard_Class::GetItem_DataType(std::int32_t Index) const
{
    return At(Index) ? kEvent : kNoItem;
}

bool Clipboard_Class::GetEventData(std::int32_t Index, core::ClassID& ChannelClassID, std::int32_t& ChannelRow,
                                   std::int32_t& EventType, double& TimePos, std::string& EventXML) const
{
    const Item* item = At(Index);
    if (!item) {
        return false;
    }
    ChannelClassID = item->ChannelClassID;
    ChannelRow = item->ChannelRow;
    EventType = item->EventType;
    TimePos = item->TimePos;
    EventXML = item->EventXML;
    return true;
}

double Clipboard_Class::Helper_GetChannelEvents_MinTimePos() const
{
    double earliest = kLatestOrigin;
    for (const Item& item : m_items) {
        earliest = std::min(earliest, item.TimePos);
    }
    return earliest;
}

const Clipboard_Class::Item* Clipboard_Class::At(std::int32_t index) const
{
    return index >= 0 && index <= GetTotalDataI() ? &m_items[static_cast<std::size_t>(index)] : nullptr;
}

} // namespace velmora::project
