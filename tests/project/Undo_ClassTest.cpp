#include "project/Undo_Class.h"

#include "audio/Metronome_Class.h"
#include "effects/FX_ChainContainer_Class.h"
#include "effects/FX_Module.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/project/ProjectFixture.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace velmora::project {
namespace {

class Undo : public ProjectTest {
protected:
    Undo() { StartNew(); }

    Undo_Class& Steps() { return *m_project->Undo; }

    /// What the small kinds of snapshot do not hold, and so a step back does not change, is left out.
    std::string Text() const
    {
        std::string text = m_project->GetXMLData();
        for (const std::string name : {"<Counter_MarkN>", "<FXPack_Name>"}) {
            for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at)) {
                text.erase(at, text.find("\r\n", at) - at);
            }
        }
        return text;
    }

    void Move(core::ClassID channel, std::int32_t event, std::int32_t deltaMS)
    {
        core::MsgParametersClass params;
        params.ChannelID = channel;
        params.EventID = event;
        params.NewTimePosMS = deltaMS;
        Send(core::Msg_EventEdit_Move, params);
    }

    void AddEffect(Channel_Class& channel, std::int32_t kind)
    {
        core::MsgParametersClass params;
        params.ChannelID = channel.ClassID();
        params.FXChannelID = channel.FX->Get_FXChainObj_by_Index(1)->ClassID();
        params.FXPriority = 1000;
        params.FXEnabled = true;
        params.FXDataOBJ = std::make_shared<effects::FX_Data_Class>(Messages());
        params.FXDataOBJ->LoadXMLData(effects::FX_GetDefaultXML(kind));
        Send(core::Msg_FX_Add, params);
    }

    /// Notes each message that comes by; `then` runs inside its delivery.
    void Listen(std::function<void(std::int32_t)> then = {})
    {
        m_listener = std::make_shared<core::MsgHandlerClass>(
            m_environment->ids, [this, then](std::int32_t, std::int32_t msgID, core::MsgParametersClass& params) {
                m_heard.push_back(msgID);
                m_channelHeard = params.ChannelID;
                if (then) {
                    then(msgID);
                }
            });
        m_project->MsgSender->Add_MsgHandlerOBJ(20, m_listener);
    }

    std::shared_ptr<core::MsgHandlerClass> m_listener;
    std::vector<std::int32_t> m_heard;
    core::ClassID m_channelHeard = 0;
};

/// A user who edits at random and takes the step that belongs to each edit.
class RandomEditor : public Undo {
protected:
    void Edit()
    {
        Channel_Class& channel = *m_project->Chn_GetChannelObj_by_Index(Below(m_project->Chn_GetChannelClass_TotalN()));
        const core::ClassID id = channel.ClassID();
        core::MsgParametersClass params;
        params.ChannelID = id;
        params.Value = Below(100);
        switch (Below(13)) {
        case 0:
            Steps().AddUndo("change channel properties", kUndoChannel, id);
            params.Text = "Title <" + std::to_string(Below(1000)) + ">";
            Send(core::Msg_Channel_SetVolume, params);
            Send(core::Msg_Channel_SetTitle, params);
            Send(core::Msg_Channel_SetGain, params);
            break;
        case 1:
            Steps().AddUndo("add mark", kUndoMarks);
            params.MarkTimeMS = Below(5000);
            params.MarkTitle = "Mark";
            Send(core::Msg_AddMark, params);
            break;
        case 2:
            Steps().AddUndo("change FX priority", kUndoEffects, id);
            AddEffect(channel, Below(effects::kEffectCount));
            break;
        case 3:
            Steps().AddUndo("change metronome BPM", kUndoMetronome);
            params.Value = 300 + Below(900);
            Send(core::Msg_Metronome_SetBPM, params);
            break;
        case 4:
            Steps().AddUndo("add voice channel", kUndoProject);
            Send(Below(2) ? core::Msg_AddVoiceChannel : core::Msg_AddMusicChannel);
            break;
        case 5:
            Steps().AddUndo("clear channel", kUndoProject);
            Send(m_project->Chn_GetChannelClass_TotalN() > 3 ? core::Msg_DeleteChannel : core::Msg_ClearChannel,
                 params);
            break;
        default:
            EditClip(channel, params);
        }
    }

