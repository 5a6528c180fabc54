#include "soundlayer/soundlayer.h"
#include "tests/soundlayer/TestAudio.h"
#include "tests/soundlayer/TestStreams.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// Where DSPs of different channels wait for each other, once.
struct Meeting {
    std::mutex mutex;
    std::condition_variable come;
    int wanted = 0;
    std::set<std::thread::id> threads;

    static void Dsp(HDSP, std::uint32_t, void*, std::uint32_t, SOUND_USER user)
    {
        auto& self = *reinterpret_cast<Meeting*>(user);
        std::unique_lock lock(self.mutex);
        self.threads.insert(std::this_thread::get_id());
        self.come.notify_all();
        self.come.wait_for(lock, std::chrono::seconds(20),
                           [&] { return static_cast<int>(self.threads.size()) >= self.wanted; });
    }
};

/// Channels with effects that play files, one with effects and a resampled file, one that plays a procedure's samples,
/// one plain; all in one mixer, which is freed with them.
class Mix {
public:
    explicit Mix(const std::string& folder)
        : m_caller(std::this_thread::get_id())
    {
        for (std::uint32_t i = 0; i < 5; ++i) {
            const HSTREAM channel = AddChannel(i);
            if (i < 4) {
                AddEffects(channel);
            }
            const std::string file = folder + "/" + std::to_string(i) + ".wav";
            testing::WriteFile(file, testing::Wav(testing::Music(i == 3 ? 48000 : 44100, 2, 60000 + 5000 * i),
                                                  i == 3 ? 48000 : 44100, 2));
            const HSTREAM clip = Sound_ClipCreate(file.c_str(), 44100);
            EXPECT_NE(clip, 0U);
            BASS_Mixer_StreamAddChannel(channel, clip, 0);
            m_streams.push_back(clip);
        }
        const HSTREAM live = AddChannel(5);
        AddEffects(live);
        m_procedure = std::make_unique<TestStream>([this](std::int64_t frame, std::uint32_t side) {
            m_foreign = m_foreign || std::this_thread::get_id() != m_caller;
            return static_cast<std::int16_t>(frame * (side + 3) % 4001 - 2000);
        });
        BASS_Mixer_StreamAddChannel(live, m_procedure->handle, 0);
    }
    ~Mix()
    {
        for (const HSTREAM stream : m_streams) {
            BASS_StreamFree(stream);
        }
    }
    Mix(const Mix&) = delete;
    Mix& operator=(const Mix&) = delete;

    std::vector<std::int16_t> Pull(std::size_t frames) { return PullFrames(m_master.handle, frames); }
    HSTREAM Channel(std::size_t i) const { return m_channels[i]; }
    bool CalledElsewhere() const { return m_foreign; }

private:
    HSTREAM AddChannel(std::uint32_t number)
    {
        const HSTREAM channel = BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE);
        BASS_ChannelSetAttribute(channel, BASS_ATTRIB_VOL, 0.3F + 0.1F * static_cast<float>(number));
        BASS_Mixer_StreamAddChannelEx(m_master.handle, channel, 0, number == 2 ? 4 * 1000 : 0, 0);
        m_streams.push_back(channel);
        m_channels.push_back(channel);
        return channel;
    }
    static void AddEffects(HSTREAM channel)
    {
        BASS_ChannelSetFX(channel, BASS_FX_DX8_PARAMEQ, 0);
        BASS_ChannelSetFX(channel, BASS_FX_DX8_COMPRESSOR, 1);
        BASS_ChannelSetFX(channel, BASS_FX_DX8_REVERB, 2);
    }

    TestMixer m_master;
    std::vector<HSTREAM> m_streams;
    std::vector<HSTREAM> m_channels;
    std::unique_ptr<TestStream> m_procedure;
    const std::thread::id m_caller;
    bool m_foreign = false;
};

class SharedPull : public ::testing::Test {
protected:
    ~SharedPull() override { Sound_SetThreads(0); }

    std::string Folder() const { return m_folder.Posix().string(); }

private:
    velmora::testing::TemporaryFolder m_folder;
};

TEST_F(SharedPull, GivesTheSameSamplesOnAnyNumberOfThreads)
{
    std::vector<std::int16_t> expected;
    for (const std::uint32_t threads : {1U, 2U, 3U, 8U, 2U}) {
        Sound_SetThreads(threads);
        Mix mix(Folder());
        std::vector<std::int16_t> heard;
        for (int block = 0; block < 60; ++block) {
            const std::vector<std::int16_t> samples = mix.Pull(block % 3 == 0 ? 4096 : 100 + 97 * block % 2000);
            heard.insert(heard.end(), samples.begin(), samples.end());
            // An edit between blocks, and one within a pull's life.
            if (block == 20) {
                BASS_Mixer_ChannelRemove(mix.Channel(1));
            }
        }
        EXPECT_FALSE(mix.CalledElsewhere()) << "procedures are for the thread that pulls";
        if (expected.empty()) {
            expected = heard;
        }
        EXPECT_EQ(heard, expected) << threads << " threads";
    }
}

TEST_F(SharedPull, PullsChannelsWithEffectsSideBySide)
{
    Sound_SetThreads(3);
    Mix mix(Folder());
    Meeting meeting;
    meeting.wanted = 3;
    for (std::size_t i = 0; i < 3; ++i) {
        BASS_ChannelSetDSP(mix.Channel(i), &Meeting::Dsp, reinterpret_cast<SOUND_USER>(&meeting), 0);
    }
    mix.Pull(4096);
    EXPECT_EQ(meeting.threads.size(), 3U);
}

TEST_F(SharedPull, LetsOperationsBeCalledFromAnyOfItsThreads)
{
    Sound_SetThreads(2);
    Mix mix(Folder());
    Meeting meeting;
    meeting.wanted = 2;
    // What a DSP asks the library for must not wait for the pull that it is part of.
    const auto ask = [](HDSP, std::uint32_t channel, void*, std::uint32_t, SOUND_USER) {
        float volume = 0;
        EXPECT_TRUE(BASS_ChannelGetAttribute(channel, BASS_ATTRIB_VOL, &volume));
        BASS_ChannelSetAttribute(channel, BASS_ATTRIB_PAN, 0.1F);
    };
    for (std::size_t i = 0; i < 2; ++i) {
        BASS_ChannelSetDSP(mix.Channel(i), &Meeting::Dsp, reinterpret_cast<SOUND_USER>(&meeting), 1);
        BASS_ChannelSetDSP(mix.Channel(i), ask, 0, 0);
    }
    mix.Pull(8192);
    EXPECT_EQ(meeting.threads.size(), 2U);
}

} // namespace
} // namespace velmora::soundlayer
