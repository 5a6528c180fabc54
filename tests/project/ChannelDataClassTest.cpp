#include "project/ChannelDataClass.h"

#include "core/MsgSenderClass.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/LoadContext.h"
#include "tests/support/TestEnvironment.h"

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::project {
namespace {

class ChannelData : public ::testing::Test {
protected:
    std::int32_t Add(ChannelDataClass& list, double timePos)
    {
        const std::int32_t id = list.AddEvent(0, timePos);
        auto event = std::make_shared<CDC_Event_Wave_Class>();
        event->EndMS = 100;
        list.SetEventObj(id, event);
        return id;
    }

    bool Load(ChannelDataClass& list, const std::string& text)
    {
        LoadContext load(m_environment->ids);
        const bool done = list.LoadXMLData(text, true, load);
        m_losses = load.Losses();
        return done;
    }

    static std::vector<double> Walk(const ChannelDataClass& list)
    {
        std::vector<double> times;
        for (std::int32_t id = list.GetFirstEvent_ID(); id != -1 && times.size() <= list.EventCount();
             id = list.GetNextEvent_ID(id)) {
            std::int32_t type = 0;
            times.emplace_back();
            EXPECT_TRUE(list.GetEventData(id, type, times.back()));
        }
        return times;
    }

    static std::string Row(int index, const std::string& fields)
    {
        return "<EventData item=\"" + std::to_string(index) + "\">" + fields +
               "<EventOBJData><Event_Wave_Class></Event_Wave_Class></EventOBJData></EventData>";
    }

    testing::TestEnvironment m_environment;
    ChannelDataClass m_list{*m_environment, nullptr};
    std::int32_t m_losses = 0;
};

TEST_F(ChannelData, WalkIsByTimeAndThenByRow)
{
    EXPECT_EQ(m_list.GetFirstEvent_ID(), -1);
    const std::int32_t late = Add(m_list, 30);
    EXPECT_EQ(late, 10);
    const std::int32_t first = Add(m_list, 10);
    const std::int32_t twin = Add(m_list, 10);
    EXPECT_EQ(Walk(m_list), (std::vector<double>{10, 10, 30}));
    EXPECT_EQ(m_list.GetFirstEvent_ID(), first);
    EXPECT_EQ(m_list.GetNextEvent_ID(first), twin);

    // The first free row is used again, so of equal times the newest may come first.
    m_list.DeleteEvent(late);
    m_list.DeleteEvent(4711);
    const std::int32_t newest = Add(m_list, 10);
    EXPECT_EQ(m_list.GetFirstEvent_ID(), newest);
    EXPECT_EQ(m_list.GetNextEvent_ID(newest), first);
    m_list.DeleteAllEvents();
    EXPECT_EQ(m_list.GetFirstEvent_ID(), -1);
    EXPECT_EQ(Add(m_list, 0), newest + 1);
}

TEST_F(ChannelData, AMoveIsSeenByTheWalkOnceTheMoverIsDone)
{
    const std::int32_t a = Add(m_list, 0);
    const std::int32_t b = Add(m_list, 500);
    EXPECT_EQ(m_list.GetFirstEvent_ID(), a);
    EXPECT_TRUE(m_list.SetEvent_TimePos(a, 1000));
    EXPECT_EQ(m_list.GetFirstEvent_ID(), a);
    m_list.Relink();
    EXPECT_EQ(m_list.GetFirstEvent_ID(), b);
    EXPECT_EQ(m_list.Length(), 1100);
    EXPECT_FALSE(m_list.SetEvent_TimePos(99, 0));
}

TEST_F(ChannelData, RandomEditsKeepOrderIdsAndText)
{
    std::mt19937 random(20240607);
    std::set<std::int32_t> given;
    std::vector<std::int32_t> present;
    for (int step = 0; step < 600; ++step) {
        if (present.empty() || random() % 3 != 0) {
            present.push_back(Add(m_list, static_cast<double>(random() % 200)));
            EXPECT_TRUE(given.insert(present.back()).second) << "an id was given twice";
        } else {
            const std::size_t victim = random() % present.size();
            m_list.DeleteEvent(present[victim]);
            present.erase(present.begin() + static_cast<std::ptrdiff_t>(victim));
        }
        if (step % 100 == 99) {
            const std::vector<double> times = Walk(m_list);
            EXPECT_EQ(times.size(), present.size());
            EXPECT_TRUE(std::ranges::is_sorted(times));
            ChannelDataClass copy(*m_environment, nullptr);
            ASSERT_TRUE(Load(copy, m_list.GetXMLData()));
            EXPECT_EQ(copy.GetXMLData(), m_list.GetXMLData());
            EXPECT_EQ(m_losses, 0);
        }
    }
}

TEST_F(ChannelData, ATableThatHasGrownLoadsWithItsSize)
{
    for (int i = 0; i < 23; ++i) {
        Add(m_list, i);
    }
    const std::string text = m_list.GetXMLData();
    EXPECT_NE(text.find("<EventsA_Size>int: 30</EventsA_Size>"), std::string::npos);
    ChannelDataClass copy(*m_environment, nullptr);
    ASSERT_TRUE(Load(copy, text));
    EXPECT_EQ(copy.ClassID(), m_list.ClassID());
    EXPECT_EQ(Add(copy, 5), 10 + 23);
}

TEST_F(ChannelData, ATextOfAnotherListIsRefusedUnlessItsIdIsTaken)
{
    const ChannelDataClass other(*m_environment, nullptr);
    Add(m_list, 7);
    LoadContext load(m_environment->ids);
    EXPECT_FALSE(m_list.LoadXMLData(other.GetXMLData(), false, load));
    EXPECT_EQ(m_environment.ports.messages.LastText(),
              "Invalid channel ID, channel won't be loaded\nChannelDataClass::LoadXMLData");
    EXPECT_EQ(m_list.EventCount(), 1u);
    EXPECT_TRUE(m_list.LoadXMLData(m_list.GetXMLData(), false, load));
}

TEST_F(ChannelData, StatedNumbersAreBelievedOnlyAsFarAsRowsStandThere)
{
    const std::string text = "<ChannelData_Class><ClassID>float: 7</ClassID>"
                             "<EventsA_Size>int: 2147483647</EventsA_Size>"
                             "<EventIDCounter>int: 2147483647</EventIDCounter>" +
                             Row(900000000, "<ID>int: 12</ID><TimePos>float: 5</TimePos>") +
                             Row(3, "<ID>int: 12</ID><TimePos>float: 6</TimePos>") +
                             Row(4, "<ID>int: -1</ID><TimePos>float: 7</TimePos>") +
                             Row(5, "<ID>int: 2147483647</ID><TimePos>float: 8</TimePos>") +
                             Row(6, "<ID>int: 20</ID><TimePos>float: 1e300</TimePos>") +
                             Row(7, "<ID>int: 21</ID><TimePos>float: 1e999</TimePos>") + "</ChannelData_Class>";
    ASSERT_TRUE(Load(m_list, text));
    EXPECT_EQ(Walk(m_list), (std::vector<double>{5, 6, 7, 8}));
    EXPECT_GT(m_losses, 0);
    std::set<std::int32_t> ids;
    for (const EventRow* row : m_list.InTimeOrder()) {
        ids.insert(row->ID);
        EXPECT_GE(row->ID, 10);
        EXPECT_LT(row->ID, 100);
    }
    EXPECT_EQ(ids.size(), 4u);
    EXPECT_FALSE(ids.contains(Add(m_list, 0)));

    // Rows behind the stated end are not read, and that is no whole list.
    const std::string cut = "<ChannelData_Class><EventsA_Size>int: 3</EventsA_Size>" +
                            Row(3, "<ID>int: 12</ID><TimePos>float: 6</TimePos>") +
                            Row(4, "<ID>int: 13</ID><TimePos>float: 6</TimePos>") + "</ChannelData_Class>";
    ASSERT_TRUE(Load(m_list, cut));
    EXPECT_EQ(m_list.EventCount(), 1u);
    EXPECT_GT(m_losses, 0);
}

TEST_F(ChannelData, RowsInsideRowsAreNotReadOverAndOver)
{
    std::string rows = "<ID>int: 12</ID><TimePos>float: 6</TimePos>"
                       "<EventOBJData><Event_Wave_Class></Event_Wave_Class></EventOBJData>";
    for (int i = 50; i >= 0; --i) {
        rows = "<EventData item=\"" + std::to_string(i) + "\">" + rows + "</EventData>";
    }
    ASSERT_TRUE(
        Load(m_list, "<ChannelData_Class><EventsA_Size>int: 50</EventsA_Size>" + rows + "</ChannelData_Class>"));
    EXPECT_EQ(m_list.EventCount(), 1u);
    EXPECT_GT(m_losses, 0);
}

} // namespace
} // namespace velmora::project
