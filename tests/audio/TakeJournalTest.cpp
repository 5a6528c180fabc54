#include "audio/TakeJournal.h"

#include "audio/Recorder_Class.h"
#include "core/ProgramFolders.h"
#include "project/Undo_Class.h"
#include "tests/project/ProjectFixture.h"

#include <cmath>
#include <limits>
#include <utility>

#include <gmock/gmock.h>

namespace velmora::project {
namespace {

using audio::TakeJournal;
using core::Answer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string kName = "a0- Record 3.wav";

/// A saved project that a crash has left with a take, and a file that no clip uses.
class FoundTake : public ProjectTest {
protected:
    FoundTake()
        : m_path(SaveSong())
        , m_voice(Voice(1).ClassID())
        , m_folder(m_project->GetAudioPath())
    {
        WriteSound("unused.wav");
        LeaveTake(m_folder, {m_voice, "Voice 2", 1234.5, 150, "Record 3"});
    }

    void LeaveTake(const std::string& folder, const TakeJournal& journal, const std::string& name = kName)
    {
        WriteSound(folder + '\\' + name, 2000);
        ASSERT_TRUE(journal.Write(m_environment.disk, folder + '\\' + name));
    }

    bool Open(Answer answer)
    {
        Messages().Expect(answer);
        return Load(m_path) && Messages().AllAsked();
    }

    bool JournalStands(const std::string& folder, const std::string& name = kName) const
    {
        return m_environment.disk.FileExists(TakeJournal::PathFor(folder + '\\' + name));
    }
    bool Stands(const std::string& name) const { return m_environment.disk.FileExists(m_folder + '\\' + name); }

    /// "channel title at position from start title" of the clips of one file.
    std::vector<std::string> ClipsOf(const std::string& name) const
    {
        std::vector<std::string> clips;
        for (std::int32_t i = 0; i < m_project->Chn_GetChannelClass_TotalN(); ++i) {
            const Channel_Class& channel = *m_project->Chn_GetChannelObj_by_Index(i);
            for (const EventRow* row : channel.ChannelData->InTimeOrder()) {
                if (row->EventOBJ->FilePath == name) {
                    clips.push_back(channel.Title + " at " + std::to_string(row->TimePos) + " from " +
                                    std::to_string(row->EventOBJ->StartMS) + " to " +
                                    std::to_string(row->EventOBJ->EndMS) + ' ' + row->EventOBJ->Title);
                }
            }
        }
        return clips;
    }

