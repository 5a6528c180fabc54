#include "tests/device/AlignedTakes.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::audio {
namespace {

/// The median error of takes with two buffers, in ms; nothing where the machine has no time for sound.
std::optional<double> MedianError()
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
        return {};
    }
    std::ranges::sort(errors);
    return errors[errors.size() / 2];
}

TEST(Alignment, ATakeLiesOnWhatWasHeard)
{
    // For some seconds after the machine was held up, PulseAudio's client guesses its latency by up to 3 ms wrong; what
    // is wrong with us is so with every server.
    std::optional<double> error;
    for (int servers = 0; servers < 3 && error.value_or(1) >= 1; ++servers) {
        error = MedianError();
    }
    if (!error) {
        GTEST_SKIP() << "the machine has no time for sound";
    }
    EXPECT_LT(*error, 1);
}

} // namespace
} // namespace velmora::audio
