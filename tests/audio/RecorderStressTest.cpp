#include "audio/AudioPlayer_Class.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/RecorderFixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <set>
#include <thread>

namespace velmora::audio {
namespace {

using namespace std::chrono_literals;

std::uint32_t Seed()
{
    const char* wanted = std::getenv("VELMORA_SEED");
    return wanted ? static_cast<std::uint32_t>(std::atoi(wanted)) : 20261121;
}

class RecorderStress : public RecorderTest {
protected:
    RecorderStress()
    {
        const SOUND_RECORDER recorder{"Busy", 0, 2, 0, nullptr, 0};
        m_number = Sound_RecordAddDevice(&recorder);
        Recorder().InputDeviceOverride = m_number;
        m_delivering = std::jthread([this](const std::stop_token& stop) {
            const std::vector<std::int16_t> block(2 * 441, 500);
            while (!stop.stop_requested()) {
                const auto now = std::chrono::steady_clock::now().time_since_epoch();
                Sound_RecordDeliver(m_number, block.data(), 441, std::chrono::nanoseconds(now).count());
                std::this_thread::sleep_for(10ms);
                ++m_blocks;
            }
        });
    }
    ~RecorderStress() override
    {
        m_delivering.request_stop();
        m_delivering.join();
        m_project.reset();
        Sound_RecordRemoveDevice(m_number);
    }

    void Step()
    {
        const core::ClassID voice = Voice(static_cast<std::int32_t>(m_random() % Voices())).ClassID();
        switch (m_random() % 12) {
        case 0:
        case 1:
            Start();
            break;
        case 2:
        case 3:
            m_project->util_StopIfPlayingOrRecording();
            break;
        case 4:
            Select(voice);
            break;
        case 5:
            SetLive(Recorder().RecordOnChannel(), !Recorder().IsMonitoring());
            break;
        case 6:
            m_project->Undo->Undo();
            break;
        case 7:
            m_project->Undo->Redo();
            break;
        case 8:
            m_project->util_RepeatLastRecording();
            break;
        case 9:
            Seek(static_cast<std::int32_t>(m_random() % 3000));
            Send(core::Msg_Player_Play);
            break;
        case 10:
            m_project->Undo->AddUndo("delete channel", project::kUndoProject);
            if (Voices() > 2) {
                SendToChannel(core::Msg_DeleteChannel, voice, 0);
            }
            break;
        default:
            m_project->Undo->AddUndo("add voice channel", project::kUndoProject);
            Send(core::Msg_AddVoiceChannel);
            break;
        }
        m_environment.ports.timers.Advance(50ms);
        for (const std::uint32_t until = m_blocks + static_cast<std::uint32_t>(m_random() % 3); m_blocks < until;) {
            std::this_thread::yield();
        }
    }

    std::uint32_t Voices() const { return static_cast<std::uint32_t>(m_project->Chn_GetVoiceChannel_TotalN()); }

    std::mt19937 m_random{Seed()};
    std::int32_t m_number = -1;
    std::atomic<std::uint32_t> m_blocks{0};
    std::jthread m_delivering;
};

/// Whatever comes after what: each clip's take is on disk, and a journal stands for what a crash would lose.
TEST_F(RecorderStress, RecordMonitorUndoAndRepeatAtRandom)
{
    std::size_t takes = 0;
    for (int i = 0; i < 250; ++i) {
        Step();
        if (Recorder().isRecording()) {
            continue;
        }
        const std::vector<std::string> names = Files();
        const std::set<std::string> files(names.begin(), names.end());
        for (const std::string& name : m_project->util_AudioFilesInUse()) {
            ASSERT_TRUE(files.contains(name)) << "step " << i;
            ASSERT_TRUE(files.contains(TakeJournal::PathFor(name))) << "step " << i;
        }
        takes = std::max(takes, files.size());
    }
    EXPECT_GT(takes, 10U);
    m_project->util_StopIfPlayingOrRecording();
    ASSERT_TRUE(m_project->SaveProject(m_environment.Path("Song.audioproj")));
    for (const std::string& name : Files()) {
        EXPECT_FALSE(name.ends_with(".take")) << name;
    }
    for (const auto& shown : Messages().shown) {
        EXPECT_TRUE(shown.text == "Select a voice channel to record on." ||
                    shown.text == "LiveInput_Class::MsgHandler\nLive input already set" ||
                    shown.text.find("left out") != std::string::npos)
            << shown.text;
    }
}

} // namespace
} // namespace velmora::audio
