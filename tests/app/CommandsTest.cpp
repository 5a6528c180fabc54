#include "app/Commands.h"

#include "audio/AudioExport.h"
#include "audio/Metronome_Class.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "tests/app/AppFixture.h"

namespace velmora::app {
namespace {

class CommandsTest : public CommandsFixture, private MainWindowView {
protected:
    testing::ScriptedInputBox& Input() { return m_environment.ports.input; }
    std::vector<double> ClipStarts(const project::Channel_Class& channel) const
    {
        std::vector<double> starts;
        for (const project::EventRow* row : channel.ChannelData->InTimeOrder()) {
            starts.push_back(row->TimePos);
        }
        return starts;
    }

    MainWindowModel m_model{Project(), *this};
    int m_marksChanged = 0;
    int m_toolbarChanged = 0;

private:
    void MarksChanged() override { ++m_marksChanged; }
    void ToolbarChanged() override { ++m_toolbarChanged; }
    void TimeChanged() override {}
    void MasterChanged() override {}
};

TEST_F(CommandsTest, MarksAreAddedAtTheCursorAndJumpedTo)
{
    WriteSound("a.wav");
    m_commands.AddFiles({Path("a.wav")}, Music(0).ClassID());
    m_commands.Toolbar(ToolbarButton::Ahead5);
    Input().Expect("Chorus");
    m_commands.Toolbar(ToolbarButton::AddMark);
    ASSERT_EQ(Input().asked.size(), 1U);
    EXPECT_EQ(Input().asked[0].title, "Add mark (00:05)");
    EXPECT_EQ(Input().asked[0].prompt, "Insert the mark title: ");
    EXPECT_EQ(Input().asked[0].suggestion, "Mark 2");
    EXPECT_THAT(m_model.MarkTexts(), ::testing::ElementsAre("Start  (00:00)", "Chorus  (00:05)"));
    EXPECT_EQ(m_marksChanged, 1);

    m_commands.JumpToMark(0);
    EXPECT_EQ(m_model.TimePos(), 0);
    m_commands.JumpToMark(7);
    m_commands.DeleteMark(1);
    m_commands.Undo();
    EXPECT_EQ(m_model.MarkTexts().size(), 2U);
    EXPECT_TRUE(m_model.CanRedo());
}

TEST_F(CommandsTest, CancelledBoxesChangeNothing)
{
    const std::string before = Project().GetXMLData();
    for (const std::optional<std::string>& answer : {std::optional<std::string>(), std::optional<std::string>("")}) {
        Input().Expect(answer);
        m_commands.AddMark("Add mark");
        Input().Expect(answer);
        m_commands.ChangeChannelName(Voice(0).ClassID());
    }
    Dialogs().Expect(std::nullopt);
    m_commands.Export(audio::AudioExport::kWma);
    Dialogs().Expect(std::nullopt);
    m_workspace.Open();
    Dialogs().Expect(std::nullopt);
    EXPECT_FALSE(m_workspace.SaveAs());
    Messages().Expect(core::Answer::No);
    m_commands.Compress();
    EXPECT_EQ(Messages().asked.back().title, "Compress project");
    EXPECT_EQ(Project().GetXMLData(), before);
    EXPECT_FALSE(Project().Modified);
    EXPECT_TRUE(m_windows.calls.empty());
}

TEST_F(CommandsTest, ChannelEditsAreStepsOfUndo)
{
    m_commands.AddVoiceChannel();
    m_commands.AddMusicChannel();
    EXPECT_EQ(Project().Chn_GetChannelClass_TotalN(), 7);
    m_commands.DeleteChannel(Voice(0).ClassID());
    EXPECT_EQ(Project().Undo->CurUndo_Title(), "Undo delete channel");
    m_commands.Toolbar(ToolbarButton::Undo);
    m_commands.Toolbar(ToolbarButton::Undo);
    m_commands.Toolbar(ToolbarButton::Undo);
    EXPECT_EQ(Project().Chn_GetChannelClass_TotalN(), 5);
    EXPECT_FALSE(m_model.CanUndo());
    m_commands.Toolbar(ToolbarButton::Redo);
    EXPECT_EQ(Project().Chn_GetVoiceChannel_TotalN(), 5);
    EXPECT_GE(m_toolbarChanged, 7);
}

TEST_F(CommandsTest, DroppedFilesStandBehindOneAnother)
{
    const std::string first = WriteSound("One.wav");
    const std::string second = WriteSound("Two.wav");
    m_environment.disk.WriteTextFile(Path("notes.txt"), "no sound");
    m_commands.AddFiles({first, Path("notes.txt"), second, Path("gone.wav")}, Voice(1).ClassID());
    EXPECT_THAT(ClipStarts(Voice(1)), ::testing::ElementsAre(0, 1000));
    EXPECT_EQ(Messages().Texts(), (std::vector<std::string>{"Invalid sound file: " + Path("notes.txt"),
                                                            "Invalid sound file: " + Path("gone.wav")}));
    const auto row = Voice(1).ChannelData->InTimeOrder().back();
    EXPECT_EQ(row->EventOBJ->Title, "Two");
    m_commands.Undo();
    EXPECT_TRUE(ClipStarts(Voice(1)).empty());
    EXPECT_FALSE(m_model.CanUndo()) << "one drop is one step";

    m_commands.AddFiles({Path("notes.txt")}, Voice(1).ClassID());
    EXPECT_FALSE(m_model.CanUndo()) << "nothing was added";
    // Without a channel under the pointer the first music channel takes it.
    m_commands.AddFiles({first}, core::kUnsetFloat);
    EXPECT_EQ(ClipStarts(Music(0)).size(), 1U);
}

TEST_F(CommandsTest, ADroppedProjectIsOpened)
{
    const std::string song = SaveAs("Song.audioproj");
    m_workspace.New();
    Touch();
    Messages().Expect(core::Answer::No);
    m_commands.AddFiles({song}, core::kUnsetFloat);
    EXPECT_EQ(Project().ProjectPath(), song);
}

TEST_F(CommandsTest, SwitchesGoToAndFro)
{
    for (const bool on : {true, false}) {
        m_commands.ToggleMetronome();
        m_commands.ToggleMetronomeOnPlayback();
        m_commands.ToggleMetronomeOnRecording();
        m_commands.ToggleJumpBack();
        EXPECT_EQ(Project().Metronome->Metronome_Enabled(), on);
        EXPECT_EQ(Project().Metronome->Metronome_PlayerEnabled(), on);
        EXPECT_EQ(Project().Metronome->Metronome_RecorderEnabled(), !on);
        EXPECT_EQ(m_environment->config.Playback_Jumpback != 0, !on);
    }
    m_commands.SetMasterVolume(130);
    m_commands.SetMasterMute(true);
    EXPECT_EQ(m_model.MasterVolume(), 100);
    EXPECT_TRUE(m_model.MasterMute());
    m_commands.SetMasterVolume(-10);
    EXPECT_EQ(m_model.MasterVolume(), 0);
}

TEST_F(CommandsTest, ExportSuggestsTheProjectsName)
{
    SaveAs("My song.audioproj");
    Dialogs().Expect(Path("out.wma"));
    m_commands.Export(audio::AudioExport::kWma);
    EXPECT_EQ(Dialogs().asked.back().suggestion, "My song.wma");
    EXPECT_EQ(m_windows.calls, std::vector<std::string>{"export 2 " + Path("out.wma")});
}

TEST_F(CommandsTest, TextControlsHoldTheKeyboard)
{
    m_commands.Send(core::Msg_KeyboardFocusLost);
    EXPECT_EQ(m_model.KeyboardLockCount(), 0);
    // From one box straight to another, in either order.
    m_commands.Send(core::Msg_KeyboardFocusGot);
    m_commands.Send(core::Msg_KeyboardFocusGot);
    m_commands.Send(core::Msg_KeyboardFocusLost);
    EXPECT_EQ(m_model.KeyboardLockCount(), 1);
    m_commands.Send(core::Msg_KeyboardFocusLost);
    EXPECT_EQ(m_model.KeyboardLockCount(), 0);
}

} // namespace
} // namespace velmora::app
