#include "project/CDC_Event_Wave_Class.h"

#include <limits>

#include <gtest/gtest.h>

namespace velmora::project {
namespace {

CDC_Event_Wave_Class Clip(std::int32_t start, std::int32_t end)
{
    CDC_Event_Wave_Class clip;
    clip.StartMS = start;
    clip.EndMS = end;
    return clip;
}

TEST(CDC_Event_Wave_Class, ResizingStopsAtItsLimitsAndReportsWhatItDid)
{
    constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max();
    std::int32_t applied = 0;
    CDC_Event_Wave_Class clip = Clip(300, 1000);
    clip.UTIL_ResizeEvent_Left(kFar, applied);
    EXPECT_EQ(clip.StartMS, 990);
    EXPECT_EQ(applied, 690);
    clip.UTIL_ResizeEvent_Left(-kFar, applied);
    EXPECT_EQ(clip.StartMS, 0);
    EXPECT_EQ(applied, -990);

    // The floor of the end is 10 ms of the file, whatever the start.
    clip = Clip(300, 1000);
    clip.UTIL_ResizeEvent_Right(-kFar, applied);
    EXPECT_EQ(clip.EndMS, 10);
    EXPECT_EQ(applied, -990);
    EXPECT_EQ(clip.GetEventLength(), -290);
    clip.UTIL_ResizeEvent_Right(kFar, applied);
    EXPECT_EQ(clip.EndMS, kFar);
    EXPECT_EQ(Clip(std::numeric_limits<std::int32_t>::min(), kFar).GetEventLength(), 4294967295.0);
}

TEST(CDC_Event_Wave_Class, ShorteningClampsAFadeInAndDropsAFadeOut)
{
    CDC_Event_Wave_Class clip = Clip(0, 1000);
    clip.FadeIn_EndMS = 600;
    clip.FadeOut_StartMS = 800;
    std::int32_t applied = 0;
    clip.UTIL_ResizeEvent_Right(-200, applied);
    EXPECT_EQ(clip.FadeIn_EndMS, 600);
    EXPECT_EQ(clip.FadeOut_StartMS, 800);
    clip.UTIL_ResizeEvent_Left(300, applied);
    EXPECT_EQ(clip.FadeIn_EndMS, 500);
    EXPECT_EQ(clip.FadeOut_StartMS, core::kUnset);
}

TEST(CDC_Event_Wave_Class, TextKeepsEveryFieldAndACopyIsItsOwn)
{
    CDC_Event_Wave_Class clip = Clip(12, 3456);
    clip.FilePath = "Z:\\home\\ann\\<best> & \"last\".wav";
    clip.GainFactor = 0.1;
    clip.FadeIn_EndMS = 7;
    clip.Title = "Straße 'ö'";
    clip.FastExport_Flag = true;
    const auto copy = clip.UTIL_CopyObj();
    EXPECT_EQ(copy->FilePath, clip.FilePath);
    EXPECT_EQ(copy->GainFactor, 0.1);
    EXPECT_EQ(copy->FadeIn_EndMS, 7);
    EXPECT_EQ(copy->FadeOut_StartMS, core::kUnset);
    EXPECT_EQ(copy->Title, clip.Title);
    EXPECT_FALSE(copy->FastExport_Flag);
    copy->EndMS = 1;
    EXPECT_EQ(clip.EndMS, 3456);

    CDC_Event_Wave_Class bare;
    EXPECT_TRUE(bare.LoadXMLData("<event_WAVE_class></event_WAVE_class>"));
    EXPECT_EQ(bare.Title, "Untitled");
    EXPECT_EQ(bare.GainFactor, 1);
    EXPECT_EQ(bare.GetEventLength(), 0);
    EXPECT_FALSE(bare.LoadXMLData("<Event_Midi_Class></Event_Midi_Class>"));
}

} // namespace
} // namespace velmora::project