    std::int32_t Below(std::int32_t bound) { return static_cast<std::int32_t>(m_random() % unsigned(bound)); }

private:
    void EditClip(Channel_Class& channel, core::MsgParametersClass params)
    {
        const auto rows = channel.ChannelData->InTimeOrder();
        const auto count = static_cast<std::int32_t>(rows.size());
        if (count < 3) {
            Steps().AddUndo("add audio file", kUndoEvents, channel.ClassID());
            AddClip(channel, Below(9000), "a" + std::to_string(Below(5)) + ".wav");
            return;
        }
        params.EventID = rows[static_cast<std::size_t>(Below(count))]->ID;
        if (Below(4) == 0) {
            Steps().AddUndo("delete event", kUndoEvents, channel.ClassID());
            Send(core::Msg_DeleteEvent, params);
            return;
        }
        Steps().AddUndo("move event", kUndoProject);
        params.NewTimePosMS = Below(4000) - 2000;
        params.SplitPosMS = Below(900);
        params.EditDeltaMS = Below(400) - 200;
        params.FromChannelID = params.ChannelID;
        params.ToChannelID = m_project->util_GetFirstChannelID();
        params.Value /= 100.0;
        constexpr std::int32_t kEdits[] = {core::Msg_EventEdit_Move,         core::Msg_EventEdit_Split,
                                           core::Msg_EventEdit_ResizeLeft,   core::Msg_EventEdit_SetGain,
                                           core::Msg_EventEdit_MoveVertical, core::Msg_EventEdit_SetFadeOut};
        Send(kEdits[Below(std::size(kEdits))], params);
    }

    std::mt19937 m_random{20};
};

TEST_F(RandomEditor, FindsEachTextAgainOnTheWayBackAndForth)
{
    std::vector<std::string> texts{Text()};
    for (int i = 0; i < 90; ++i) {
        Edit();
        texts.push_back(Text());
    }
    std::size_t at = texts.size() - 1;
    for (int turn = 0; turn < 3; ++turn) {
        while (at > 0) {
            const std::string title = Steps().CurUndo_Title();
            Steps().Undo();
            ASSERT_EQ(Text(), texts[--at]) << title;
        }
        ASSERT_EQ(Steps().CurUndo_Title(), "");
        // All the way at first, then a part of it.
        const std::size_t target = turn == 0 ? texts.size() - 1 : texts.size() / 2;
        while (at < target) {
            const std::string title = Steps().CurRedo_Title();
            Steps().Redo();
            ASSERT_EQ(Text(), texts[++at]) << title;
        }
    }
    EXPECT_TRUE(Messages().shown.empty());
}