    std::string m_path;
    core::ClassID m_voice;
    std::string m_folder;
};

TEST_F(FoundTake, IsAskedForAgainUntilItIsAnswered)
{
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(Open(Answer::Cancel));
        EXPECT_THAT(Messages().asked.back().text, HasSubstr("Record 3 (00:01.23, Voice 2)"));
        EXPECT_THAT(ClipsOf(kName), IsEmpty());
        EXPECT_FALSE(m_project->Modified);
        EXPECT_TRUE(JournalStands(m_folder) && Stands(kName) && Stands("unused.wav")) << "nothing is cleaned up";
    }
    ASSERT_TRUE(Load(m_path, OpenMode::ReadOnly)) << "without a question";
    EXPECT_TRUE(JournalStands(m_folder));
}

TEST_F(FoundTake, LandsWhereItBelongsAndIsSafeUntilTheProjectIsSaved)
{
    ASSERT_TRUE(Open(Answer::Yes));
    const std::vector<std::string> landed = {"Voice 2 at 1234.500000 from 150 to 2000 Record 3"};
    EXPECT_EQ(ClipsOf(kName), landed);
    EXPECT_TRUE(m_project->Modified);
    EXPECT_TRUE(JournalStands(m_folder)) << "another crash would lose it";

    m_project->Undo->Undo();
    EXPECT_THAT(ClipsOf(kName), IsEmpty());
    EXPECT_FALSE(JournalStands(m_folder)) << "dropped";
    m_project->Undo->Redo();
    EXPECT_EQ(ClipsOf(kName), landed);
    EXPECT_TRUE(JournalStands(m_folder));

    ASSERT_TRUE(m_project->SaveProject(""));
    EXPECT_FALSE(JournalStands(m_folder));
    m_project->Undo->Undo();
    m_project->Undo->Redo();
    EXPECT_FALSE(JournalStands(m_folder)) << "the project's file has it";
    ASSERT_TRUE(Load(m_path)) << "without a question";
    EXPECT_EQ(ClipsOf(kName), landed);
    EXPECT_FALSE(Stands("unused.wav"));
}

TEST_F(FoundTake, SaveUnderANewNameLeavesNoJournalBehind)
{
    ASSERT_TRUE(Open(Answer::Yes));
    const std::string other = m_environment.Path("Other.audioproj");
    ASSERT_TRUE(m_project->SaveProject(other));
    EXPECT_FALSE(JournalStands(m_folder));
    EXPECT_FALSE(JournalStands(m_project->GetAudioPath()));
    ASSERT_TRUE(Load(other));
    EXPECT_EQ(ClipsOf(kName).size(), 1U);
}

TEST_F(FoundTake, RefusedGoesToTheTrash)
{
    ASSERT_TRUE(Open(Answer::No));
    EXPECT_THAT(m_environment.ports.trash.moved, ElementsAre(m_folder + '\\' + kName, m_folder + "\\unused.wav"));
    EXPECT_FALSE(JournalStands(m_folder));
    EXPECT_THAT(ClipsOf(kName), IsEmpty());
}

TEST_F(FoundTake, RefusedStaysWhenTheTrashDoesNotTakeIt)
{
    m_environment.ports.trash.folder.clear();
    ASSERT_TRUE(Open(Answer::No));
    EXPECT_TRUE(Stands(kName));
    ASSERT_TRUE(Load(m_path)) << "without a question";
    EXPECT_TRUE(Stands(kName));
}

TEST_F(FoundTake, GoesToAChannelOfItsTitleOrANewOne)
{
    LeaveTake(m_folder, {9999, "Voice 3", 0, 0, "by title"}, "b.take1.wav");
    LeaveTake(m_folder, {Music(0).ClassID(), "Choir", 0, 0, "alone"}, "c.wav");
    const std::int32_t voices = m_project->Chn_GetVoiceChannel_TotalN();
    ASSERT_TRUE(Open(Answer::Yes));
    EXPECT_THAT(ClipsOf("b.take1.wav"), ElementsAre(HasSubstr("Voice 3 at 0.0")));
    EXPECT_THAT(ClipsOf("c.wav"), ElementsAre(HasSubstr("Choir at 0.0")));
    EXPECT_EQ(m_project->Chn_GetVoiceChannel_TotalN(), voices + 1);
    m_project->Undo->Undo();
    EXPECT_EQ(m_project->Chn_GetVoiceChannel_TotalN(), voices) << "the channel goes with its take";
}

TEST_F(FoundTake, OfADamagedJournalIsOfferedAllTheSame)
{
    for (const std::string& text : {std::string(), std::string("<Take>\r\n  <TimePosMS>float: nan"),
                                    "<Take>\r\n<TimePosMS>float: -1E300</TimePosMS>\r\n<StartMS>int: -7</StartMS>\r\n"
                                    "<Title>int: 5</Title>\r\n</Take>" +
                                        std::string(1 << 17, ' ')}) {
        ASSERT_TRUE(m_environment.disk.WriteTextFile(TakeJournal::PathFor(m_folder + '\\' + kName), text));
        ASSERT_TRUE(Open(Answer::Yes));
        EXPECT_THAT(ClipsOf(kName), ElementsAre(HasSubstr(" at 0.000000 from 0 to 2000 a0- Record 3")));
        m_project.reset();
    }
    // A file that is no sound stays, and is told.
    m_environment.disk.WriteTextFile(m_folder + '\\' + kName, "no sound");
    ASSERT_TRUE(Open(Answer::Yes));
    EXPECT_THAT(Messages().Texts(), ::testing::Contains("Invalid sound file: " + m_folder + '\\' + kName));
    EXPECT_TRUE(Stands(kName) && JournalStands(m_folder));
}

TEST_F(FoundTake, JournalsWithNothingToOfferGo)
{
    m_environment.disk.DeleteFile(m_folder + '\\' + kName);
    LeaveTake(m_folder, {m_voice, "Voice 2", 0, 0, "saved"}, "b.wav");
    ASSERT_TRUE(Load(m_path)) << "without a question";
    EXPECT_FALSE(JournalStands(m_folder));
    EXPECT_FALSE(JournalStands(m_folder, "b.wav")) << "the project plays it";
    EXPECT_FALSE(Stands("unused.wav")) << "cleaned up again";
}

/// The folder of a new project that a crash has left.
class AbandonedTake : public FoundTake {
protected:
    AbandonedTake()
    {
        m_environment.disk.MakeFolderIfMissing(m_abandoned);
        m_environment.disk.WriteTextFile(m_abandoned + "\\accheck.dat", "");
        LeaveTake(m_abandoned, {m_voice, "Voice 4", 700, 20, "Record 1"}, "a0- Record 1.wav");
        LeaveTake(m_abandoned, {m_voice, "Voice 1", 0, 30, "Record 2"}, "a0- Record 2.wav");
        core::ClearAbandonedProjects(*m_environment);
        StartNew();
    }

