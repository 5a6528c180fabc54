#include "tests/engine/LiveSound.h"

#include <cstdint>
#include <cstdlib>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

constexpr std::int64_t kSecond = NoiseFiles::kRate;
constexpr std::int64_t kUsualSeconds = 15;

/// How much is mixed; `VELMORA_STRESS_SECONDS` asks for more.
std::int64_t Frames()
{
    const char* asked = std::getenv("VELMORA_STRESS_SECONDS");
    return kSecond * (asked ? std::atoll(asked) : kUsualSeconds);
}

/// A user who does at random whatever playback knows, and now and then stops to listen: then it is the mix that the
/// clips ask for, to the sample.
TEST(PlaybackStress, AfterWhateverWasDoneTheMixIsWhatTheClipsAskFor)
{
    constexpr std::int64_t kActs = 40;
    constexpr int kTries = 20;
    LiveSound sound(11);
    std::int64_t rounds = 0;
    int late = 0;
    while (sound.MixedFrames() < Frames()) {
        for (std::int64_t act = 0; act < kActs; ++act) {
            sound.Act();
            sound.Wait(act * 37 % 900);
        }
        // A machine under load may make clips late. They are counted then, and in their place a moment later.
        std::int64_t wrong = -1;
        bool counted = true;
        for (int i = 0; counted && i < kTries; ++i) {
            sound.Settle();
            const std::uint64_t before = Sound_LateFrames() + static_cast<std::uint64_t>(player_GetDebugCounter());
            wrong = sound.WrongFrames(kSecond / 4);
            counted = Sound_LateFrames() + static_cast<std::uint64_t>(player_GetDebugCounter()) != before;
            late += counted;
        }
        ASSERT_EQ(wrong, 0) << "round " << rounds;
        ++rounds;
    }
    RecordProperty("Rounds", std::to_string(rounds));
    RecordProperty("LateRounds", late);
    RecordProperty("ClipsMissed", player_GetDebugCounter());
    RecordProperty("LateFrames", std::to_string(Sound_LateFrames()));
    RecordProperty("MissedFrames", std::to_string(Sound_MissedFrames()));
}

} // namespace
} // namespace velmora::engine
