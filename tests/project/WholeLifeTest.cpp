#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/project/LiveProject.h"
#include "tests/support/Becomes.h"
#include "tests/support/RealTimeGuard.h"

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

namespace velmora::project {
namespace {

std::size_t Entries(const char* folder)
{
    const std::filesystem::directory_iterator all(folder);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

std::size_t Threads()
{
    return Entries("/proc/self/task");
}

std::size_t OpenFiles()
{
    return Entries("/proc/self/fd");
}

std::int32_t LevelOf(const Channel_Class& channel)
{
    std::int32_t left = 0;
    std::int32_t right = 0;
    GetRMSLevel(channel.BassOutMix_Handle, &left, &right);
    return left + right;
}

/// Settings, sound, a project, play, edits, undo, save, and down again.
void LiveOnce(std::uint32_t seed)
{
    LiveProject program(seed);
    program.Open();
    const std::string opened = program.Text();
    const testing::RealTimeGuard guard;
    program.Send(core::Msg_Player_Play);
    const Channel_Class& channel = *program.m_project->Chn_GetMusicChannelObj_by_Index(0);
    EXPECT_TRUE(testing::Becomes([&] { return LevelOf(channel) > 0; }));
    for (int edit = 0; edit < 12; ++edit) {
        program.Edit();
        program.Hear(15);
    }
    EXPECT_EQ(program.EngineClips(), program.ModelClips());
    while (!program.m_project->Undo->CurUndo_Title().empty()) {
        program.m_project->Undo->Undo();
        program.Send(core::Msg_Player_Play);
        program.Hear(5);
    }
    EXPECT_EQ(program.Text(), opened);
    EXPECT_EQ(program.EngineClips(), program.ModelClips());
    program.m_project->Undo->Redo();
    EXPECT_TRUE(program.m_project->SaveProject(""));
    EXPECT_TRUE(program.m_environment->SaveSettings());
    EXPECT_EQ(guard.Count(), testing::RealTimeGuard::Breaches()) << guard.FirstBreach();
}

TEST(WholeLife, UpAndDownTwiceLeavesNoThreadAndNoFileOpen)
{
    const std::size_t threads = Threads();
    LiveOnce(1);
    const std::size_t files = OpenFiles();
    EXPECT_TRUE(testing::Becomes([threads] { return Threads() == threads; })) << Threads();
    LiveOnce(2);
    EXPECT_EQ(OpenFiles(), files);
    EXPECT_TRUE(testing::Becomes([threads] { return Threads() == threads; })) << Threads();
    EXPECT_EQ(BASS_GetDevice(), -1);
}

} // namespace
} // namespace velmora::project
