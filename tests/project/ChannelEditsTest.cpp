#include "tests/project/ProjectFixture.h"

#include <optional>

namespace velmora::project {
namespace {

class ChannelEdits : public ProjectTest {
protected:
    ChannelEdits()
    {
        StartNew();
        m_id = AddClip(Voice(0), 2000);
    }

    /// An edit of the one clip; what it left in the message.
    core::MsgParametersClass Edit(std::int32_t msgID, double value, std::optional<std::int32_t> id = {})
    {
        core::MsgParametersClass params;
        params.ChannelID = Voice(0).ClassID();
        params.EventID = id.value_or(m_id);
        params.Value = value;
        params.SplitPosMS = value;
        params.EditDeltaMS = params.NewTimePosMS = static_cast<std::int32_t>(value);
        return Send(msgID, params);
    }

    CDC_Event_Wave_Class& Clip(std::optional<std::int32_t> id = {})
    {
        return *Voice(0).ChannelData->GetEventOBJ(id.value_or(m_id));
    }

    double TimePos(std::optional<std::int32_t> id = {})
    {
        return m_project->util_GetEvent_TimePos(Voice(0).ClassID(), id.value_or(m_id));
    }

    std::int32_t m_id = 0;
};

TEST_F(ChannelEdits, ResizingLeftKeepsTheSoundInPlaceAndStopsAtZero)
{
    Edit(core::Msg_EventEdit_ResizeLeft, 300);
    EXPECT_EQ(Clip().StartMS, 300);
    EXPECT_EQ(TimePos(), 2300);
    Edit(core::Msg_EventEdit_ResizeLeft, -900);
    EXPECT_EQ(Clip().StartMS, 0);
    EXPECT_EQ(TimePos(), 2000);
    Edit(core::Msg_EventEdit_ResizeLeft, 99999);
    EXPECT_EQ(Clip().GetEventLength(), 10);
    EXPECT_EQ(m_project->util_GetProjectLength(), 3000);

    const std::int32_t atZero = AddClip(Voice(0), 0);
    EXPECT_EQ(Edit(core::Msg_EventEdit_ResizeLeft, -500, atZero).EditDeltaMS, 0);
    EXPECT_EQ(Clip(atZero).StartMS, 0);
    Edit(core::Msg_EventEdit_ResizeRight, 500, 4711);
}

TEST_F(ChannelEdits, AMoveChangesOrderAndLengthAtOnce)
{
    const std::int32_t other = AddClip(Voice(0), 2500);
    Edit(core::Msg_EventEdit_Move, 4000);
    EXPECT_EQ(TimePos(), 6000);
    EXPECT_EQ(Voice(0).ChannelData->GetFirstEvent_ID(), other);
    EXPECT_EQ(m_project->util_GetProjectLength(), 7000);
    Edit(core::Msg_EventEdit_ResizeRight, -400);
    EXPECT_EQ(m_project->util_GetProjectLength(), 6600);
    Edit(core::Msg_EventEdit_Move, -99999);
    EXPECT_EQ(TimePos(), 0);
    EXPECT_EQ(Voice(0).ChannelData->GetFirstEvent_ID(), m_id);
}

TEST_F(ChannelEdits, ASplitSharesOutTheFades)
{
    Clip().StartMS = 100;
    Clip().EndMS = 1100;
    Clip().FadeIn_EndMS = 200;
    Clip().FadeOut_StartMS = 700;
    Clip().GainFactor = 0.5;
    const std::int32_t second = Edit(core::Msg_EventEdit_Split, 400).SplitNewEventID;
    EXPECT_EQ(TimePos(second), 2400);
    EXPECT_EQ(Clip().EndMS, 500);
    EXPECT_EQ(Clip(second).StartMS, 500);
    EXPECT_EQ(Clip(second).EndMS, 1100);
    EXPECT_EQ(Clip(second).GainFactor, 0.5);
    EXPECT_EQ(Clip().FadeIn_EndMS, 200);
    EXPECT_EQ(Clip().FadeOut_StartMS, core::kUnset);
    EXPECT_EQ(Clip(second).FadeIn_EndMS, core::kUnset);
    EXPECT_EQ(Clip(second).FadeOut_StartMS, 300);

    // Through a fade-out, and at the very start.
    EXPECT_EQ(Clip(Edit(core::Msg_EventEdit_Split, 350, second).SplitNewEventID).FadeOut_StartMS, 1);
    Edit(core::Msg_EventEdit_Split, 0);
    EXPECT_EQ(Clip().GetEventLength(), 0);
    const std::size_t count = Voice(0).ChannelData->EventCount();
    Edit(core::Msg_EventEdit_Split, 0, 4711);
    EXPECT_EQ(Voice(0).ChannelData->EventCount(), count);
}

TEST_F(ChannelEdits, FadesMoveOutOfEachOthersWay)
{
    Edit(core::Msg_EventEdit_SetFadeOut, 600);
    Edit(core::Msg_EventEdit_SetFadeIn, 800);
    EXPECT_EQ(Clip().FadeIn_EndMS, 800);
    EXPECT_EQ(Clip().FadeOut_StartMS, 801);
    Edit(core::Msg_EventEdit_SetFadeOut, 300);
    EXPECT_EQ(Clip().FadeOut_StartMS, 300);
    EXPECT_EQ(Clip().FadeIn_EndMS, 299);
    // No room behind the fade-in: the fade-out goes.
    EXPECT_EQ(Edit(core::Msg_EventEdit_SetFadeIn, 5000).Value, 1000);
    EXPECT_EQ(Clip().FadeIn_EndMS, 1000);
    EXPECT_EQ(Clip().FadeOut_StartMS, core::kUnset);
    // A fade-out at the end is none, and takes the fade-in along.
    Edit(core::Msg_EventEdit_SetFadeOut, 1000);
    EXPECT_EQ(Clip().FadeOut_StartMS, core::kUnset);
    EXPECT_EQ(Clip().FadeIn_EndMS, core::kUnset);
    Edit(core::Msg_EventEdit_SetFadeIn, 2.5);
    EXPECT_EQ(Clip().FadeIn_EndMS, 2);
    Edit(core::Msg_EventEdit_SetFadeIn, -1);
    EXPECT_EQ(Clip().FadeIn_EndMS, core::kUnset);
    Edit(core::Msg_EventEdit_SetGain, 0.25);
    EXPECT_EQ(Clip().GainFactor, 0.25);
}

} // namespace
} // namespace velmora::project
