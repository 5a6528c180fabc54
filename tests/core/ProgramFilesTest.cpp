#include "core/ProgramFiles.h"

#include "tests/support/TestEnvironment.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace velmora::core {
namespace {

TEST(ProgramFiles, AreFoundInABuildTreeAndWhereTheyAreInstalled)
{
    testing::TestEnvironment environment; // with a paths.cfg at its root
    environment.files.DeleteFile(environment.Path("paths.cfg"));
    const std::string root = environment.folder.Posix().string();
    const auto add = [&environment](const std::string& folder) {
        std::filesystem::create_directories(environment.folder.Posix() / folder);
        std::ofstream(environment.folder.Posix() / folder / "paths.cfg") << "a=b";
    };
    EXPECT_EQ(ProgramFilesFolderOf(root + "/build/dev/bin/velmora"), environment.Path("build\\dev\\bin"));
    add("resources");
    add("share/velmora");
    EXPECT_EQ(ProgramFilesFolderOf(root + "/build/dev/bin/velmora"), environment.Path("resources"));
    EXPECT_EQ(ProgramFilesFolderOf(root + "/bin/velmora"), environment.Path("share\\velmora"));
    add("bin");
    EXPECT_EQ(ProgramFilesFolderOf(root + "/bin/velmora"), environment.Path("bin"));
}

} // namespace
} // namespace velmora::core
