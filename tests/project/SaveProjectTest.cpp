#include "effects/FX_ChainContainer_Class.h"
#include "effects/FX_Module.h"
#include "project/internal/ProjectFolder.h"
#include "tests/project/ProjectFixture.h"

#include <future>
#include <set>

#include <gmock/gmock.h>

namespace velmora::project {
namespace {

using testing::FileOperation;

class SaveProject : public ProjectTest {
protected:
    std::string Audio(const std::string& name) const { return m_environment.Path(name + " - Audio files"); }
    std::string File(const std::string& name) const { return m_environment.Path(name + ".audioproj"); }
};

TEST_F(SaveProject, WhatWasLoadedFromOurOwnFileIsSavedAsTheSameBytes)
{
    const std::string path = SaveSong();
    for (int i = 0; i < 15; ++i) {
        AddClip(Voice(1), 100.0 / (i + 3));
    }
    core::MsgParametersClass params;
    params.ChannelID = Voice(1).ClassID();
    params.EventID = 12;
    Send(core::Msg_DeleteEvent, params);
    params.FXChannelID = Voice(1).FX->Get_FXChainObj_by_Index(1)->ClassID();
    for (std::int32_t effect = 0; effect < effects::kEffectCount; ++effect) {
        params.FXDataOBJ = std::make_shared<effects::FX_Data_Class>(Messages());
        params.FXDataOBJ->LoadXMLData(effects::FX_GetDefaultXML(effect));
        params.FXPriority = 10 * effect;
        Send(core::Msg_FX_Add, params);
    }
    params.Text = "<\"Ärger\" & 'Freude'>";
    Send(core::Msg_Channel_SetTitle, params);
    SendToChannel(core::Msg_Channel_SetGain, Voice(1).ClassID(), -1.0 / 3);
    SendToChannel(core::Msg_Channel_SetSolo, Voice(1).ClassID(), core::kTrue);
    params.MarkTimeMS = 12.5;
    params.MarkTitle = "verse";
    Send(core::Msg_AddMark, params);
    Send(core::Msg_DeleteMark, params);
    params.ChannelID = Voice(2).ClassID();
    Send(core::Msg_DeleteChannel, params);
    ASSERT_TRUE(m_project->SaveProject(""));
    const std::string first = Read(path);

    ASSERT_TRUE(Load(path));
    EXPECT_FALSE(m_project->Modified);
    const auto length = m_project->util_GetProjectLength();
    std::set<core::ClassID> ids;
    for (std::int32_t i = 0; i < m_project->Chn_GetChannelClass_TotalN(); ++i) {
        ids.insert(m_project->Chn_GetChannelObj_by_Index(i)->ClassID());
    }
    EXPECT_EQ(ids.size(), 4u);
    ASSERT_TRUE(m_project->SaveProject(path));
    EXPECT_TRUE(Read(path) == first) << Read(path);
    Send(core::Msg_AddVoiceChannel);
    EXPECT_FALSE(ids.contains(Voice(3).ClassID()));

    // A copy of file and folder under another name is a project of its own.
    m_project.reset();
    for (const auto& [name, content] : Folder(Audio("Song"))) {
        m_environment.disk.MakeFolderIfMissing(Audio("Other"));
        m_environment.disk.WriteTextFile(Audio("Other") + "\\" + name, content);
    }
    m_environment.disk.WriteTextFile(File("Other"), first);
    ASSERT_TRUE(Load(File("Other"), OpenMode::ReadOnly));
    EXPECT_EQ(m_project->util_GetProjectLength(), length);
    EXPECT_TRUE(Messages().shown.empty()) << Messages().LastText();
}

TEST_F(SaveProject, ANewNameTakesACopyOfTheFolderAndGoesOnThere)
{
    const std::string first = SaveSong();
    const std::string newFolder = m_environment.Path("newprojects\\Project 1");
    EXPECT_EQ(m_project->GetAudioPath(), Audio("Song"));
    EXPECT_TRUE(m_environment.disk.FileCanBeOpened(newFolder + "\\accheck.dat"));
    EXPECT_TRUE(m_environment.disk.FileExists(newFolder + "\\a.wav"));
    EXPECT_EQ(Folder(Audio("Song")).size(), 2u);

    m_environment.ports.views.LoadWaveCache("pictures");
    m_environment.disk.MakeFolderIfMissing(m_environment.Path("dir.v1"));
    m_project->Modified = true;
    ASSERT_TRUE(m_project->SaveProject(m_environment.Path("dir.v1\\Second")));
    EXPECT_FALSE(m_project->Modified);
    EXPECT_FALSE(m_project->IsNewProject());
    EXPECT_EQ(m_project->GetAudioPath(), m_environment.Path("dir.v1\\Second - Audio files"));
    EXPECT_EQ(Read(m_project->GetAudioPath() + "\\wavecache.dat"), "pictures");
    EXPECT_TRUE(m_environment.disk.FileCanBeOpened(Audio("Song") + "\\accheck.dat"));
    EXPECT_FALSE(m_environment.disk.FileCanBeOpened(m_project->GetAudioPath() + "\\accheck.dat"));
    EXPECT_EQ(Read(first), Read(m_project->ProjectPath()));

    // The same file under another spelling is no new name.
    ASSERT_TRUE(m_project->SaveProject(m_environment.Path(".\\dir.v1\\Second")));
    EXPECT_TRUE(Messages().asked.empty());
}

TEST_F(SaveProject, TheInterfaceLivesButRefusesWorkWhileFilesAreCopied)
{
    SaveSong();
    // No file is copied before the interface has had a turn.
    std::promise<void> turn;
    const auto turned = turn.get_future().share();
    m_environment.files.FailWhere([&turned](FileOperation operation, std::string_view /*path*/) {
        if (operation == FileOperation::Copy) {
            turned.wait();
        }
        return false;
    });
    auto& calls = m_environment.ports.views.calls;
    calls.clear();
    std::vector<std::string> atTurn;
    m_environment.ports.pendingEvents.Post([&] {
        atTurn = calls;
        turn.set_value();
    });
    ASSERT_TRUE(m_project->SaveProject(File("Moved")));
    EXPECT_THAT(atTurn, ::testing::Contains("EnableMainWindow false"));
    EXPECT_THAT(atTurn, ::testing::Not(::testing::Contains("EnableMainWindow true")));
    EXPECT_THAT(calls, ::testing::Contains("EnableMainWindow true"));
}

TEST_F(SaveProject, AnExistingFolderIsOverwrittenOnlyWhenItIsFreeAndTheUserAgrees)
{
    SaveSong();
    m_environment.disk.MakeFolderIfMissing(Audio("Other"));
    Messages().Expect(core::Answer::No);
    EXPECT_FALSE(m_project->SaveProject(File("Other")));
    EXPECT_EQ(Messages().asked.back().text, "Folder already exists: " + Audio("Other") + "\nOverwrite files ?");
    {
        const auto other = m_environment.disk.LockFileCreate(Audio("Other") + "\\accheck.dat");
        Messages().Expect(core::Answer::Yes);
        EXPECT_FALSE(m_project->SaveProject(File("Other")));
        EXPECT_EQ(Messages().LastText(), "Folder in use: " + Audio("Other"));
    }
    m_environment.files.sameDrive = false;
    m_environment.files.freeBytes = 10'000'000;
    EXPECT_FALSE(m_project->SaveProject(File("Other")));
    EXPECT_EQ(Messages().LastText().rfind("Not enough free space to save the project, you need \nat least: ", 0), 0u);
    EXPECT_FALSE(m_environment.disk.FileExists(File("Other")));
    EXPECT_EQ(m_project->GetAudioPath(), Audio("Song"));
}

TEST_F(SaveProject, AFailureAtAnyStepLeavesEarlierProjectsWhole)
{
    // An earlier project of that name, with another "a.wav" and one that only it has.
    m_environment.disk.MakeFolderIfMissing(Audio("Other"));
    m_environment.disk.WriteTextFile(File("Other"), "the earlier project");
    m_environment.disk.WriteTextFile(Audio("Other") + "\\a.wav", "its own take");
    m_environment.disk.WriteTextFile(Audio("Other") + "\\z.wav", "another");
    const auto otherFolder = Folder(Audio("Other"));
    const std::string song = SaveSong();
    const std::string songText = Read(song);
    const auto songFolder = Folder(Audio("Song"));
    m_environment.ports.views.LoadWaveCache("pictures");

    int failures = 0;
    for (int step = 1;; ++step) {
        m_project->Modified = true;
        Messages().Expect(core::Answer::Yes);
        const std::int64_t before = m_environment.files.Count();
        m_environment.files.FailAt(step);
        const bool saved = m_project->SaveProject(File("Other"));
        const bool untouched = m_environment.files.Count() - before < step;
        m_environment.files.Repair();
        EXPECT_EQ(Read(song), songText);
        EXPECT_EQ(Folder(Audio("Song")), songFolder);
        if (saved) {
            EXPECT_EQ(Read(Audio("Other") + "\\z.wav"), "another");
            EXPECT_EQ(Folder(Audio("Other")).at("a.wav"), songFolder.at("a.wav"));
            if (untouched) {
                break;
            }
            // It did not matter: back to the start for the next step.
            ASSERT_TRUE(m_environment.disk.WriteTextFile(File("Other"), "the earlier project"));
            ASSERT_TRUE(Load(song));
            m_environment.ports.views.LoadWaveCache("pictures");
            for (const auto& [name, content] : Folder(Audio("Other"))) {
                m_environment.disk.DeleteFile(Audio("Other") + "\\" + name);
            }
            for (const auto& [name, content] : otherFolder) {
                m_environment.disk.WriteTextFile(Audio("Other") + "\\" + name, content);
            }
            continue;
        }
        ++failures;
        EXPECT_FALSE(Messages().shown.empty());
        EXPECT_EQ(Read(File("Other")), "the earlier project") << "step " << step;
        EXPECT_EQ(Folder(Audio("Other")), otherFolder) << "step " << step;
        EXPECT_TRUE(m_project->Modified);
        EXPECT_EQ(m_project->ProjectPath(), song);
        EXPECT_FALSE(m_environment.disk.FileCanBeOpened(Audio("Song") + "\\accheck.dat"));
        EXPECT_TRUE(m_environment.disk.FileCanBeOpened(Audio("Other") + "\\accheck.dat"));
        ASSERT_LT(step, 100);
    }
    EXPECT_GE(failures, 6);
}

TEST_F(SaveProject, AFullDiskKeepsTheFileAndLeavesNoFolderBehind)
{
    const std::string path = SaveSong();
    const std::string text = Read(path);
    m_project->Modified = true;
    m_environment.files.FillDisk();
    EXPECT_FALSE(m_project->SaveProject(""));
    EXPECT_EQ(Messages().LastText(), "Error creating file");
    EXPECT_EQ(Read(path), text);
    EXPECT_TRUE(m_project->Modified);

    m_environment.files.Repair();
    m_environment.files.FailWhere([](FileOperation kind, std::string_view target) {
        return kind == FileOperation::Copy && target.ends_with("b.wav");
    });
    EXPECT_FALSE(m_project->SaveProject(File("Other")));
    EXPECT_EQ(Messages().LastText(),
              "Error copying files to new folder: " + Audio("Other") + "\nFile: b.wav\nProject wasn't saved");
    EXPECT_FALSE(m_environment.disk.FolderExists(Audio("Other")));
    EXPECT_FALSE(m_environment.disk.FileExists(File("Other")));
}

TEST_F(SaveProject, UnusedTakesGoToTheTrashAndNothingElse)
{
    const std::string path = SaveSong();
    const std::string pointedAt = WriteSound("absolute.wav");
    WriteSound("A0- RECORD 1.WMA");
    WriteSound("unused.wav");
    m_environment.disk.WriteTextFile(m_project->FixAudioFilePath("notes.txt"), "mine");
    AddClip(Voice(0), 0, pointedAt);
    AddClip(Voice(0), 0, "\\a0- record 1.wma");
    ASSERT_TRUE(m_project->SaveProject(""));
    WriteSound("a0- record 1.wma");

    // A take waits for its answer: nothing goes.
    const std::string take = WriteSound("a9- Record 1.wav");
    const std::string journal = m_project->FixAudioFilePath("a9- Record 1.take");
    m_environment.disk.WriteTextFile(journal, "");
    Messages().Expect(core::Answer::Cancel);
    ASSERT_TRUE(Load(path));
    EXPECT_TRUE(m_environment.ports.trash.moved.empty());
    m_environment.disk.DeleteFile(journal);
    m_environment.disk.DeleteFile(take);
    ASSERT_TRUE(Load(path, OpenMode::ReadOnly));
    EXPECT_TRUE(m_environment.ports.trash.moved.empty());
    ASSERT_TRUE(Load(path));
    EXPECT_EQ(m_environment.ports.trash.moved, std::vector<std::string>{Audio("Song") + "\\unused.wav"});
}

TEST_F(SaveProject, ALockIsKeptAndOnlyItsHolderCanGiveItUp)
{
    const std::string path = SaveSong();
    m_project.reset();
    auto other = m_environment.disk.LockFileCreate(ProjectFolder::LockFileIn(Audio("Song")));
    ASSERT_NE(other, nullptr);
    Messages().Expect(core::Answer::No);
    EXPECT_FALSE(Load(path));
    EXPECT_EQ(Messages().asked.back().text, "Project already open. Force load ?");
    Messages().Expect(core::Answer::Yes);
    EXPECT_FALSE(Load(path));
    EXPECT_EQ(Messages().LastText(), "Error opening project");
    EXPECT_FALSE(m_environment.disk.FileCanBeOpened(ProjectFolder::LockFileIn(Audio("Song"))));
    EXPECT_TRUE(Load(path, OpenMode::ReadOnly));
    other.reset();
    EXPECT_TRUE(Load(path));

    // Opening the present project again is no conflict with itself.
    auto again = OpenedProject::Open(*m_environment, path, OpenMode::Edit, m_project->GetAudioPath());
    ASSERT_TRUE(again);
    EXPECT_TRUE(Restart().LoadProject(std::move(*again)));
    EXPECT_FALSE(m_environment.disk.FileCanBeOpened(ProjectFolder::LockFileIn(Audio("Song"))));
}

} // namespace
} // namespace velmora::project
