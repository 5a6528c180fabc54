#include "engine/internal/Engine.h"

#include "core/Units.h"
#include "engine/audioplayer.h"
#include "engine/internal/PlaybackClock.h"

#include <cstdint>
#include <map>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

TEST(PlaybackClock, GivesBackEveryTime)
{
    for (const std::int32_t rate : {44'100, 48'000, 22'050}) {
        for (std::int32_t ms = 0; ms < 100'000; ms += 7) {
            ASSERT_EQ(PlaybackClock::TimeOf(core::FrameOfMS(ms, rate), rate), ms) << rate;
        }
    }
}

TEST(EngineTables, RowsAreReplacedAndGoWithTheirChannel)
{
    ASSERT_EQ(GetDLLVersion(), 1001);
    initdata();
    const auto events = [] {
        const auto list = Engine::Get().planner.Events();
        return std::map<EventKey, EventRow>(list.begin(), list.end());
    };
    addCC(1, 100);
    addCC(2, 200);
    addEvent(1, 10, 1.0, "Z:\\a.wav", 0, 0, 500, INT32_MIN, INT32_MIN);
    addEvent(1, 11, 1.0, "Z:\\a.wav", 500, 0, 500, INT32_MIN, INT32_MIN);
    addEvent(2, 10, 1.0, nullptr, 0, 0, 500, INT32_MIN, INT32_MIN);
    updateEvent(1, 10, 0.5, "Z:\\b.wav", 20, 1, 2, 3, 4);
    ASSERT_EQ(events().size(), 3U);
    EXPECT_EQ(events().at({1, 10}).filePath, "Z:\\b.wav");
    EXPECT_EQ(events().at({1, 10}).fadeOutStartMS, 4);
    removeEvent(7, 7);
    removeEvent(1, 11);
    EXPECT_EQ(events().size(), 2U);
    removeCC(1);
    EXPECT_EQ(events().size(), 1U);

    player_SetTimePos(1234);
    player_Play();
    player_Play();
    EXPECT_NE(player_IsPlaying(), 0);
    ClearEventList();
    EXPECT_TRUE(events().empty());
    EXPECT_EQ(player_GetTimePos(), 1234) << "the clock stays";
    freedata();
    EXPECT_EQ(player_IsPlaying(), 0);
    EXPECT_EQ(player_GetTimePos(), 0);
}

} // namespace
} // namespace velmora::engine
