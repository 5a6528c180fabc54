#include "tests/engine/LiveSound.h"
#include "tests/support/RealTimeGuard.h"

#include <cstdlib>
#include <mutex>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::engine {
namespace {

using testing::RealTimeGuard;

constexpr std::int64_t kSecond = NoiseFiles::kRate;

void Allocate(HDSP, std::uint32_t, void*, std::uint32_t, SOUND_USER)
{
    void* volatile block = std::malloc(16);
    std::free(block);
}

void TakeMutex(HDSP, std::uint32_t, void*, std::uint32_t, SOUND_USER)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
}

void ReadFile(HDSP, std::uint32_t, void*, std::uint32_t, SOUND_USER)
{
    const int file = ::open("/dev/zero", O_RDONLY);
    char byte = 0;
    static_cast<void>(::read(file, &byte, 1) == 1);
    ::close(file);
}

TEST(RealTime, TheGuardCatchesWhatAnEffectMayNotDo)
{
    LiveSound sound(1);
    const RealTimeGuard idle;
    void* volatile block = std::malloc(16);
    std::free(block);
    EXPECT_EQ(idle.Count(), RealTimeGuard::Breaches()) << "other threads may";
    for (DSPPROC* proc : {&Allocate, &TakeMutex, &ReadFile}) {
        const HDSP dsp = BASS_ChannelSetDSP(sound.DeviceMixer(), proc, 0, 0);
        const RealTimeGuard guard;
        sound.Wait(kSecond / 5);
        const RealTimeGuard::Breaches found = guard.Count();
        EXPECT_EQ(found.memory > 0, proc == &Allocate);
        EXPECT_EQ(found.waits > 0, proc == &TakeMutex);
        EXPECT_EQ(found.files > 0, proc == &ReadFile);
        EXPECT_FALSE(guard.FirstBreach().empty());
        BASS_ChannelRemoveDSP(sound.DeviceMixer(), dsp);
        sound.Wait(kSecond / 5);
    }
}

TEST(RealTime, PlaybackAndEditsNeitherAllocateNorWaitNorTouchFiles)
{
    LiveSound sound(2);
    player_Play();
    const RealTimeGuard guard;
    while (sound.MixedFrames() < 5 * kSecond) {
        sound.Act();
        sound.Wait(kSecond / 100);
    }
    sound.Settle();
    EXPECT_EQ(guard.Count(), RealTimeGuard::Breaches()) << guard.FirstBreach();
}

} // namespace
} // namespace velmora::engine
