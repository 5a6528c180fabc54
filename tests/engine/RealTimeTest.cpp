#include "tests/audio/ScriptedCapture.h"
#include "tests/engine/LiveSound.h"
#include "tests/support/RealTimeGuard.h"

#include <cstdlib>
#include <filesystem>
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

TEST(RealTime, ATakeThatIsHeardNeitherAllocatesNorWaitsNorTouchesFiles)
{
    constexpr auto kRate = static_cast<std::uint32_t>(NoiseFiles::kRate);
    LiveSound sound(3);
    audio::ScriptedCapture device;
    ASSERT_TRUE(BASS_RecordInit(device.Number()));
    const HRECORD record = BASS_RecordStart(kRate, 2, 0, nullptr, 0);
    const HSTREAM input = BASS_StreamCreate(kRate, 2, BASS_STREAM_DECODE,
                                            reinterpret_cast<STREAMPROC*>(rec_GetCallbackAddress()), record);
    BASS_ChannelSetDSP(input, reinterpret_cast<DSPPROC*>(get_GetLevelDSP_memaddress()), 0, 0);
    const auto path = std::filesystem::temp_directory_path() / ("take-" + std::to_string(getpid()) + ".wav");
    const WAVEFORMATEX format{1, 2, kRate, kRate * 4, 4, 16, 0};
    const HENCODE encoder = BASS_Encode_StartACMFile(record, &format, 0, path.c_str());
    ASSERT_NE(encoder, 0U);
    const RealTimeGuard guard;
    BASS_Mixer_StreamAddChannel(sound.DeviceMixer(), input, 0);
    player_Play();
    std::int32_t level = 0;
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(device.Deliver(10, 500));
        sound.Wait(kSecond / 100);
        std::int32_t other = 0;
        std::int32_t now = 0;
        GetRMSLevel(input, &now, &other);
        level = std::max(level, now);
    }
    BASS_Mixer_ChannelRemove(input);
    EXPECT_EQ(guard.Count(), RealTimeGuard::Breaches()) << guard.FirstBreach();
    EXPECT_EQ(level, 500) << "it was heard";
    EXPECT_TRUE(BASS_Encode_Stop(encoder));
    EXPECT_GT(std::filesystem::file_size(path), 4U * kSecond) << "and written";
    BASS_StreamFree(input);
    BASS_RecordFree();
    std::filesystem::remove(path);
}

} // namespace
} // namespace velmora::engine