    void Offer(Answer answer)
    {
        Messages().Expect(answer);
        m_project->util_OfferAbandonedTakes();
        EXPECT_TRUE(Messages().AllAsked());
    }

    std::string m_abandoned = m_environment.Path("newprojects\\Project 77");
};

TEST_F(AbandonedTake, AreAddedToTheNewProject)
{
    Offer(Answer::Yes);
    EXPECT_THAT(ClipsOf("a0- Record 1.wav"), ElementsAre(HasSubstr("Voice 4 at 700.000000 from 20 to 2000 Record 1")));
    EXPECT_THAT(ClipsOf("a1- Record 1.wav"), ElementsAre(HasSubstr("Voice 1 at 0.000000 from 30 to 2000 Record 2")));
    EXPECT_TRUE(JournalStands(m_project->GetAudioPath(), "a1- Record 1.wav"));
    EXPECT_THAT(m_environment.ports.trash.moved, ::testing::Contains(m_abandoned));
    m_project->util_OfferAbandonedTakes();
    EXPECT_EQ(Messages().asked.size(), 1U);

    // Never saved either: the next start offers them again.
    StartNew();
    Offer(Answer::No);
    EXPECT_THAT(ClipsOf("a0- Record 1.wav"), IsEmpty());
    EXPECT_EQ(m_environment.ports.trash.moved.size(), 4U) << "two folders, and the two files before the second";
}

TEST_F(AbandonedTake, WaitForAnAnswer)
{
    Offer(Answer::Cancel);
    EXPECT_TRUE(JournalStands(m_abandoned, "a0- Record 1.wav"));
    {
        const auto held = m_environment.disk.LockFileCreate(m_abandoned + "\\accheck.dat");
        m_project->util_OfferAbandonedTakes();
        EXPECT_EQ(Messages().asked.size(), 1U) << "another program has them open";
    }
    // A copy that fails leaves them where they are.
    m_environment.files.FailEach(testing::FileOperation::Copy);
    Offer(Answer::Yes);
    m_environment.files.Repair();
    EXPECT_TRUE(JournalStands(m_abandoned, "a0- Record 1.wav") && JournalStands(m_abandoned, "a0- Record 2.wav"));
    EXPECT_THAT(m_environment.disk.ListFiles(m_project->GetAudioPath(), "*.take"), IsEmpty());

    ASSERT_TRUE(m_project->SaveProject(m_environment.Path("Mine.audioproj")));
    m_project->util_OfferAbandonedTakes();
    EXPECT_EQ(Messages().asked.size(), 2U) << "a project with a file is not asked";
}

} // namespace
} // namespace velmora::project
