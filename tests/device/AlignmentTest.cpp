#include "tests/device/AlignedTakes.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::audio {
namespace {

TEST(Alignment, ATakeLiesOnWhatWasHeard)
{
    AlignedTakes rig;
    std::vector<double> errors;
    std::size_t disturbed = 0;
    for (const std::int32_t buffer : {50, 300}) {
        // The first take after a change of the buffer's length begins before the buffer has it.
        for (const std::int32_t start : {0, 7'321, 0}) {
            AlignedTakes::Take take;
            for (int tries = 0; tries < 3 && (tries == 0 || take.disturbed); ++tries) {
                take = rig.Record(buffer, start);
                disturbed += take.disturbed ? 1 : 0;
            }
            if (!take.disturbed) {
                errors.push_back(std::abs(take.errorMS));
            }
        }
    }
    if (disturbed >= errors.size()) {
        GTEST_SKIP() << "the machine has no time for sound: " << disturbed << " takes were disturbed, " << errors.size()
                     << " were not";
    }
    std::ranges::sort(errors);
    // For some seconds after the machine was held up, PulseAudio's client guesses its latency by up to 3 ms wrong.
    EXPECT_LT(errors[errors.size() / 2], 3);
}

} // namespace
} // namespace velmora::audio
