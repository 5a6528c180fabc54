#include "tests/project/ProjectFixture.h"

namespace velmora::project {
namespace {

using core::FileNotFoundAnswer;

class MissingFiles : public ProjectTest {
protected:
    /// "a.wav" of the saved song is gone, and an unused take lies in the folder.
    MissingFiles()
        : m_path(SaveSong())
        , m_missing(m_project->FixAudioFilePath("a.wav"))
    {
        AddClip(Voice(3), 0, "a.wav");
        EXPECT_TRUE(m_project->SaveProject(""));
        WriteSound("unused.wav");
        m_project.reset();
        m_environment.disk.DeleteFile(m_missing);
    }

    testing::ScriptedFileNotFound& Question() { return m_environment.ports.fileNotFound; }
    std::string LastClipsFile(std::int32_t voice)
    {
        const auto clips = Voice(voice).ChannelData->InTimeOrder();
        return clips.empty() ? std::string() : clips.back()->EventOBJ->FilePath;
    }

    std::string m_path;
    std::string m_missing;
};

TEST_F(MissingFiles, RetryFindsTheFileOnceItIsBack)
{
    int asked = 0;
    Question().beforeAnswer = [&](std::string_view) {
        if (++asked == 2) {
            WriteSound(m_missing);
        }
    };
    Question().Expect(FileNotFoundAnswer::Retry);
    Question().Expect(FileNotFoundAnswer::Retry);
    ASSERT_TRUE(Load(m_path));
    EXPECT_EQ(Question().asked, (std::vector<std::string>{m_missing, m_missing}));
    EXPECT_EQ(LastClipsFile(0), "a.wav");
    EXPECT_FALSE(m_project->Modified);
    EXPECT_EQ(m_environment.ports.trash.moved.size(), 1u);
}

TEST_F(MissingFiles, AReplacementServesAllClipsOfTheFile)
{
    const std::string elsewhere = WriteSound(m_environment.Path("elsewhere.wav"));
    Question().Expect(FileNotFoundAnswer::Replace, m_environment.Path("nor this.wav"));
    Question().Expect(FileNotFoundAnswer::Replace, elsewhere);
    ASSERT_TRUE(Load(m_path));
    EXPECT_EQ(Question().asked, (std::vector<std::string>{m_missing, m_environment.Path("nor this.wav")}));
    EXPECT_EQ(LastClipsFile(0), elsewhere);
    EXPECT_EQ(LastClipsFile(3), elsewhere);
    EXPECT_TRUE(m_project->Modified);
}

TEST_F(MissingFiles, IgnoringDropsTheClipsAndCleansNothingUp)
{
    Question().Expect(FileNotFoundAnswer::Ignore);
    ASSERT_TRUE(Load(m_path));
    EXPECT_EQ(Voice(0).ChannelData->EventCount(), 1u);
    EXPECT_EQ(Voice(3).ChannelData->EventCount(), 0u);
    EXPECT_EQ(m_project->MissingFiles(), std::vector<std::string>{m_missing});
    EXPECT_TRUE(m_project->Modified);
    m_project->DeleteUnusedFiles();
    EXPECT_TRUE(m_environment.ports.trash.moved.empty());
}

TEST_F(MissingFiles, ReadOnlyNamesThemAsksNobodyAndTouchesNothing)
{
    m_environment.disk.DeleteFile(m_environment.Path("Song - Audio files\\accheck.dat"));
    const auto before = m_environment.files.Changes();
    EXPECT_FALSE(Load(m_path, OpenMode::ReadOnly));
    EXPECT_EQ(m_project->MissingFiles(), std::vector<std::string>{m_missing});
    EXPECT_EQ(m_project->Chn_GetChannelClass_TotalN(), 0);
    EXPECT_TRUE(Load(m_path, OpenMode::ReadOnly, true));
    EXPECT_EQ(Voice(0).ChannelData->EventCount(), 1u);
    EXPECT_FALSE(m_project->SaveProject(m_environment.Path("Copy.audioproj")));
    m_project.reset();
    EXPECT_EQ(m_environment.files.Changes(), before);
    EXPECT_FALSE(m_environment.disk.FileExists(m_environment.Path("Song - Audio files\\accheck.dat")));
}

TEST_F(MissingFiles, PathsOutOfTheAudioFolderAreMissingWhereverTheyLead)
{
    WriteSound(m_missing);
    const std::string outside = WriteSound(m_environment.Path("outside.wav"));
    const std::string text = Read(m_path);
    const auto loadWith = [&](const std::string& filePath) {
        std::string changed = text;
        for (std::size_t at = changed.find("str: a.wav<"); at != std::string::npos; at = changed.find("str: a.wav<")) {
            changed.replace(at, 10, "str: " + filePath);
        }
        m_environment.disk.WriteTextFile(m_path, changed);
        return Load(m_path, OpenMode::ReadOnly);
    };
    for (const char* path : {"..\\outside.wav", "../outside.wav", "\\..\\outside.wav", "x\\..\\..\\outside.wav"}) {
        EXPECT_FALSE(loadWith(path)) << path;
    }
    EXPECT_TRUE(loadWith("x\\..\\a.wav") || m_project->MissingFiles().size() == 1);
    EXPECT_TRUE(loadWith(outside));
    EXPECT_EQ(m_project->FixAudioFilePath("..\\outside.wav"), "");
}

TEST_F(MissingFiles, AMissingFolderIsMadeOnlyWhenTheUserAgrees)
{
    const std::string path = m_environment.Path("Lonely.audioproj");
    const std::string folder = m_environment.Path("Lonely - Audio files");
    m_environment.disk.WriteTextFile(path, Read(m_path));
    Messages().Expect(core::Answer::No);
    EXPECT_FALSE(Load(path));
    EXPECT_EQ(Messages().asked.back().text, "Folder does not exist:\n" + folder + "\nCreate folder");
    EXPECT_TRUE(Messages().shown.empty());
    Messages().Expect(core::Answer::Yes);
    m_environment.files.FailEach(testing::FileOperation::MakeFolder);
    EXPECT_FALSE(Load(path));
    EXPECT_EQ(Messages().LastText(), "Error creating folder");
    m_environment.files.Repair();
    Messages().Expect(core::Answer::Yes);
    Question().Expect(FileNotFoundAnswer::Ignore);
    Question().Expect(FileNotFoundAnswer::Ignore);
    EXPECT_TRUE(Load(path));
    EXPECT_EQ(Messages().LastText(), "Folder created. However, if there were audio files in the\n"
                                     "original folder, those won't be loaded");
}

} // namespace
} // namespace velmora::project
