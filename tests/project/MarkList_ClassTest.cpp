#include "project/MarkList_Class.h"

#include "core/MsgIds.h"
#include "tests/support/TestEnvironment.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::project {
namespace {

class Marks : public ::testing::Test {
protected:
    using Listed = std::vector<std::pair<double, std::string>>;

    static Listed List(const MarkList_Class& marks)
    {
        Listed listed;
        for (std::int32_t i = 0; i <= marks.GetTotalMarks(); ++i) {
            std::int32_t id = 0;
            listed.emplace_back();
            EXPECT_TRUE(marks.GetMark_by_Index(i, id, listed.back().first, listed.back().second));
        }
        return listed;
    }

    testing::TestEnvironment m_environment;
    std::shared_ptr<core::MsgSenderClass> m_bus =
        std::make_shared<core::MsgSenderClass>(m_environment->ids, m_environment.ports.pendingEvents);
    MarkList_Class m_marks{m_environment->ids, *m_bus};
};

TEST_F(Marks, AreOrderedAsTheyComeAndStayWhereTheyAreWhenChanged)
{
    EXPECT_EQ(m_marks.GetTotalMarks(), -1);
    m_marks.AddMark(-5, "start");
    m_marks.AddMark(700, "b");
    const std::int32_t late = m_marks.AddMark(900, "d");
    m_marks.AddMark(700, "c");
    EXPECT_EQ(List(m_marks), (Listed{{0, "start"}, {700, "b"}, {700, "c"}, {900, "d"}}));
    m_marks.UpdateMark(late, 1, "moved");
    m_marks.UpdateMark(4711, 1, "unknown");
    m_marks.DeleteMark(4711);
    EXPECT_EQ(List(m_marks).back(), (std::pair<double, std::string>{1, "moved"}));

    double timePos = 0;
    std::string title = "as before";
    EXPECT_FALSE(m_marks.GetMark_by_ID(4711, timePos, title));
    std::int32_t id = 0;
    EXPECT_FALSE(m_marks.GetMark_by_Index(4, id, timePos, title));
    EXPECT_EQ(title, "as before");
}

TEST_F(Marks, LoadingNumbersThemAndKeepsTheirOrderAndTheText)
{
    for (int i = 0; i < 30; ++i) {
        m_marks.AddMark(100 * i, "mark " + std::to_string(i));
    }
    m_marks.DeleteMark(3);
    m_marks.UpdateMark(7, 5000, "out of order");
    const std::string text = m_marks.GetXMLData();
    const Listed listed = List(m_marks);

    bool complete = false;
    MarkList_Class loaded(m_environment->ids, *m_bus);
    ASSERT_TRUE(loaded.LoadXMLData(text, true, &complete));
    EXPECT_TRUE(complete);
    EXPECT_EQ(List(loaded), listed);
    EXPECT_EQ(loaded.GetXMLData(), text);
    EXPECT_EQ(loaded.AddMark(0, "next"), 29);
    EXPECT_FALSE(loaded.LoadXMLData("<Other></Other>", true));
    EXPECT_EQ(loaded.GetTotalMarks(), 29);
}

TEST_F(Marks, DamagedItemsCloseUpAndCountsSizeNothing)
{
    const std::string text =
        "<MarkList_Class><TotalN>int: 2147483647</TotalN>"
        "<List item=\"0\"><ID>int: 9</ID><TimePos>float: 2</TimePos><Title>str: kept</Title></List>"
        "<List item=\"1\"><TimePos>float: 3</TimePos></List>"
        "<List item=\"2\"></List>"
        "<List item=\"2000000000\"><ID>int: 9</ID><TimePos>float: 4</TimePos></List></MarkList_Class>";
    bool complete = true;
    ASSERT_TRUE(m_marks.LoadXMLData(text, true, &complete));
    EXPECT_FALSE(complete);
    EXPECT_EQ(List(m_marks), (Listed{{2, "kept"}, {4, "title"}}));
}

TEST_F(Marks, FollowTheBusAndFallSilentWhenTheyGo)
{
    {
        MarkList_Class gone(m_environment->ids, *m_bus);
    }
    core::MsgParametersClass params;
    params.MarkTimeMS = 40;
    params.MarkTitle = "verse";
    m_bus->SendMsg(-1, core::Msg_AddMark, params);
    params.MarkTimeMS = 50;
    m_bus->SendMsg(-1, core::Msg_MarkChanged, params);
    EXPECT_EQ(List(m_marks), (Listed{{50, "verse"}}));
    m_bus->SendMsg(-1, core::Msg_DeleteMark, params);
    EXPECT_EQ(m_marks.GetTotalMarks(), -1);
}

} // namespace
} // namespace velmora::project
