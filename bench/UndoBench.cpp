#include "audio/SoundSession.h"
#include "core/MsgIds.h"
#include "core/MsgParametersClass.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/Undo_Class.h"
#include "tests/support/TestEnvironment.h"

#include <cstdint>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

/// Steps of undo over a project of 1,000 clips in five channels, beside writing and reading its text once.
namespace velmora::project {
namespace {

constexpr std::int32_t kClips = 1000;
constexpr std::int32_t kChannels = 5;
constexpr std::int32_t kFirstEventID = 10;

class Song {
public:
    Song()
    {
        m_environment->config.Global_OutputDevice = 0;
        m_session = audio::SoundSession::Start(*m_environment);
        m_project = std::make_unique<ProjectFile_Class>(*m_environment);
        m_project->InitializeClass();
        m_project->CreateNewProject();
        for (int i = 0; i < kClips; ++i) {
            core::MsgParametersClass params;
            params.ChannelID = m_project->Chn_GetChannelObj_by_Index(i % kChannels)->ClassID();
            params.TimePosMS = 1000.0 * i;
            params.EventOBJ = std::make_shared<CDC_Event_Wave_Class>();
            params.EventOBJ->FilePath = "a" + std::to_string(i) + "- Record 1.wav";
            params.EventOBJ->Title = "Take " + std::to_string(i);
            params.EventOBJ->EndMS = 900;
            m_project->MsgSender->SendMsg(-1, core::Msg_AddEvent, params);
        }
    }

    ProjectFile_Class& Project() { return *m_project; }

    /// Moves a clip, each time another one, past its neighbours.
    void MoveAClip()
    {
        core::MsgParametersClass params;
        params.ChannelID = m_project->Chn_GetChannelObj_by_Index(m_moves % kChannels)->ClassID();
        params.EventID = kFirstEventID + m_moves / kChannels % (kClips / kChannels);
        params.NewTimePosMS = 12'345;
        m_project->MsgSender->SendMsg(-1, core::Msg_EventEdit_Move, params);
        ++m_moves;
    }

private:
    testing::TestEnvironment m_environment;
    std::unique_ptr<audio::SoundSession> m_session;
    std::unique_ptr<ProjectFile_Class> m_project;
    std::int32_t m_moves = 0;
};

void WriteText(benchmark::State& state)
{
    Song song;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(song.Project().GetXMLData());
    }
}

void ReadText(benchmark::State& state)
{
    Song song;
    const std::string text = song.Project().GetXMLData();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(song.Project().LoadXMLData(text, false, false, false));
    }
}

void TakeStep(benchmark::State& state)
{
    Song song;
    for ([[maybe_unused]] auto _ : state) {
        song.Project().Undo->AddUndo("move event", kUndoProject);
        state.PauseTiming();
        song.MoveAClip();
        state.ResumeTiming();
    }
    state.counters["bytes_100_steps"] = static_cast<double>(song.Project().Undo->BytesHeld());
    song.Project().Undo->ClearUndoRedoList();
    song.Project().Undo->AddUndo("move event", kUndoProject);
    state.counters["bytes_1_step"] = static_cast<double>(song.Project().Undo->BytesHeld());
}

/// Back and forth in turns; each takes a snapshot of the way back too.
void RestoreStep(benchmark::State& state)
{
    Song song;
    song.Project().Undo->AddUndo("move event", kUndoProject);
    song.MoveAClip();
    bool back = true;
    for ([[maybe_unused]] auto _ : state) {
        back ? song.Project().Undo->Undo() : song.Project().Undo->Redo();
        back = !back;
    }
}

BENCHMARK(WriteText)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadText)->Unit(benchmark::kMillisecond);
BENCHMARK(TakeStep)->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(RestoreStep)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace velmora::project
