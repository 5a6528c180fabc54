#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/project/LiveProject.h"

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace velmora::project {
namespace {

constexpr int kUsualSteps = 150;

/// How many steps; `VELMORA_STRESS_STEPS` asks for more.
int Steps()
{
    const char* asked = std::getenv("VELMORA_STRESS_STEPS");
    return asked ? std::atoi(asked) : kUsualSteps;
}

/// Edits, undo, redo, seeks and transport at random over the bus while the mixing thread mixes.
TEST(ProjectStress, EditsAndTheirUndoWhileItPlays)
{
    LiveProject program(5);
    program.Open();
    std::mt19937 random(6);
    program.Send(core::Msg_Player_Play);
    for (int step = 0; step < Steps(); ++step) {
        core::MsgParametersClass params;
        switch (random() % 8) {
        case 0:
            program.m_project->Undo->Undo();
            program.Send(core::Msg_Player_Play);
            break;
        case 1:
            program.m_project->Undo->Redo();
            program.Send(core::Msg_Player_Play);
            break;
        case 2:
            params.PlayFromMS = static_cast<std::int32_t>(random() % 2000) - 1000;
            program.Send(core::Msg_Player_SetRange, params);
            break;
        case 3:
            program.Send(core::Msg_Player_Stop);
            program.Send(core::Msg_Player_Play);
            break;
        default:
            program.Edit();
            break;
        }
        program.Hear(static_cast<std::int32_t>(random() % 30));
        ASSERT_EQ(program.EngineClips(), program.ModelClips()) << "step " << step;
    }
    ::testing::Test::RecordProperty("MissedFrames", std::to_string(Sound_MissedFrames()));
    ::testing::Test::RecordProperty("LateFrames", std::to_string(Sound_LateFrames()));
    ::testing::Test::RecordProperty("ClipsMissed", player_GetDebugCounter());
}

} // namespace
} // namespace velmora::project
