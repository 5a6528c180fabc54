#include "audio/AudioInput_Class.h"
#include "audio/DeviceStart.h"
#include "audio/Recorder_Class.h"
#include "audio/SoundSession.h"
#include "core/MsgIds.h"
#include "core/MsgParametersClass.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"
#include "tests/device/AudioServer.h"
#include "tests/support/TestEnvironment.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

namespace velmora {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::int32_t kRate = 44'100;
constexpr std::int32_t kClickMS = 500;
constexpr std::int16_t kClick = 20'000;

double Since(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A project with a click, on a sound server of its own whose only input hears its output.
class Rig {
public:
    Rig()
    {
        m_server.Start();
        m_environment->config.Global_OutputDevice = -1;
        m_environment->config.Global_InputDevice = 0;
        m_session = audio::SoundSession::Start(*m_environment);
        m_project = std::make_unique<project::ProjectFile_Class>(*m_environment);
        m_project->InitializeClass();
        m_project->CreateNewProject();
        Voice();
        AddClick();
    }
    ~Rig() { m_project.reset(); }
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;

    void SetBuffer(std::int32_t ms)
    {
        m_environment->config.BassBuffer_LengthMS = static_cast<std::int16_t>(ms);
        audio::BassApplyBufferConfig(m_environment->config);
        std::this_thread::sleep_for(1s);
    }

    /// From the command to a clock that runs, in ms.
    double StartTake()
    {
        Seek();
        const auto start = Clock::now();
        Send(core::Msg_Recorder_Start);
        while (m_project->Recorder->isRecording() && player_GetTimePos() == 0) {
            std::this_thread::sleep_for(200us);
        }
        const double ms = Since(start);
        std::this_thread::sleep_for(300ms);
        Send(core::Msg_Recorder_Stop);
        return ms;
    }

    /// What of that is the device's: from opening it to its first data.
    double StartDevice()
    {
        audio::AudioInput_Class input(*m_environment);
        input.InputDevice = 0;
        const auto start = Clock::now();
        input.StartCapture();
        const double ms = Since(start);
        input.EndCapture();
        return ms;
    }

    /// A click that is played comes in again, is heard and comes in again: the times from one to the next, in ms.
    std::vector<double> MonitorEchoes(std::int32_t bufferMS)
    {
        Seek();
        core::MsgParametersClass live;
        live.ChannelID = m_voice;
        live.Value = core::kTrue;
        Send(core::Msg_Channel_SetLive, live);
        std::this_thread::sleep_for(1s);
        const testing::Recording ear(m_server);
        Send(core::Msg_Player_Play);
        std::this_thread::sleep_for(std::chrono::milliseconds(kClickMS + 12 * (bufferMS + 60)));
        Send(core::Msg_Player_Stop);
        const std::vector<std::int16_t> heard = ear.Samples();
        live.Value = core::kFalse;
        Send(core::Msg_Channel_SetLive, live);
        std::this_thread::sleep_for(std::chrono::milliseconds(2 * bufferMS));

        std::vector<double> distances;
        std::size_t last = 0;
        for (std::size_t frame = 0; frame < heard.size() / 2; ++frame) {
            if (std::abs(heard[2 * frame]) < kClick / 2) {
                continue;
            }
            if (last > 0) {
                distances.push_back(static_cast<double>(frame - last) * 1000 / kRate);
            }
            last = frame;
        }
        return distances;
    }

private:
    void Send(std::int32_t msgID, core::MsgParametersClass params = {})
    {
        m_project->MsgSender->SendMsg(-1, msgID, params);
    }

    void Voice()
    {
        m_voice = m_project->Chn_GetVoiceChannelObj_by_Index(0)->ClassID();
        core::MsgParametersClass select;
        select.SelectChannelID = m_voice;
        Send(core::Msg_SelectVoiceChannel, select);
    }

    void AddClick()
    {
        audio::WavSound sound{kRate, 2, std::vector<std::int16_t>(2 * std::size_t{20} * kRate)};
        const auto at = static_cast<std::size_t>(core::FrameOfMS(kClickMS, kRate));
        sound.samples[2 * at] = sound.samples[2 * at + 1] = kClick;
        core::MsgParametersClass clip;
        clip.FilePath = m_environment.Path("click.wav");
        audio::WriteWav(clip.FilePath, sound);
        clip.ChannelID = m_project->Chn_GetMusicChannelObj_by_Index(0)->ClassID();
        clip.FileStartMS = 0;
        Send(core::Msg_AddEvent_Wave, clip);
    }

    void Seek()
    {
        core::MsgParametersClass range;
        range.PlayFromMS = core::kUnset;
        range.PlayToMS = 0;
        Send(core::Msg_Player_SetRange, range);
    }

    testing::AudioServer m_server;
    testing::TestEnvironment m_environment;
    std::unique_ptr<audio::SoundSession> m_session;
    std::unique_ptr<project::ProjectFile_Class> m_project;
    core::ClassID m_voice = 0;
};

double Middle(std::vector<double>& values)
{
    std::ranges::sort(values);
    return values.empty() ? 0 : values[values.size() / 2];
}

double Worst(const std::vector<double>& values)
{
    return values.empty() ? 0 : values.back();
}

} // namespace
} // namespace velmora

/// Prints how long takes need to start, and how late an input is heard, for buffers, TAKES each:
/// velmora-recording-bench [TAKES]
int main(int count, char** arguments)
{
    using namespace velmora;
    const int takes = count > 1 ? std::atoi(arguments[1]) : 10;
    Rig rig;
    std::printf("| Buffer, ms | take to running clock, ms | worst | of it the input device | worst |\n"
                "|---|---|---|---|---|\n");
    const std::vector<std::int32_t> buffers{20, 50, 100, 300, 1000};
    for (const std::int32_t buffer : buffers) {
        rig.SetBuffer(buffer);
        std::vector<double> starts;
        std::vector<double> devices;
        for (int i = 0; i < takes; ++i) {
            devices.push_back(rig.StartDevice());
            starts.push_back(rig.StartTake());
        }
        const double start = Middle(starts);
        const double device = Middle(devices);
        std::printf("| %d | %.0f | %.0f | %.0f | %.0f |\n", buffer, start, Worst(starts), device, Worst(devices));
        std::fflush(stdout);
    }
    std::printf("\n| Buffer, ms | input to output, ms | worst | buffer, period and the output device's latency |\n"
                "|---|---|---|---|\n");
    for (const std::int32_t buffer : buffers) {
        rig.SetBuffer(buffer);
        std::vector<double> echoes = rig.MonitorEchoes(buffer);
        BASS_INFO info{};
        BASS_GetInfo(&info);
        const std::uint32_t bound =
            BASS_GetConfig(BASS_CONFIG_BUFFER) + BASS_GetConfig(BASS_CONFIG_UPDATEPERIOD) + info.latency;
        const double middle = Middle(echoes);
        std::printf("| %d | %.1f | %.1f | %u |\n", buffer, middle, Worst(echoes), bound);
        std::fflush(stdout);
    }
    return 0;
}
