/// What the engine promises of time, on the device without ears: cost of a clip in its tables, from play and from a
/// seek to their sound, and 2,000 clips of which 64 start at one moment. Usage: velmora-engine-bench

#include "core/Units.h"
#include "engine/audioplayer.h"
#include "engine/internal/Engine.h"
#include "soundlayer/soundlayer.h"
#include "tests/engine/NoiseFiles.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

using velmora::core::kUnset;
using velmora::engine::Engine;
using velmora::engine::NoiseFiles;
using Clock = std::chrono::steady_clock;

constexpr std::int32_t kRate = NoiseFiles::kRate;
constexpr std::int32_t kBufferMS = 100;

double MSSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void Add(std::int32_t id, const NoiseFiles& files, std::int32_t timePosMS, std::int32_t lengthMS)
{
    const auto file = static_cast<std::uint32_t>(id % 16);
    addEvent(1, id, 1.0, files.Path(file).c_str(), timePosMS, 100, 100 + lengthMS, kUnset, kUnset);
}

/// Microseconds to put one clip more into tables that hold `clips`.
double AddingUS(const NoiseFiles& files, std::int32_t clips)
{
    ClearEventList();
    for (std::int32_t id = 0; id < clips; ++id) {
        Add(id, files, 3'600'000 + id, 500);
    }
    constexpr std::int32_t kTimes = 2000;
    const auto start = Clock::now();
    for (std::int32_t i = 0; i < kTimes; ++i) {
        Add(1'000'000, files, 3'600'000 + i, 500);
    }
    return 1000 * MSSince(start) / kTimes;
}

/// ms until the clock runs on from where it was asked to be.
double UntilItRuns(std::int32_t fromMS)
{
    const auto start = Clock::now();
    const std::int64_t target = velmora::core::FrameOfMS(fromMS, kRate);
    auto& side = Engine::Get().mixSide;
    while (side.clock.Frames() <= target || side.clock.Frames() > target + kRate) {
        std::this_thread::yield();
    }
    return MSSince(start);
}

} // namespace

int main()
{
    const NoiseFiles files;
    BASS_SetConfig(BASS_CONFIG_BUFFER, kBufferMS);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, kBufferMS / 2);
    if (!BASS_Init(0, kRate, 0, nullptr, nullptr)) {
        return 1;
    }
    const HSTREAM device = BASS_Mixer_StreamCreate(kRate, 2, BASS_MIXER_NONSTOP);
    const HSTREAM channel = BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    BASS_Mixer_StreamAddChannel(device, channel, 0);
    initdata();
    addCC(1, channel);
    BASS_ChannelPlay(device, 0);

    AddingUS(files, 10); // the first round finds cold caches
    const double few = AddingUS(files, 10);
    const double many = AddingUS(files, 1000);

    ClearEventList();
    for (std::int32_t id = 0; id < 20; ++id) {
        Add(id, files, 10 * id, 9000);
    }
    std::vector<double> plays;
    std::vector<double> seeks;
    for (std::int32_t i = 0; i < 15; ++i) {
        player_SetTimePos(1000);
        Engine::Get().planner.Settle();
        std::this_thread::sleep_for(std::chrono::milliseconds(2 * kBufferMS + 7 * i));
        player_Play();
        plays.push_back(UntilItRuns(1000));
        player_SetTimePos(2000 + 100 * i);
        seeks.push_back(UntilItRuns(2000 + 100 * i));
        player_Pause();
    }

    ClearEventList();
    for (std::int32_t id = 0; id < 2000; ++id) {
        Add(id, files, id < 64 ? 2500 : 30 * id, 400);
    }
    player_SetTimePos(0);
    player_Play();
    while (player_GetTimePos() < 12'000) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    player_Pause();
    std::printf("\n| The engine, buffer %d ms, period %d ms | |\n|---|---|\n", kBufferMS, kBufferMS / 2);
    std::printf("| one clip more in tables of 10, us | %.2f |\n| in tables of 1,000, us | %.2f |\n| ratio | %.1f |\n",
                few, many, many / few);
    std::printf("| from play to the clock's first frame in the ring, ms, median | %.1f |\n", Median(plays));
    std::printf("| the slowest of %zu | %.1f |\n", plays.size(), *std::ranges::max_element(plays));
    std::printf("| from a seek amid 20 clips to its first frame in the ring, ms, median | %.1f |\n", Median(seeks));
    std::printf("| the slowest | %.1f |\n", *std::ranges::max_element(seeks));
    std::printf("| 2,000 clips, 64 of them at one moment: clips missed in 12 s | %d |\n", player_GetDebugCounter());
    std::printf("| frames decoded late | %llu |\n", static_cast<unsigned long long>(Sound_LateFrames()));
    std::printf("| frames that the device missed | %llu |\n", static_cast<unsigned long long>(Sound_MissedFrames()));
    freedata();
    return BASS_Free() ? 0 : 1;
}
