#include "core/Units.h"
#include "engine/audioplayer.h"
#include "engine/internal/Engine.h"
#include "soundlayer/soundlayer.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

constexpr std::int32_t kRate = 44'100;

/// The engine over the device without ears, and each block of it that plays: where on the timeline it begins, and how
/// many frames were mixed before it.
class TakeStamp : public ::testing::Test {
protected:
    struct PlayedBlock {
        std::int64_t clock = 0;
        std::uint64_t mixed = 0;
    };

    TakeStamp()
    {
        BASS_SetConfig(BASS_CONFIG_BUFFER, 60);
        BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, 10);
        initdata();
        BASS_Init(0, kRate, 0, nullptr, nullptr);
        const HSTREAM mixer = BASS_Mixer_StreamCreate(kRate, 2, BASS_MIXER_NONSTOP);
        BASS_ChannelSetDSP(mixer, &TakeStamp::Listen, reinterpret_cast<SOUND_USER>(this), 0);
        BASS_ChannelPlay(mixer, 0);
    }
    ~TakeStamp() override
    {
        freedata();
        BASS_Free();
    }

    /// Returns when so many blocks have played since the last call.
    std::vector<PlayedBlock> Play(std::size_t blocks)
    {
        while (true) {
            {
                const std::lock_guard lock(m_mutex);
                if (m_played.size() >= blocks) {
                    return std::exchange(m_played, {});
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    void Pause()
    {
        player_Pause();
        const std::uint64_t mixed = Sound_MixedFrames();
        while (Sound_MixedFrames() < mixed + kRate / 10) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        Play(0);
    }

    /// The take begins at `positionMS`: that is mixed, and later heard, with the frame that the stamp tells.
    static void ExpectStamp(std::int32_t positionMS, const std::vector<PlayedBlock>& blocks)
    {
        std::int32_t position = positionMS;
        std::uint64_t mixed = 0;
        ASSERT_TRUE(player_GetStamp(&position, &mixed));
        EXPECT_EQ(position, positionMS);
        for (const PlayedBlock& block : blocks) {
            const std::int64_t since = block.clock - core::FrameOfMS(positionMS, kRate);
            ASSERT_EQ(static_cast<std::int64_t>(mixed) + since, static_cast<std::int64_t>(block.mixed));
        }
    }

private:
    static void Listen(HDSP, std::uint32_t, void*, std::uint32_t, SOUND_USER user)
    {
        const std::int64_t clock = Engine::Get().mixSide.BlockStart();
        if (clock >= 0) {
            auto& self = *reinterpret_cast<TakeStamp*>(user);
            const std::lock_guard lock(self.m_mutex);
            self.m_played.push_back({clock, Sound_MixedFrames()});
        }
    }

    std::mutex m_mutex;
    std::vector<PlayedBlock> m_played;
};

TEST_F(TakeStamp, TellsWhichFrameTheTakesStartIsMixedWith)
{
    std::int32_t position = core::kUnset;
    std::uint64_t mixed = 0;
    player_SetTimePos(1234);
    player_ArmStamp();
    EXPECT_FALSE(player_GetStamp(&position, &mixed)) << "the clock has not run";
    // The start of a take right after a seek.
    player_SetTimePos(7321);
    player_Play();
    const auto first = Play(20);
    EXPECT_EQ(first.front().clock, core::FrameOfMS(7321, kRate));
    ExpectStamp(7321, first);
    Pause();

    // A clock that stands between two milliseconds, after silence in which frames were mixed.
    position = player_GetTimePos();
    player_ArmStamp();
    player_Play();
    ExpectStamp(position, Play(20));

    // While it plays: the take begins where the clock stands by now.
    player_ArmStamp();
    const auto before = Play(5);
    position = player_GetTimePos();
    ExpectStamp(position, before);
    ExpectStamp(position, Play(20));
    Pause();
    std::int32_t told = core::kUnset;
    ASSERT_TRUE(player_GetStamp(&told, &mixed));
    EXPECT_GT(told, 7321) << "where nobody says so, it is where the clock stood";
}

} // namespace
} // namespace velmora::engine
