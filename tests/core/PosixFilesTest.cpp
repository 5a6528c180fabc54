#include "core/PosixFiles.h"

#include "core/Paths.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PosixFilesTest : public ::testing::Test {
protected:
    std::string Path(std::string_view name) const { return folder.Path(name); }
    std::string Posix(std::string_view name) const { return PosixPath(folder.Path(name)); }

    testing::TemporaryFolder folder;
    PosixFiles files;
};

/// Runs `body` in another process; its answer.
template <typename Body>
int InOtherProcess(Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

TEST_F(PosixFilesTest, FailedWriteLeavesTheEarlierFile)
{
    const std::string longText(100'000, 'n');
    ASSERT_TRUE(files.WriteTextFile(Path("p.audioproj"), "earlier"));
    ASSERT_TRUE(files.WriteTextFile(Path("long.wav"), longText));
    {
        const testing::FileSizeLimit limit(50'000);
        EXPECT_FALSE(files.WriteTextFile(Path("p.audioproj"), longText));
        EXPECT_FALSE(files.CopyFile(Path("long.wav"), Path("p.audioproj")));
    }
    EXPECT_EQ(files.ReadTextFile(Path("p.audioproj"), 100), "earlier");
    EXPECT_THAT(files.ListFiles(folder.Path(), "*"), ElementsAre("long.wav", "p.audioproj")) << "nothing is left over";

    EXPECT_FALSE(files.WriteTextFile(Path("absent\\p.audioproj"), "x"));
    EXPECT_FALSE(files.WriteTextFile("C:\\p.audioproj", "x"));
    ASSERT_TRUE(files.MakeFolderIfMissing(Path("sub")));
    EXPECT_FALSE(files.WriteTextFile(Path("sub"), "x"));
    EXPECT_FALSE(files.CopyFile(Path("absent.wav"), Path("p.audioproj")));
    EXPECT_FALSE(files.CopyFile(Path("sub"), Path("p.audioproj")));
    EXPECT_FALSE(files.Replace(Path("absent.wav"), Path("p.audioproj")));
    EXPECT_EQ(files.ReadTextFile(Path("p.audioproj"), 100), "earlier");
    EXPECT_THAT(files.ListFiles(Path("sub"), "*"), IsEmpty());
}

TEST_F(PosixFilesTest, AKillInMidWriteLeavesTheEarlierFile)
{
    ASSERT_TRUE(files.WriteTextFile(Path("p.audioproj"), "earlier"));
    InOtherProcess([&] {
        // The limit's signal ends the process in the middle of the write.
        const rlimit small{50'000, 50'000};
        setrlimit(RLIMIT_FSIZE, &small);
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        files.WriteTextFile(Path("p.audioproj"), std::string(100'000, 'n'));
        return 0;
    });
    EXPECT_EQ(files.ReadTextFile(Path("p.audioproj"), 100), "earlier");
    EXPECT_TRUE(files.WriteTextFile(Path("p.audioproj"), "later"));
    EXPECT_EQ(files.ReadTextFile(Path("p.audioproj"), 100), "later");
}

TEST_F(PosixFilesTest, ReplacesWithoutLosingLinksPermissionsAndTimes)
{
    namespace fs = std::filesystem;
    ASSERT_TRUE(files.WriteTextFile(Path("real.txt"), "1"));
    chmod(Posix("real.txt").c_str(), 0640);
    fs::create_symlink(Posix("real.txt"), Posix("link.txt"));
    EXPECT_TRUE(files.WriteTextFile(Path("link.txt"), "2"));
    EXPECT_TRUE(fs::is_symlink(Posix("link.txt")));
    EXPECT_EQ(files.ReadTextFile(Path("real.txt"), 10), "2");
    EXPECT_EQ(fs::status(Posix("real.txt")).permissions(), fs::perms(0640));

    fs::last_write_time(Posix("real.txt"), fs::file_time_type::clock::now() - std::chrono::hours(5));
    ASSERT_TRUE(files.CopyFile(Path("real.txt"), Path("copy.txt")));
    EXPECT_EQ(files.Get_File_ModifiedTime(Path("copy.txt")), files.Get_File_ModifiedTime(Path("real.txt")));
    EXPECT_TRUE(files.CopyFile(Path("real.txt"), Path("link.txt"))) << "onto itself";
    EXPECT_EQ(files.ReadTextFile(Path("real.txt"), 10), "2");
    ASSERT_TRUE(files.Replace(Path("copy.txt"), Path("real.txt")));
    EXPECT_FALSE(files.FileExists(Path("copy.txt")));
    EXPECT_EQ(files.Get_File_ModifiedTime(Path("copy.txt")), -1.0);
}

TEST_F(PosixFilesTest, ReadsWholePlainFilesOnly)
{
    const std::string bytes("a\0b\r\n\xFF", 6);
    ASSERT_TRUE(files.WriteTextFile(Path("f"), bytes));
    EXPECT_EQ(files.ReadTextFile(Path("f"), 6), bytes);
    EXPECT_EQ(files.ReadTextFile(Path("f"), 5), "");
    EXPECT_EQ(files.ReadTextFile(folder.Path(), 100), "");
    ASSERT_EQ(mkfifo(Posix("pipe").c_str(), 0600), 0);
    EXPECT_EQ(files.ReadTextFile(Path("pipe"), 100), "") << "and does not wait for a writer";
    EXPECT_NE(files.ReadTextFile("Z:\\proc\\self\\status", 1 << 20), "") << "a length of 0 may be a lie";
    EXPECT_FALSE(files.FileExists(Path("pipe")));
    EXPECT_EQ(files.FileLength(Path("f")), 6);
    EXPECT_EQ(files.FileLength(Path("absent")), -1);
}

TEST_F(PosixFilesTest, ListsByPatternWithoutRegardToCase)
{
    for (const char* name : {"b.wav", "A.WAV", "a - 1.wav", "c.wma", "noending", "x.wav.bak"}) {
        ASSERT_TRUE(files.WriteTextFile(Path(name), "12345"));
    }
    std::ofstream(folder.Posix() / "odd\\na:me.wav") << "x";
    ASSERT_TRUE(files.MakeFolderIfMissing(Path("folder.wav")));
    std::filesystem::create_directory_symlink(Posix("folder.wav"), Posix("linked folder"));
    EXPECT_THAT(files.ListFiles(folder.Path(), "*.wav"),
                ElementsAre("a - 1.wav", "A.WAV", "b.wav", "odd\xEF\x81\x9Cna\xEF\x80\xBAme.wav"));
    EXPECT_THAT(files.ListFiles(folder.Path(), "?.W??"), ElementsAre("A.WAV", "b.wav", "c.wma"));
    EXPECT_EQ(files.ListFiles(folder.Path(), "*.*").size(), 7u) << "names without a dot, too";
    EXPECT_THAT(files.ListFiles(folder.Path(), "*a*a*a*a*a*a*a*a*b"), IsEmpty());
    EXPECT_THAT(files.ListFolders(folder.Path()), ElementsAre("folder.wav"));
    EXPECT_THAT(files.ListFiles(Path("absent"), "*"), IsEmpty());
    EXPECT_EQ(files.FolderSizeBytes(folder.Path()), 6 * 5 + 1);
    EXPECT_TRUE(files.DeleteFile(Path("odd\xEF\x81\x9Cna\xEF\x80\xBAme.wav")));
    EXPECT_FALSE(files.DeleteEmptyFolder(folder.Path()));
}

TEST_F(PosixFilesTest, LocksAgainstOtherProcessesAndThisOne)
{
    const std::string path = Path("accheck.dat");
    EXPECT_TRUE(files.FileCanBeOpened(path)) << "a file that is not there is free";
    EXPECT_FALSE(files.FileExists(path));
    auto lock = files.LockFileCreate(path);
    ASSERT_TRUE(lock);
    EXPECT_FALSE(files.FileCanBeOpened(path));
    EXPECT_FALSE(files.LockFileCreate(path));
    const auto otherCanOpen = [&] { return InOtherProcess([&] { return files.FileCanBeOpened(path) ? 1 : 0; }); };
    EXPECT_EQ(otherCanOpen(), 0);
    lock.reset();
    EXPECT_TRUE(files.FileExists(path));
    EXPECT_EQ(otherCanOpen(), 1);

    // A process that ends lets go, however it ends.
    EXPECT_EQ(InOtherProcess([&] { return files.LockFileCreate(path).release() ? 3 : 0; }), 3);
    EXPECT_TRUE(files.LockFileCreate(path));
    EXPECT_FALSE(files.LockFileCreate(Path("absent\\accheck.dat")));
    EXPECT_FALSE(files.FileCanBeOpened("C:\\accheck.dat"));
}

TEST_F(PosixFilesTest, KnowsDrives)
{
    ASSERT_TRUE(files.WriteTextFile(Path("f"), "x"));
    std::filesystem::create_hard_link(Posix("f"), Posix("g"));
    EXPECT_TRUE(files.SameFile(Path("f"), Path("g")));
    EXPECT_FALSE(files.SameFile(Path("f"), Path("absent")));
    EXPECT_TRUE(files.SameDrive(Path("f"), Path("not\\yet\\there")));
    EXPECT_FALSE(files.SameDrive(Path("f"), "Z:\\proc"));
    EXPECT_FALSE(files.SameDrive("C:\\a", "C:\\b"));
    EXPECT_GT(files.DiskFreeBytes(Path("not\\yet\\there")), 0);
    EXPECT_EQ(files.DiskFreeBytes("C:\\"), 0);
    EXPECT_EQ(files.KindOfDrive("C:\\a.wav"), DriveKind::Unknown);
    EXPECT_EQ(files.KindOfDrive(folder.Path()), DriveKind::Fixed);
}

TEST(Paths, ConvertBothWays)
{
    EXPECT_EQ(InternalPath("/home/ann/a.wav"), "Z:\\home\\ann\\a.wav");
    EXPECT_EQ(InternalPath("//home/./ann//"), "Z:\\home\\ann");
    EXPECT_EQ(InternalPath("/"), "Z:\\");
    EXPECT_EQ(InternalPath(""), "");
    EXPECT_EQ(InternalPath("a.wav"), InternalPath((std::filesystem::current_path() / "a.wav").native()));
    EXPECT_EQ(PosixPath("Z:\\"), "/");
    EXPECT_EQ(PosixPath("z:/home\\ann/a.wav"), "/home/ann/a.wav");
    for (const char* nowhere : {"", "C:\\a.wav", "a.wav", "\\a.wav", "/etc/passwd", "Z:a.wav", "ZZ:\\a"}) {
        EXPECT_EQ(PosixPath(nowhere), "") << nowhere;
    }
    EXPECT_EQ(PosixPath(std::string_view("Z:\\a\0.wav", 9)), "");
    for (const char* path : {"/a\\b:c/d", "/with space/\xC3\xA9.wav", "/\xFF\xFE", "/..", "/a/../b"}) {
        EXPECT_EQ(PosixPath(InternalPath(path)), path);
    }
}

} // namespace
} // namespace velmora::core
