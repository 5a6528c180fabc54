#include "project/Clipboard_Class.h"

#include "tests/project/ProjectFixture.h"

#include <algorithm>
#include <string>

namespace velmora::project {
namespace {

using Clipboard = ProjectTest;

TEST_F(Clipboard, KeepsEventsThatChangeOrGo)
{
    StartNew();
    Clipboard_Class clipboard(*m_project);
    EXPECT_EQ(clipboard.GetTotalDataI(), -1);
    EXPECT_EQ(clipboard.GetItem_DataType(0), -1);
    EXPECT_EQ(clipboard.Helper_GetChannelEvents_MinTimePos(), 10'000'000);

    const core::ClassID channel = Voice(2).ClassID();
    const std::int32_t late = AddClip(Voice(2), 10'000'001, "late.wav");
    const std::int32_t early = AddClip(Voice(2), 250.5, "early.wav");
    // What is not there adds nothing.
    clipboard.AddEvent_To_Clipboard(channel, 999, 0);
    clipboard.AddEvent_To_Clipboard(-5, early, 0);
    EXPECT_FALSE(clipboard.ValidData());
    clipboard.AddEvent_To_Clipboard(channel, late, 3);
    EXPECT_TRUE(clipboard.ValidData());
    EXPECT_EQ(clipboard.Helper_GetChannelEvents_MinTimePos(), 10'000'000);
    clipboard.AddEvent_To_Clipboard(channel, early, 3);
    EXPECT_EQ(clipboard.Helper_GetChannelEvents_MinTimePos(), 250.5);

    const std::string copied = m_project->util_GetEvent_OBJ(channel, early)->GetXMLData();
    m_project->util_GetEvent_OBJ(channel, early)->Title = "changed";
    SendToChannel(core::Msg_DeleteChannel, channel, 0);

    core::ClassID from = 0;
    std::int32_t row = 0;
    std::int32_t type = -1;
    double timePos = 0;
    std::string text;
    ASSERT_TRUE(clipboard.GetEventData(1, from, row, type, timePos, text));
    EXPECT_EQ(from, channel);
    EXPECT_EQ(row, 3);
    EXPECT_EQ(type, 0);
    EXPECT_EQ(timePos, 250.5);
    EXPECT_EQ(text, copied);
    CDC_Event_Wave_Class pasted;
    ASSERT_TRUE(pasted.LoadXMLData(text));
    EXPECT_EQ(pasted.FilePath, "early.wav");

    EXPECT_FALSE(clipboard.GetEventData(2, from, row, type, timePos, text));
    EXPECT_FALSE(clipboard.GetEventData(-1, from, row, type, timePos, text));
    EXPECT_EQ(text, copied);
    EXPECT_EQ(clipboard.GetItem_DataType(1), 0);
    EXPECT_EQ(clipboard.GetItem_DataType(2), -1);
}

} // namespace
} // namespace velmora::project
