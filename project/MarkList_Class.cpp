#include "project/MarkList_Class.h"

#include "core/MsgIds.h"
#include "persistence/ItemNumbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/internal/Times.h"

#include <algorithm>

namespace velmora::project {
namespace {

constexpr std::int32_t kPriority = 80;

} // namespace

MarkList_Class::MarkList_Class(core::ClassIdCounter& ids, core::MsgSenderClass& bus)
    : m_classID(ids.Draw())
    , m_handler(std::make_shared<core::MsgHandlerClass>(
          ids, [this](std::int32_t sender, std::int32_t msg, core::MsgParametersClass& params) {
              MsgHandler_MsgReceived(sender, msg, params);
          }))
{
    bus.Add_MsgHandlerOBJ(kPriority, m_handler);
}

MarkList_Class::~MarkList_Class()
{
    m_handler->Detach();
}

std::int32_t MarkList_Class::AddMark(double TimePos, std::string_view Title)
{
    const double time = std::max(TimePos, 0.0);
    const auto place = std::ranges::find_if(m_marks, [time](const Mark& mark) { return mark.TimePos > time; });
    m_marks.insert(place, {m_idCounter, time, std::string(Title)});
    return m_idCounter++;
}

void MarkList_Class::DeleteMark(std::int32_t ID)
{
    const auto mark = Find(ID);
    if (mark != m_marks.end()) {
        m_marks.erase(mark);
    }
}

bool MarkList_Class::GetMark_by_Index(std::int32_t Index, std::int32_t& ID, double& TimePos, std::string& Title) const
{
    if (Index < 0 || Index > GetTotalMarks()) {
        return false;
    }
    const Mark& mark = m_marks[static_cast<std::size_t>(Index)];
    ID = mark.ID;
    TimePos = mark.TimePos;
    Title = mark.Title;
    return true;
}

bool MarkList_Class::GetMark_by_ID(std::int32_t ID, double& TimePos, std::string& Title) const
{
    const auto mark = std::ranges::find(m_marks, ID, &Mark::ID);
    if (mark == m_marks.end()) {
        return false;
    }
    TimePos = mark->TimePos;
    Title = mark->Title;
    return true;
}

void MarkList_Class::UpdateMark(std::int32_t ID, double TimePos, std::string_view Title)
{
    const auto mark = Find(ID);
    if (mark != m_marks.end()) {
        mark->TimePos = std::max(TimePos, 0.0);
        mark->Title = Title;
    }
}

std::string MarkList_Class::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("MarkList_Class");
    writer.Add_Element("TotalN", GetTotalMarks());
    // Loading numbers marks by their index. Writing them so makes a text the same before and after.
    writer.Add_Element("IDCounter", GetTotalMarks() + 1);
    for (std::int32_t i = 0; i <= GetTotalMarks(); ++i) {
        const Mark& mark = m_marks[static_cast<std::size_t>(i)];
        persistence::UTIL_XMLWrite item;
        item.Add_Element("ID", i);
        item.Add_Element("TimePos", mark.TimePos);
        item.Add_Element("Title", std::string_view(mark.Title));
        writer.Add_RawElement(persistence::ItemName("List", i), item.GetXMLString());
    }
    return writer.GetXMLString();
}

bool MarkList_Class::LoadXMLData(std::string_view XML, bool /*LoadIDs*/, bool* complete)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XML);
    if (!reader.MasterTagIs("marklist_class")) {
        return false;
    }
    std::int32_t lastIndex = -1;
    bool whole = reader.ReadElement("TotalN", lastIndex, -1);
    std::vector<Mark> marks;
    persistence::RowBudget budget(XML);
    for (const std::int32_t i : persistence::ItemNumbers(XML, "List", lastIndex, &whole)) {
        const auto raw = budget.Take(reader.ReadRaw(persistence::ItemName("List", i)));
        if (!raw || raw->empty()) {
            continue;
        }
        auto item = persistence::UTIL_XMLRead::Plain(*raw);
        Mark mark;
        item.ReadElement("Title", mark.Title, "title");
        const bool hasID = item.ReadElement("ID", mark.ID, 100);
        if (item.ReadElement("TimePos", mark.TimePos, 10) && hasID) {
            mark.ID = static_cast<std::int32_t>(marks.size());
            mark.TimePos = std::clamp(mark.TimePos, 0.0, kLatestMS);
            marks.push_back(std::move(mark));
        }
    }
    if (complete) {
        *complete = whole && static_cast<std::int64_t>(marks.size()) == std::max<std::int64_t>(lastIndex, -1) + 1;
    }
    m_marks = std::move(marks);
    m_idCounter = GetTotalMarks() + 1;
    return true;
}

void MarkList_Class::MsgHandler_MsgReceived(std::int32_t /*SenderID*/, std::int32_t MsgID,
                                            core::MsgParametersClass& Params)
{
    switch (MsgID) {
    case core::Msg_AddMark:
        AddMark(Params.MarkTimeMS, Params.MarkTitle);
        break;
    case core::Msg_DeleteMark:
        DeleteMark(Params.MarkID);
        break;
    case core::Msg_MarkChanged:
        UpdateMark(Params.MarkID, Params.MarkTimeMS, Params.MarkTitle);
        break;
    default:
        break;
    }
}

std::vector<MarkList_Class::Mark>::iterator MarkList_Class::Find(std::int32_t id)
{
    return std::ranges::find(m_marks, id, &Mark::ID);
}

} // namespace velmora::project
