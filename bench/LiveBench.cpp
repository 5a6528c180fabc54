/// CPU time of mixing ten channels with twenty sounding clips as playback does, as fast as it goes, beside that of
/// exporting the same stretch. Usage: velmora-live-bench [ROUNDS]

#include "audio/MasterVolume_Class.h"
#include "core/MsgIds.h"
#include "engine/audioplayer.h"
#include "engine/internal/Engine.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>

namespace velmora::audio {
namespace {

constexpr std::int32_t kSeconds = 120;
constexpr std::int32_t kDeviceRate = 44'100;

double ProcessorMS()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return 1000.0 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e6;
}

class LiveBench : public ExportTest {
public:
    LiveBench()
    {
        for (int i = 0; i < 4; ++i) {
            WavSound sound{i < 2 ? kDeviceRate : 48'000, 2, {}};
            std::mt19937 random(static_cast<std::uint32_t>(i));
            sound.samples.resize(static_cast<std::size_t>(2 * kSeconds * sound.rate));
            for (auto& sample : sound.samples) {
                sample = static_cast<std::int16_t>(random() % 4096) - 2048;
            }
            WriteWav(File(i), sound);
        }
        for (int i = 0; i < 10; ++i) {
            project::Channel_Class& channel = i == 0 ? *m_channel : AddChannel(70 + i);
            for (int clip = 0; clip < 2; ++clip) {
                auto& event = AddClip(channel, File((i + clip) % 4), 0, 0, 1000 * kSeconds, i % 2 ? 1.0 : 0.8);
                event.FadeIn_EndMS = clip ? 3000 : core::kUnset;
            }
        }
        Send(core::Msg_Refresh, 0, 0);
    }

    double ExportMS()
    {
        AudioExport run(*m_environment, *m_project, m_progress);
        run.SampleRate = kDeviceRate;
        run.Channels = 2;
        run.FilePath = MixPath();
        run.encoder_Format(AudioExport::kWav);
        const double before = ProcessorMS();
        run.StartExport();
        const double took = ProcessorMS() - before;
        return run.Result() == AudioExport::Outcome::Done ? took : 0;
    }

    /// The device's thread stands by; this one does what it does.
    double LiveMS()
    {
        engine::Engine& engine = engine::Engine::Get();
        const HSTREAM master = m_project->MasterVolume->BassMixStreamHandle();
        Sound_SetHeartbeat(nullptr, 0);
        BASS_Mixer_ChannelRemove(master);
        player_SetTimePos(0);
        player_Play();
        const double before = ProcessorMS();
        std::int64_t done = 0;
        for (std::int64_t settled = -1; done < std::int64_t{kSeconds} * kDeviceRate;) {
            // The planner must keep pace with a clock that runs many times too fast.
            if (done / kDeviceRate != settled) {
                settled = done / kDeviceRate;
                engine.planner.Settle();
            }
            std::int16_t block[2 * 512];
            const std::uint32_t frames = engine.mixSide.BeforeBlock(512);
            BASS_ChannelGetData(master, block, frames * 4);
            done += frames;
        }
        const double took = ProcessorMS() - before;
        player_Pause();
        BASS_Mixer_StreamAddChannel(m_project->MasterVolume->RealMixHandle(), master, 0);
        initdata();
        return player_GetDebugCounter() == 0 ? took : 0;
    }

private:
    std::string File(int i) const { return m_environment.Path("noise" + std::to_string(i) + ".wav"); }
    void TestBody() override {}
};

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace
} // namespace velmora::audio

int main(int argc, char** argv)
{
    velmora::audio::LiveBench bench;
    std::vector<double> live;
    std::vector<double> exported;
    for (int round = argc > 1 ? std::atoi(argv[1]) : 3; round > 0; --round) {
        live.push_back(bench.LiveMS());
        exported.push_back(bench.ExportMS());
    }
    const double liveMS = velmora::audio::Median(live);
    const double exportMS = velmora::audio::Median(exported);
    std::printf("| Ten channels, twenty clips, two minutes | CPU ms |\n|---|---|\n");
    std::printf("| mixed live | %.0f |\n| exported | %.0f |\n| ratio | %.2f |\n", liveMS, exportMS, liveMS / exportMS);
    return liveMS > 0 && exportMS > 0 ? 0 : 1;
}
