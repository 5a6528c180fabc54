#include "app/Workspace.h"

#include "project/OpenedProject.h"
#include "tests/app/AppFixture.h"

namespace velmora::app {
namespace {

constexpr char kQuestion[] = "The project was modified, would you like to save first ?";

class WorkspaceTest : public CommandsFixture {};

TEST_F(WorkspaceTest, AsksToSaveBeforeAProjectGoes)
{
    Touch();
    const project::ProjectFile_Class* present = &Project();
    Messages().Expect(core::Answer::Cancel);
    m_workspace.New();
    Messages().Expect(core::Answer::Cancel);
    m_workspace.Open();
    Messages().Expect(core::Answer::Cancel);
    EXPECT_FALSE(m_workspace.MayClose());
    EXPECT_EQ(&Project(), present);
    EXPECT_EQ(Messages().asked.back().text, kQuestion);

    // Yes, and then a change of mind in the dialog: nothing is lost either.
    Messages().Expect(core::Answer::Yes);
    Dialogs().Expect(std::nullopt);
    EXPECT_FALSE(m_workspace.MayClose());

    Messages().Expect(core::Answer::No);
    EXPECT_TRUE(m_workspace.MayClose());
    Messages().Expect(core::Answer::Yes);
    Dialogs().Expect(Path("Song.audioproj"));
    EXPECT_TRUE(m_workspace.MayClose());
    EXPECT_TRUE(m_environment.disk.FileExists(Path("Song.audioproj")));
    EXPECT_TRUE(m_workspace.MayClose()) << "nothing is left to ask about";
}

TEST_F(WorkspaceTest, SavesUnderItsNameAndRemembersIt)
{
    EXPECT_EQ(m_workspace.Title(), "Velmora ");
    const std::string song = SaveAs("Song.audioproj");
    EXPECT_EQ(Dialogs().asked.back().caption, "Save project");
    EXPECT_EQ(m_workspace.Title(), "Velmora [" + m_environment.folder.Posix().string() + "/Song.audioproj]");
    Touch();
    EXPECT_TRUE(m_workspace.Save());
    EXPECT_EQ(Dialogs().asked.size(), 1U);
    EXPECT_FALSE(Project().Modified);
    EXPECT_EQ(m_environment->recent.GetFile_ByIndex(0), song);

    m_workspace.New();
    EXPECT_EQ(m_workspace.Title(), "Velmora ");
    Dialogs().Expect(song);
    m_workspace.Open();
    EXPECT_EQ(Project().ProjectPath(), song);
    EXPECT_EQ(m_ends, 2);
}

TEST_F(WorkspaceTest, NoMicrophoneIsShownAsOpenAfterLoading)
{
    core::MsgParametersClass live;
    live.ChannelID = Voice(1).ClassID();
    live.Value = core::kTrue;
    m_commands.Send(core::Msg_Channel_SetLive, live);
    ASSERT_TRUE(Voice(1).LiveStatus);
    const std::string song = SaveAs("Song.audioproj");
    m_workspace.OpenFile(song);
    EXPECT_FALSE(Voice(1).LiveStatus || Project().Modified);
}

TEST_F(WorkspaceTest, AFullDiskLeavesTheProjectAsItIs)
{
    const std::string song = SaveAs("Song.audioproj");
    m_commands.AddVoiceChannel();
    m_environment.files.FillDisk();
    EXPECT_FALSE(m_workspace.Save());
    EXPECT_EQ(Messages().LastText(), "Error creating file");
    EXPECT_EQ(Messages().shown.back().note, song + "\nMake room on the disk, or save to another folder.");
    Messages().Expect(core::Answer::Yes);
    EXPECT_FALSE(m_workspace.MayClose()) << "what could not be saved is not thrown away";
    m_environment.files.Repair();
    EXPECT_TRUE(m_workspace.Save());
    Dialogs().Expect(song);
    m_workspace.Open();
    EXPECT_EQ(Project().Chn_GetVoiceChannel_TotalN(), 5);
}

TEST_F(WorkspaceTest, WhatDoesNotPassTheChecksLeavesThePresentProject)
{
    SaveAs("Song.audioproj");
    const project::ProjectFile_Class* present = &Project();
    m_environment.disk.MakeFolderIfMissing(Path("Bad - Audio files"));
    m_environment.disk.WriteTextFile(Path("Bad.audioproj"), "no project at all");
    for (const char* name : {"Bad.audioproj", "gone.audioproj"}) {
        Dialogs().Expect(Path(name));
        m_workspace.Open();
        EXPECT_EQ(Messages().LastText(), "Error loading project");
        EXPECT_THAT(Messages().shown.back().note, ::testing::StartsWith(Path(name) + '\n'));
        EXPECT_EQ(&Project(), present);
    }
    m_commands.About();
    EXPECT_EQ(Messages().shown.back().note, "") << "what follows is not about that file";
    m_environment->recent.AddFile(Path("gone.audioproj"));
    const std::size_t messages = Messages().shown.size();
    m_workspace.OpenRecent(0);
    m_workspace.OpenRecent(8);
    EXPECT_EQ(Messages().shown.size(), messages) << "a recent file that is gone is passed over";
}

TEST_F(WorkspaceTest, AProjectThatIsOpenElsewhereIsAskedAbout)
{
    const std::string song = SaveAs("Song.audioproj");
    m_workspace.New();
    const auto elsewhere = project::OpenedProject::Open(*m_environment, song);
    ASSERT_TRUE(elsewhere);
    Messages().Expect(core::Answer::No);
    Dialogs().Expect(song);
    m_workspace.Open();
    EXPECT_EQ(Messages().asked.back().text, "Project already open. Force load ?");
    EXPECT_TRUE(Project().ProjectPath().empty());
}

TEST_F(WorkspaceTest, ReplacesTheProjectOnlyBetweenMessages)
{
    int delivered = 0;
    const auto listener = std::make_shared<core::MsgHandlerClass>(
        m_environment->ids, [this, &delivered](std::int32_t, std::int32_t msgID, core::MsgParametersClass&) {
            if (msgID == core::Msg_MarkChanged && delivered++ == 0) {
                m_workspace.New();
                EXPECT_EQ(m_ends, 0);
            }
        });
    Project().MsgSender->Add_MsgHandlerOBJ(50, listener);
    m_commands.Send(core::Msg_MarkChanged);
    EXPECT_EQ(m_ends, 1);
    EXPECT_EQ(Project().Chn_GetChannelClass_TotalN(), 5);
}

} // namespace
} // namespace velmora::app
