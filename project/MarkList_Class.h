#pragma once

#include "core/ClassIds.h"
#include "core/MsgParametersClass.h"
#include "core/MsgSenderClass.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::project {

/// The named points on the project's timeline, in the order of time as they were added.
///
/// A mark whose time is changed keeps its place, so readers must not rely on the order. Ids hold within a session
/// only: loading numbers the marks from 0. Interface thread only.
class MarkList_Class {
public:
    MarkList_Class(core::ClassIdCounter& ids, core::MsgSenderClass& bus);
    ~MarkList_Class();
    MarkList_Class(const MarkList_Class&) = delete;
    MarkList_Class& operator=(const MarkList_Class&) = delete;

    core::ClassID ClassID() const { return m_classID; }
    /// Lands behind the marks of the same time; a negative time is stored as 0. The id of the new mark.
    std::int32_t AddMark(double TimePos, std::string_view Title);
    void DeleteMark(std::int32_t ID);
    /// The last index, -1 for an empty list.
    std::int32_t GetTotalMarks() const { return static_cast<std::int32_t>(m_marks.size()) - 1; }
    bool GetMark_by_Index(std::int32_t Index, std::int32_t& ID, double& TimePos, std::string& Title) const;
    bool GetMark_by_ID(std::int32_t ID, double& TimePos, std::string& Title) const;
    void UpdateMark(std::int32_t ID, double TimePos, std::string_view Title);

    std::string GetXMLData() const;
    /// False for a text of another object, and then the list stays. `complete` tells whether every mark of the text
    /// was taken.
    bool LoadXMLData(std::string_view XML, bool LoadIDs, bool* complete = nullptr);

private:
    struct Mark {
        std::int32_t ID = 0;
        double TimePos = 0;
        std::string Title;
    };

    void MsgHandler_MsgReceived(std::int32_t SenderID, std::int32_t MsgID, core::MsgParametersClass& Params);
    std::vector<Mark>::iterator Find(std::int32_t id);

    core::ClassID m_classID;
    std::vector<Mark> m_marks;
    std::int32_t m_idCounter = 0;
    std::shared_ptr<core::MsgHandlerClass> m_handler;
};

} // namespace velmora::project
