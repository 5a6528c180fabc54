#include "core/ProgramFolders.h"

#include "core/ImportAudioFile.h"
#include "tests/support/TestEnvironment.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

TEST(ProgramFolders, AreMadeWithTheFoldersAbove)
{
    testing::TestEnvironment environment;
    ASSERT_TRUE(environment.disk.WriteTextFile(environment.Path("paths.cfg"),
                                               "presets={AppEXE}\\deep\\er\\presets\nconfig={AppEXE}\\config"));
    environment->paths.LoadPaths(environment.Path("paths.cfg"));
    MakeProgramFolders(*environment);
    MakeProgramFolders(*environment);
    EXPECT_THAT(environment.disk.ListFolders(environment.Path("deep\\er\\presets")),
                ElementsAre("Fx", "FxPacks-Music", "FxPacks-Voice"));
    EXPECT_EQ(environment.files.Changes().size(), 6u) << "nothing that is there is made again";
}

TEST(ProgramFolders, NewPresetsFolderStartsWithOurs)
{
    testing::TestEnvironment environment;
    const auto write = [&](const std::string& name, const std::string& text) {
        ASSERT_TRUE(environment.disk.WriteTextFile(environment.Path(name), text));
    };
    write("paths.cfg", "presets={AppEXE}\\mine\nconfig={AppEXE}\\config\nstarterpresets={AppEXE}\\x\\..\\ours");
    environment->paths.LoadPaths(environment.Path("paths.cfg"));
    for (const char* name : {"x", "ours", "ours\\Fx", "ours\\FxPacks-Voice", "ours\\Other"}) {
        environment.disk.MakeFolderIfMissing(environment.Path(name));
    }
    write("ours\\Fx\\Hall & co.fx.Graphic EQ", "ours");
    write("ours\\FxPacks-Voice\\Warm.pack", "ours");
    write("ours\\Other\\Warm.pack", "ours");

    MakeProgramFolders(*environment);
    const std::string preset = environment.Path("mine\\Fx\\Hall & co.fx.Graphic EQ");
    const std::string pack = environment.Path("mine\\FxPacks-Voice\\Warm.pack");
    EXPECT_EQ(environment->files.ReadTextFile(preset), "ours");
    EXPECT_EQ(environment->files.ReadTextFile(pack), "ours");
    EXPECT_THAT(environment.disk.ListFolders(environment.Path("mine")),
                ElementsAre("Fx", "FxPacks-Music", "FxPacks-Voice"));

    write("mine\\Fx\\Hall & co.fx.Graphic EQ", "theirs");
    environment.disk.DeleteFile(pack);
    MakeProgramFolders(*environment);
    EXPECT_EQ(environment->files.ReadTextFile(preset), "theirs");
    EXPECT_FALSE(environment.disk.FileExists(pack)) << "what the user deleted does not come back";
}

TEST(ProgramFolders, ExamplesAreTheUsersOwn)
{
    testing::TestEnvironment environment;
    const auto write = [&](const std::string& name, const std::string& text) {
        ASSERT_TRUE(environment.disk.WriteTextFile(environment.Path(name), text));
    };
    write("paths.cfg", "examples={AppEXE}\\mine\\Examples\nstarterexamples={AppEXE}\\ours");
    environment->paths.LoadPaths(environment.Path("paths.cfg"));
    environment.disk.MakeFolderIfMissing(environment.Path("ours"));
    environment.disk.MakeFolderIfMissing(environment.Path("ours\\Song - Audio files"));
    write("ours\\Song.audioproj", "song");
    write("ours\\Song - Audio files\\a.ogg", "sound");

    MakeProgramFolders(*environment);
    const std::string project = environment.Path("mine\\Examples\\Song.audioproj");
    EXPECT_EQ(environment->files.ReadTextFile(project), "song");
    EXPECT_EQ(environment->files.ReadTextFile(environment.Path("mine\\Examples\\Song - Audio files\\a.ogg")), "sound");
    write("mine\\Examples\\Song.audioproj", "changed");
    MakeProgramFolders(*environment);
    EXPECT_EQ(environment->files.ReadTextFile(project), "changed");
}

