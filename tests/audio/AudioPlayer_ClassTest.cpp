#include "audio/AudioPlayer_Class.h"

#include "core/Units.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/project/ProjectFixture.h"
#include "tests/support/Becomes.h"

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace velmora::audio {
namespace {

constexpr std::chrono::milliseconds kTick{50};

/// A new project, and what went over its bus of the transport.
class Player : public project::ProjectTest {
protected:
    struct Heard {
        std::int32_t msgID = 0;
        std::int32_t posMS = 0;
        bool operator==(const Heard&) const = default;
    };

    Player()
    {
        m_environment->config.BassBuffer_LengthMS = 100;
        StartNew();
        m_listener = std::make_shared<core::MsgHandlerClass>(
            m_environment->ids, [this](std::int32_t, std::int32_t msgID, core::MsgParametersClass& params) {
                if (msgID == core::Msg_Player_Tick) {
                    heard.push_back({msgID, params.PlayerPosMS});
                } else if (msgID == core::Msg_Player_SetRange) {
                    heard.push_back({msgID, params.PlayToMS});
                } else if (msgID == core::Msg_Player_Stop) {
                    heard.push_back({msgID, 0});
                }
            });
        m_project->MsgSender->Add_MsgHandlerOBJ(31, m_listener);
    }

    /// One clip that ends at `ms`.
    void MakeLength(std::int32_t ms)
    {
        WriteSound("a.wav");
        AddClip(Music(0), ms - 1000);
        ASSERT_EQ(m_project->util_GetProjectLength(), ms);
    }

    core::MsgParametersClass SeekTo(std::int32_t ms) { return SetRange(core::kUnset, ms); }
    core::MsgParametersClass SeekBy(std::int32_t ms) { return SetRange(ms, 77); }

    /// Playing for the document, with the engine's clock held where a test can tell it.
    void PlayHeldAt(std::int32_t ms)
    {
        Send(core::Msg_Player_Play);
        player_Pause();
        player_SetTimePos(ms);
        heard.clear();
    }
    std::int32_t Now() const { return m_project->Player->GetTimePos(); }
    void PassTime(std::chrono::milliseconds time) { m_environment.ports.timers.Advance(time); }

    std::vector<Heard> heard;

private:
    core::MsgParametersClass SetRange(std::int32_t by, std::int32_t to)
    {
        core::MsgParametersClass params;
        params.PlayFromMS = by;
        params.PlayToMS = to;
        return Send(core::Msg_Player_SetRange, params);
    }

    std::shared_ptr<core::MsgHandlerClass> m_listener;
};

TEST_F(Player, SeeksAreAbsoluteOrRelativeWithinTheirLimits)
{
    MakeLength(1000);
    std::vector<std::int32_t> afterPlayer;
    const auto late = std::make_shared<core::MsgHandlerClass>(
        m_environment->ids,
        [&](std::int32_t, std::int32_t msgID, core::MsgParametersClass&) { afterPlayer.push_back(msgID); });
    m_project->MsgSender->Add_MsgHandlerOBJ(29, late);

    EXPECT_TRUE(SeekTo(900).CancelDelivery);
    EXPECT_EQ(afterPlayer, std::vector{core::Msg_Player_Tick}) << "nobody else takes it for a seek";
    EXPECT_EQ(heard.back(), (Heard{core::Msg_Player_Tick, 900}));
    SeekBy(5000);
    EXPECT_EQ(Now(), 5900);
    SeekBy(INT32_MAX);
    EXPECT_EQ(Now(), 31'000);
    SeekTo(2000);
    SeekBy(-5000);
    EXPECT_EQ(Now(), 0);
    EXPECT_EQ(heard.back(), (Heard{core::Msg_Player_Tick, 0}));
    SeekTo(-7);
    EXPECT_EQ(Now(), 0);
    PassTime(10 * kTick);
    EXPECT_EQ(heard.back(), (Heard{core::Msg_Player_Tick, 0})) << "the timer rests while nothing plays";

    // The recorder, above, can keep a seek from happening.
    const auto guard = std::make_shared<core::MsgHandlerClass>(
        m_environment->ids,
        [](std::int32_t, std::int32_t, core::MsgParametersClass& params) { params.CancelDelivery = true; });
    m_project->MsgSender->Add_MsgHandlerOBJ(90, guard);
    SeekTo(500);
    EXPECT_EQ(Now(), 0);
}

TEST_F(Player, PlayAtTheEndStartsOverAndAStopJumpsBackWhenAsked)
{
    MakeLength(1000);
    SeekTo(1000);
    heard.clear();
    Send(core::Msg_Player_Play);
    EXPECT_TRUE(m_project->Player->isPlaying());
    EXPECT_EQ(m_project->Player->LastPlayStartMS, 0);
    EXPECT_EQ(heard.front(), (Heard{core::Msg_Player_SetRange, 0}));
    Send(core::Msg_Player_Stop);
    EXPECT_FALSE(m_project->Player->isPlaying());

    m_environment->config.Playback_Jumpback = 1;
    SeekTo(999);
    Send(core::Msg_Player_Play);
    EXPECT_EQ(m_project->Player->LastPlayStartMS, 999);
    SeekTo(20);
    Send(core::Msg_Player_Stop);
    EXPECT_EQ(Now(), 999);

    m_environment->config.Playback_Jumpback = 0;
    PlayHeldAt(20);
    Send(core::Msg_Player_Stop);
    EXPECT_EQ(Now(), 20);
    EXPECT_EQ(heard, (std::vector<Heard>{{core::Msg_Player_Stop, 0}}));
}

TEST_F(Player, TicksTellThePositionThatIsHeardWhenItMoved)
{
    MakeLength(10'000);
    PlayHeldAt(1234);
    PassTime(kTick / 2);
    EXPECT_TRUE(heard.empty());
    PassTime(kTick / 2);
    EXPECT_EQ(heard, (std::vector<Heard>{{core::Msg_Player_Tick, 1134}}));
    PassTime(3 * kTick);
    EXPECT_EQ(heard.size(), 1U) << "the position stands still";
    player_SetTimePos(40);
    PassTime(kTick);
    EXPECT_EQ(heard.back(), (Heard{core::Msg_Player_Tick, 0}));
    Send(core::Msg_Player_Stop);
    heard.clear();
    player_SetTimePos(50);
    PassTime(kTick);
    EXPECT_TRUE(heard.empty());
}

TEST_F(Player, StopsBehindTheEndUnlessAnExportForbids)
{
    MakeLength(1000);
    m_environment->config.Playback_Jumpback = 0;
    PlayHeldAt(1000);
    PassTime(kTick);
    EXPECT_EQ(heard, (std::vector<Heard>{{core::Msg_Player_Tick, 900}})) << "at the end is not behind it";
    PlayHeldAt(1001);
    PassTime(kTick);
    EXPECT_EQ(heard,
              (std::vector<Heard>{
                  {core::Msg_Player_Stop, 0}, {core::Msg_Player_SetRange, 1000}, {core::Msg_Player_Tick, 1000}}));
    EXPECT_EQ(Now(), 1000);
    EXPECT_EQ(m_environment.ports.timers.RunningCount(), 0);

    m_environment->config.Playback_Jumpback = 1;
    SeekTo(300);
    PlayHeldAt(1500);
    PassTime(kTick);
    EXPECT_EQ(heard, (std::vector<Heard>{
                         {core::Msg_Player_Stop, 0}, {core::Msg_Player_SetRange, 300}, {core::Msg_Player_Tick, 300}}));

    m_project->Player->Cursor.AutoStopEnabled = false;
    PlayHeldAt(1002);
    PassTime(kTick);
    EXPECT_EQ(heard, (std::vector<Heard>{{core::Msg_Player_Tick, 902}}));
    Send(core::Msg_Player_Stop);
}

/// What an edit does to the engine's table, against the model's own lists.
class EngineFollows : public project::ProjectTest {
protected:
    EngineFollows()
    {
        StartNew();
        WriteSound("a.wav");
        WriteSound("b.wav", 2000);
        m_first = AddClip(Voice(0), 500.4, "a.wav");
        m_second = AddClip(Voice(1), 0, "b.wav");
    }

    static std::set<std::string> Engine()
    {
        ::testing::internal::CaptureStderr();
        dbg_PrintEventList();
        std::istringstream text(::testing::internal::GetCapturedStderr());
        std::set<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.insert(line);
        }
        return lines;
    }

    std::set<std::string> Model() const
    {
        std::set<std::string> lines;
        for (std::int32_t i = 0; i < m_project->Chn_GetChannelClass_TotalN(); ++i) {
            const auto& channel = *m_project->Chn_GetChannelObj_by_Index(i);
            for (const project::EventRow* row : channel.ChannelData->InTimeOrder()) {
                const auto& event = *row->EventOBJ;
                std::ostringstream line;
                line << core::RoundToInt(channel.ClassID()) << ' ' << row->ID << " at "
                     << core::RoundToInt(row->TimePos) << " ms: " << event.StartMS << ".." << event.EndMS << " of "
                     << m_project->FixAudioFilePath(event.FilePath) << ", gain " << event.GainFactor << ", fades "
                     << event.FadeIn_EndMS << " and " << event.FadeOut_StartMS;
                lines.insert(line.str());
            }
        }
        return lines;
    }

    /// An edit of the first clip.
    core::MsgParametersClass Edit(std::int32_t msgID, const std::function<void(core::MsgParametersClass&)>& fill = {})
    {
        core::MsgParametersClass params;
        params.ChannelID = Voice(0).ClassID();
        params.EventID = m_first;
        if (fill) {
            fill(params);
        }
        return Send(msgID, params);
    }

    std::int32_t m_first = 0;
    std::int32_t m_second = 0;
};

TEST_F(EngineFollows, EveryMessageThatChangesClips)
{
    using Params = core::MsgParametersClass;
    EXPECT_EQ(Engine().size(), 2U);
    EXPECT_EQ(Engine(), Model());
    const std::vector<std::pair<std::int32_t, std::function<void(Params&)>>> edits{
        {core::Msg_EventEdit_Move, [](Params& p) { p.NewTimePosMS = 300; }},
        {core::Msg_EventEdit_ResizeRight, [](Params& p) { p.EditDeltaMS = -100; }},
        {core::Msg_EventEdit_ResizeLeft, [](Params& p) { p.EditDeltaMS = 150; }},
        {core::Msg_EventEdit_SetGain, [](Params& p) { p.Value = 0.25; }},
        {core::Msg_EventEdit_SetFadeIn, [](Params& p) { p.Value = 200; }},
        // Pushes the fade-in back, by a message within the message.
        {core::Msg_EventEdit_SetFadeOut, [](Params& p) { p.Value = 120; }},
        {core::Msg_EventEdit_Split, [](Params& p) { p.SplitPosMS = 333.5; }},
        {core::Msg_EventEdit_Replace,
         [](Params& p) {
             p.EventOBJ = std::make_shared<project::CDC_Event_Wave_Class>();
             p.EventOBJ->FilePath = "b.wav";
             p.EventOBJ->EndMS = 1500;
         }},
        {core::Msg_EventEdit_MoveVertical,
         [this](Params& p) {
             p.FromChannelID = Voice(0).ClassID();
             p.ToChannelID = Music(0).ClassID();
         }},
        {core::Msg_DeleteEvent,
         [this](Params& p) {
             p.ChannelID = Voice(1).ClassID();
             p.EventID = m_second;
         }},
    };
    std::set<std::string> before = Engine();
    for (const auto& [msgID, fill] : edits) {
        Edit(msgID, fill);
        EXPECT_EQ(Engine(), Model()) << msgID;
        EXPECT_NE(Engine(), before) << msgID;
        before = Engine();
    }
    Edit(core::Msg_EventEdit_Move, [](Params& p) { p.EventID = 4711; });
    EXPECT_EQ(Engine(), before);
    // Nowhere to go: it stays.
    for (const double target : {Music(0).ClassID(), 4711.0}) {
        Edit(core::Msg_EventEdit_MoveVertical, [&](Params& p) {
            p.FromChannelID = Music(0).ClassID();
            p.ToChannelID = target;
            p.EventID = Music(0).ChannelData->GetFirstEvent_ID();
        });
        EXPECT_EQ(Engine(), before);
    }
    Edit(core::Msg_ClearChannel);
    EXPECT_EQ(Engine(), Model());
    EXPECT_EQ(Engine().size(), 1U) << "what moved to the other channel";
}

TEST_F(EngineFollows, ReloadsWhenAskedAndAfterTheUndosThatBringOtherClips)
{
    auto changeBehindItsBack = [this, time = 1000.0]() mutable {
        Voice(0).ChannelData->SetEvent_TimePos(m_first, time += 1000);
        Voice(0).ChannelData->Relink();
    };
    for (const std::int32_t msgID : {core::Msg_Refresh, core::Msg_Player_ReloadEvents}) {
        changeBehindItsBack();
        EXPECT_NE(Engine(), Model());
        Send(msgID);
        EXPECT_EQ(Engine(), Model()) << msgID;
    }
    for (std::int32_t type = 0; type <= 5; ++type) {
        changeBehindItsBack();
        core::MsgParametersClass params;
        params.UndoDataType = type;
        params.ChannelID = Voice(0).ClassID();
        Send(core::Msg_UndoRestored, params);
        const bool clipsAreOthers = type == 0 || type == 4;
        EXPECT_EQ(Engine() == Model(), clipsAreOthers) << type;
    }
    m_project.reset();
    EXPECT_TRUE(Engine().empty());
}

TEST_F(EngineFollows, ChannelsThatJoinWhileItPlaysAreHeard)
{
    const std::string path = m_project->FixAudioFilePath("loud.wav");
    std::string wav = Read(m_project->FixAudioFilePath("b.wav"));
    wav.replace(44, wav.size() - 44, wav.size() - 44, '\x30');
    ASSERT_TRUE(m_environment.disk.WriteTextFile(path, wav));
    Send(core::Msg_Player_Play);
    for (const std::int32_t msgID : {core::Msg_AddMusicChannel, core::Msg_AddVoiceChannel}) {
        const auto& channel = *m_project->Chn_GetChannelClassObj_by_ID(Send(msgID).NewChannelID);
        AddClip(channel, player_GetTimePos() + 100, "loud.wav");
        const std::uint32_t meter = channel.BassOutMix_Handle;
        EXPECT_TRUE(testing::Becomes([meter] {
            std::int32_t left = 0;
            std::int32_t right = 0;
            GetRMSLevel(meter, &left, &right);
            return left > 0 && right > 0;
        }));
    }
    Send(core::Msg_Player_Stop);
}

} // namespace
} // namespace velmora::audio
