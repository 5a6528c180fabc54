#include "tests/device/AlignedTakes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <vector>

/// Prints how far takes lie from what was heard, for buffers in ms and starts, TAKES each, and what recording costs:
/// velmora-alignment-bench [TAKES [BUFFER...]]
int main(int count, char** arguments)
{
    using velmora::audio::AlignedTakes;
    const int takes = count > 1 ? std::atoi(arguments[1]) : 10;
    std::vector<std::int32_t> buffers;
    std::transform(arguments + std::min(count, 2), arguments + count, std::back_inserter(buffers), std::atoi);
    if (buffers.empty()) {
        buffers = {20, 50, 100, 300, 1000};
    }
    AlignedTakes rig;
    std::printf(
        "| Buffer, ms | start, ms | takes | disturbed | median error, ms | worst |\n|---|---|---|---|---|---|\n");
    for (const std::int32_t buffer : buffers) {
        for (const std::int32_t start : {0, 7'321}) {
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
                std::printf("| %d | %d | %d | %d | %.2f | %.2f |\n", buffer, start, takes, disturbed,
                            errors[errors.size() / 2], errors.back());
            }
            std::fflush(stdout);
        }
    }
    constexpr std::int32_t kCostMS = 15'000;
    const std::int64_t playing = rig.CpuTimeMS(kCostMS, false);
    const std::int64_t recording = rig.CpuTimeMS(kCostMS, true);
    std::printf("\nPlaying takes %.2f %% of a core, playing and recording %.2f %%.\n",
                100.0 * static_cast<double>(playing) / kCostMS, 100.0 * static_cast<double>(recording) / kCostMS);
    return 0;
}