class AbandonedProjects : public ::testing::Test {
protected:
    std::string Make(const std::string& name, std::initializer_list<std::string> fileNames)
    {
        const std::string folder = environment.Path("newprojects\\" + name);
        environment.disk.MakeFolderIfMissing(folder);
        for (const std::string& file : fileNames) {
            environment.disk.WriteTextFile(folder + '\\' + file, "x");
        }
        return folder;
    }

    std::vector<std::string> Left() const { return environment.disk.ListFolders(environment.Path("newprojects")); }

    testing::TestEnvironment environment;
};

TEST_F(AbandonedProjects, GoUnlessSomebodyNeedsThem)
{
    Make("Project 1", {"accheck.dat", "wavecache.dat"});
    Make("my PROJECTS", {});
    const std::string sound = Make("Project 2", {"accheck.dat", "a1- Record 1.wav"});
    const std::string held = Make("Project 3", {"accheck.dat"});
    Make("Project 4", {"accheck.dat", "a1- Record 1.wav", "a1- Record 1.TAKE"});
    Make("other", {"accheck.dat"});
    Make("Saved project - Audio files", {"accheck.dat", "take.wav"});
    environment.disk.WriteTextFile(environment.Path("newprojects\\saved project.audioproj"), "x");
    Make("project - Audio files", {"accheck.dat"});
    Make("Project 5", {"mine.audioproj"});
    Make("Project 6", {"accheck.dat"});
    environment.disk.MakeFolderIfMissing(environment.Path("newprojects\\Project 6\\inside"));

    const auto lock = environment.disk.LockFileCreate(held + "\\accheck.dat");
    ClearAbandonedProjects(*environment);
    EXPECT_THAT(Left(), UnorderedElementsAre("Project 3", "Project 4", "other", "Saved project - Audio files",
                                             "Project 5", "Project 6"));
    EXPECT_THAT(environment.ports.trash.moved, ElementsAre(sound));
    EXPECT_THAT(environment.ports.messages.shown, IsEmpty());
}

TEST_F(AbandonedProjects, StayWhenTheTrashDoesNotTakeThem)
{
    Make("Project 1", {"take.wav"});
    environment.ports.trash.folder.clear();
    ClearAbandonedProjects(*environment);
    EXPECT_TRUE(environment.disk.FileExists(environment.Path("newprojects\\Project 1\\take.wav")));
}

class Import : public ::testing::Test {
protected:
    Import()
    {
        environment.disk.MakeFolderIfMissing(audio);
        environment.disk.MakeFolderIfMissing(environment.Path("stick"));
        environment.disk.WriteTextFile(source, "the song");
        environment.files.driveKind = DriveKind::Removable;
    }

    std::string Run() { return ImportAudioFile(environment.files, audio, source); }

    testing::TestEnvironment environment;
    std::string audio = environment.Path("audio");
    std::string source = environment.Path("stick\\Song.WAV");
};

TEST_F(Import, CopiesWhatCouldVanish)
{
    EXPECT_EQ(Run(), "Song.WAV");
    EXPECT_EQ(environment->files.ReadTextFile(audio + "\\Song.WAV", 100), "the song");
    EXPECT_EQ(Run(), "Song.WAV") << "an earlier copy serves again";
    EXPECT_EQ(environment.disk.ListFiles(audio, "*").size(), 1u);

    // Another song of that name.
    environment.disk.WriteTextFile(source, "a longer song");
    EXPECT_EQ(Run(), "1 - Song.WAV");
    environment.disk.WriteTextFile(source, "an even longer song");
    EXPECT_EQ(Run(), "2 - Song.WAV");
    EXPECT_EQ(environment->files.ReadTextFile(audio + "\\Song.WAV", 100), "the song");
}

TEST_F(Import, LeavesTheFileWhereItIs)
{
    environment.files.freeBytes = 1000000 + 7;
    EXPECT_EQ(Run(), source) << "too little room would be left";
    environment.files.freeBytes.reset();
    environment.files.FailEach(testing::FileOperation::Copy);
    EXPECT_EQ(Run(), source);
    environment.files.Repair();
    environment.files.driveKind = DriveKind::Fixed;
    EXPECT_EQ(Run(), source);
    EXPECT_THAT(environment.disk.ListFiles(audio, "*"), IsEmpty());
    EXPECT_EQ(ImportAudioFile(environment.files, audio, "C:\\gone.wav"), "C:\\gone.wav");
}

} // namespace
} // namespace velmora::core
