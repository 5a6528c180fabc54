#include "core/Paths.h"
#include "tests/project/ProjectFixture.h"

#include <filesystem>

namespace velmora::project {
namespace {

class Example : public ProjectTest {};

TEST_F(Example, OpensWholeAndIsSavedAsTheSameBytes)
{
    const std::string copy = m_environment.Path("examples");
    std::filesystem::copy(VELMORA_EXAMPLES, core::PosixPath(copy), std::filesystem::copy_options::recursive);
    const std::string path = copy + "\\Welcome (Bar style).audioproj";
    const std::string shipped = Read(path);
    ASSERT_FALSE(shipped.empty());

    ASSERT_TRUE(Load(path)) << Messages().LastText();
    EXPECT_TRUE(Messages().shown.empty());
    EXPECT_GT(m_project->util_GetProjectLength(), 55'000);
    ASSERT_TRUE(m_project->SaveProject("")) << Messages().LastText();
    EXPECT_TRUE(Read(path) == shipped);
}

} // namespace
} // namespace velmora::project