TEST_F(RandomEditor, HoldsAHundredStepsInLessThanThriceTheMemoryOfOne)
{
    for (int i = 0; i < 1000; ++i) {
        AddClip(*m_project->Chn_GetChannelObj_by_Index(i % 5), 700.0 * i, "a" + std::to_string(i) + "- Record 1.wav");
    }
    Steps().AddUndo("move event", kUndoProject);
    const std::size_t one = Steps().BytesHeld();
    EXPECT_GT(one, m_project->GetXMLData().size() / 2);
    for (std::size_t i = 1; i < Undo_Class::kMostSteps; ++i) {
        const Channel_Class& channel = *m_project->Chn_GetChannelObj_by_Index(Below(5));
        const std::size_t row = static_cast<std::size_t>(Below(200));
        Move(channel.ClassID(), channel.ChannelData->InTimeOrder()[row]->ID, Below(600'000) - 300'000);
        Steps().AddUndo("move event", kUndoProject);
    }
    EXPECT_LT(Steps().BytesHeld(), 3 * one);
    // Restored objects are new, their texts are not.
    for (std::size_t i = 0; i < Undo_Class::kMostSteps; ++i) {
        Steps().Undo();
    }
    EXPECT_EQ(Steps().CurUndo_Title(), "");
    EXPECT_LT(Steps().BytesHeld(), 3 * one);
    Steps().ClearUndoRedoList();
    EXPECT_EQ(Steps().BytesHeld(), 0);
}

TEST_F(Undo, StepsTakenBeforeAChannelWentFindItAgain)
{
    const core::ClassID id = Voice(1).ClassID();
    const core::ClassID neighbour = Voice(2).ClassID();
    const HSTREAM neighbourMixer = Voice(2).BassOutMix_Handle;
    const std::int32_t clip = AddClip(Voice(1), 100);
    Steps().AddUndo("change channel properties", kUndoChannel, id);
    SendToChannel(core::Msg_Channel_SetVolume, id, 35);
    Steps().AddUndo("change FX priority", kUndoEffects, id);
    AddEffect(Voice(1), 2);
    Steps().AddUndo("delete event", kUndoEvents, id);
    core::MsgParametersClass gone;
    gone.ChannelID = id;
    gone.EventID = clip;
    Send(core::Msg_DeleteEvent, gone);
    gone.SelectChannelID = id;
    Send(core::Msg_SelectVoiceChannel, gone);
    Steps().AddUndo("delete channel", kUndoProject);
    Send(core::Msg_DeleteChannel, gone);
    EXPECT_EQ(Voice(1).ClassID(), neighbour);

    Steps().Undo();
    // In its old place, and the one that stayed was not touched.
    EXPECT_EQ(Voice(1).ClassID(), id);
    EXPECT_EQ(Voice(2).ClassID(), neighbour);
    EXPECT_EQ(Voice(2).BassOutMix_Handle, neighbourMixer);
    const auto volume = [this] {
        float heard = -1;
        BASS_ChannelGetAttribute(Voice(1).BassOutMix_Handle, BASS_ATTRIB_VOL, &heard);
        return heard;
    };
    EXPECT_FLOAT_EQ(volume(), 0.35f);
    EXPECT_EQ(Voice(1).FX->Get_FXChainObj_by_Index(1)->FX_TotalN(), 0);
    Steps().Undo();
    EXPECT_EQ(m_project->util_GetEvent_TimePos(id, clip), 100);
    Steps().Undo();
    EXPECT_EQ(Voice(1).FX->Get_FXChainObj_by_Index(1)->FX_TotalN(), -1);
    Steps().Undo();
    EXPECT_FLOAT_EQ(volume(), 0.8f);

    // What is made now draws no id that a text has brought back.
    const core::ClassID fresh = Send(core::Msg_AddVoiceChannel).NewChannelID;
    EXPECT_GT(fresh, Voice(1).ChannelData->ClassID());
    // A redo that takes the channel away takes the selection with it.
    for (int i = 0; i < 3; ++i) {
        Steps().Redo();
    }
    Send(core::Msg_SelectVoiceChannel, gone);
    Steps().Redo();
    EXPECT_FALSE(m_project->util_ChannelExists(id));
    EXPECT_EQ(m_project->Selected_VoiceChannel(), core::kUnsetFloat);
}

TEST_F(Undo, AStreamOfChangesIsOneStep)
{
    const auto drag = [this](const Channel_Class& channel, std::int32_t tag) {
        for (int value = 0; value < 10; ++value) {
            if (Steps().CurUndo_ChannelID() != channel.ClassID() || Steps().CurUndo_SpecialID() != tag) {
                Steps().AddUndo("change channel properties", kUndoChannel, channel.ClassID(), tag);
            }
            SendToChannel(core::Msg_Channel_SetVolume, channel.ClassID(), value);
        }
    };
    drag(Voice(0), 10);
    drag(Voice(1), 10);
    drag(Voice(0), 10);
    drag(Voice(0), 20);
    for (int steps = 0; steps < 4; ++steps) {
        EXPECT_EQ(Steps().CurUndo_Title(), "Undo change channel properties");
        Steps().Undo();
    }
    EXPECT_EQ(Steps().CurUndo_Title(), "");
    EXPECT_EQ(Voice(0).Volume, 80);
    EXPECT_EQ(Voice(1).Volume, 80);
    EXPECT_EQ(Steps().CurUndo_SpecialID(), -1);
    EXPECT_EQ(Steps().CurUndo_ChannelID(), -1);
}

TEST_F(Undo, KeepsAHundredStepsAndForgetsWhatWasUndoneAtTheNextOne)
{
    const core::ClassID id = Voice(0).ClassID();
    for (int i = 0; i <= 100; ++i) {
        Steps().AddUndo("step " + std::to_string(i), kUndoChannel, id);
        SendToChannel(core::Msg_Channel_SetPitch, id, i);
    }
    for (int i = 100; i >= 1; --i) {
        ASSERT_EQ(Steps().CurUndo_Title(), "Undo step " + std::to_string(i));
        Steps().Undo();
    }
    // The first one, which would bring back the default, has gone.
    EXPECT_EQ(Steps().CurUndo_Title(), "");
    EXPECT_EQ(Voice(0).Pitch, 0);
    EXPECT_EQ(Steps().CurRedo_Title(), "Redo step 1");
    Steps().Redo();
    EXPECT_EQ(Voice(0).Pitch, 1);
    Steps().AddUndo("another", kUndoChannel, id);
    EXPECT_EQ(Steps().CurRedo_Title(), "");

    Steps().ClearUndoRedoList();
    m_project->Modified = false;
    Listen();
    Steps().Redo();
    EXPECT_TRUE(m_project->Modified);
    EXPECT_TRUE(m_heard.empty());
    m_project->Modified = false;
    m_project->LastRecTimePos = 5;
    Steps().AddUndo("first", kUndoMarks);
    EXPECT_TRUE(m_project->Modified);
    EXPECT_EQ(m_project->LastRecTimePos, core::kUnset);
    EXPECT_EQ(m_heard, std::vector<std::int32_t>{core::Msg_UndoListChanged});
}

TEST_F(Undo, StopsThePlayerAndWaitsUntilADeliveryHasEnded)
{
    AddClip(Voice(0), 60'000);
    const core::ClassID id = Voice(0).ClassID();
    Steps().AddUndo("change channel properties", kUndoChannel, id);
    SendToChannel(core::Msg_Channel_SetVolume, id, 5);
    Send(core::Msg_Player_Play);
    ASSERT_NE(player_IsPlaying(), 0);

    std::vector<int> volumes;
    Listen([&](std::int32_t msgID) {
        if (msgID == core::Msg_EventEdit_Done) {
            Steps().Undo();
            volumes.push_back(Voice(0).Volume);
        } else if (msgID == core::Msg_UndoRestored) {
            EXPECT_EQ(m_channelHeard, id);
            volumes.push_back(Voice(0).Volume);
        }
    });
    Send(core::Msg_EventEdit_Done);
    EXPECT_EQ(volumes, (std::vector<int>{5, 80}));
    EXPECT_EQ(player_IsPlaying(), 0);
    std::erase(m_heard, core::Msg_Player_Tick);
    std::erase(m_heard, core::Msg_SoloChanged);
    EXPECT_EQ(m_heard, (std::vector<std::int32_t>{core::Msg_EventEdit_Done, core::Msg_Player_Stop,
                                                  core::Msg_UndoRestored, core::Msg_UndoListChanged}));
}

TEST_F(Undo, TakesTheEditorAlongWithEventsAndProject)
{
    core::Views& views = m_environment->ports.views;
    const std::int32_t kinds[] = {kUndoEvents, kUndoProject, kUndoChannel};
    for (const std::int32_t kind : kinds) {
        views.LoadEditorXML("<Before></Before>");
        Steps().AddUndo("edit", kind, Voice(0).ClassID());
        views.LoadEditorXML("<After></After>");
        Steps().Undo();
        EXPECT_EQ(views.EditorXML(), kind == kUndoChannel ? "<After></After>" : "<Before></Before>");
        Steps().Redo();
        EXPECT_EQ(views.EditorXML(), "<After></After>");
    }
}

TEST_F(Undo, SaysWhatCannotBeRestoredAndLeavesTheWayBack)
{
    const core::ClassID id = Voice(0).ClassID();
    for (const std::int32_t kind : {kUndoEvents, kUndoChannel, kUndoEffects}) {
        Steps().AddUndo("edit " + std::to_string(kind), kind, id);
    }
    // Nobody took a step before this one.
    SendToChannel(core::Msg_DeleteChannel, id, 0);
    const std::string text = Text();
    Listen();
    for (const std::int32_t kind : {kUndoEffects, kUndoChannel, kUndoEvents}) {
        Messages().shown.clear();
        m_heard.clear();
        Steps().Undo();
        ASSERT_EQ(Messages().Texts(), std::vector<std::string>{"Error restoring state"});
        EXPECT_EQ(Messages().shown[0].icon, core::Icon::Exclamation);
        EXPECT_EQ(Steps().CurRedo_Title(), "Redo edit " + std::to_string(kind));
        EXPECT_EQ(std::ranges::count(m_heard, core::Msg_UndoRestored), 1);
        EXPECT_EQ(Text(), text);
    }
    EXPECT_EQ(Steps().CurUndo_Title(), "");
}

} // namespace
} // namespace velmora::project
