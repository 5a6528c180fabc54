#include "tests/device/AlignedTakes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <thread>
#include <vector>

namespace {

using velmora::audio::AlignedTakes;

/// Prints what one buffer and start give.
void PrintRow(AlignedTakes& rig, std::int32_t buffer, std::int32_t start, int takes)
{
    std::vector<double> errors;
    int disturbed = 0;
    for (int i = 0; i < takes; ++i) {
        const AlignedTakes::Take take = rig.Record(buffer, start);
        if (std::getenv("ALIGNMENT_DETAILS")) {
            std::printf("  %8.3f ms, file starts at %d ms, device %d ms, gaps %lld ms%s\n", take.errorMS,
                        take.fileStartMS, take.deviceLatencyMS, static_cast<long long>(take.gapMS),
                        take.disturbed ? ", disturbed" : "");
        }
        disturbed += take.disturbed ? 1 : 0;
        if (!take.disturbed) {
            errors.push_back(std::abs(take.errorMS));
        }
    }
    std::ranges::sort(errors);
    if (errors.empty()) {
        std::printf("| %d | %d | %d | %d | | |\n", buffer, start, takes, disturbed);
    } else {
        std::printf("| %d | %d | %d | %d | %.2f | %.2f |\n", buffer, start, takes, disturbed, errors[errors.size() / 2],
                    errors.back());
    }
    std::fflush(stdout);
}

void PrintTable(AlignedTakes& rig, const std::vector<std::int32_t>& buffers, int takes)
{
    std::printf("| Buffer, ms | start, ms | takes | disturbed | median error, ms | worst |\n"
                "|---|---|---|---|---|---|\n");
    for (const std::int32_t buffer : buffers) {
        for (const std::int32_t start : {0, 7'321}) {
            PrintRow(rig, buffer, start, takes);
        }
    }
}

/// Keeps every core busy as long as it lives.
class BusyCores {
public:
    BusyCores()
    {
        for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i) {
            m_threads.emplace_back([](const std::stop_token& stop) {
                while (!stop.stop_requested()) {
                }
            });
        }
    }

private:
    std::vector<std::jthread> m_threads;
};

} // namespace

/// Prints how far takes lie from what was heard, for buffers in ms and starts, TAKES each, on the machine as it is and
/// with all its cores busy, and what recording costs: velmora-alignment-bench [TAKES [BUFFER...]]
int main(int count, char** arguments)
{
    const int takes = count > 1 ? std::atoi(arguments[1]) : 10;
    std::vector<std::int32_t> buffers;
    std::transform(arguments + std::min(count, 2), arguments + count, std::back_inserter(buffers), std::atoi);
    if (buffers.empty()) {
        buffers = {20, 50, 100, 300, 1000};
    }
    AlignedTakes rig;
    PrintTable(rig, buffers, takes);
    std::printf("\nAll cores busy:\n");
    {
        const BusyCores busy;
        PrintTable(rig, buffers, takes);
    }
    constexpr std::int32_t kCostMS = 15'000;
    const std::int64_t playing = rig.CpuTimeMS(kCostMS, false);
    const std::int64_t recording = rig.CpuTimeMS(kCostMS, true);
    std::printf("\nPlaying takes %.2f %% of a core, playing and recording %.2f %%.\n",
                100.0 * static_cast<double>(playing) / kCostMS, 100.0 * static_cast<double>(recording) / kCostMS);
    return 0;
}
