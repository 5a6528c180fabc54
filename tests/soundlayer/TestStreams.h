#pragma once

#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace velmora::soundlayer {

/// A decoding stream whose samples a function of frame and side gives, for as long as it is not freed.
class TestStream {
public:
    using Samples = std::function<std::int16_t(std::int64_t frame, std::uint32_t side)>;

    TestStream(Samples samples, std::uint32_t rate = 44100, std::uint32_t channels = 2)
        : m_samples(std::move(samples))
        , m_channels(channels)
    {
        handle = BASS_StreamCreate(rate, channels, BASS_STREAM_DECODE, &TestStream::Fill,
                                   reinterpret_cast<SOUND_USER>(this));
    }
    ~TestStream() { BASS_StreamFree(handle); }
    TestStream(const TestStream&) = delete;
    TestStream& operator=(const TestStream&) = delete;

    HSTREAM handle = 0;
    /// The longest block that is given at once.
    std::uint32_t maxFrames = UINT32_MAX;

private:
    static std::uint32_t Fill(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
    {
        auto& self = *reinterpret_cast<TestStream*>(user);
        auto* out = static_cast<std::int16_t*>(buffer);
        const std::uint32_t frames = std::min(self.maxFrames, length / 2 / self.m_channels);
        for (std::uint32_t i = 0; i < frames; ++i, ++self.m_frame) {
            for (std::uint32_t side = 0; side < self.m_channels; ++side) {
                *out++ = self.m_samples(self.m_frame, side);
            }
        }
        return frames * 2 * self.m_channels;
    }

    Samples m_samples;
    std::uint32_t m_channels;
    std::int64_t m_frame = 0;
};

/// A decoding stereo mixer at 44.1 kHz, freed at its end.
class TestMixer {
public:
    TestMixer()
        : handle(BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP))
    {
    }
    ~TestMixer() { BASS_StreamFree(handle); }
    TestMixer(const TestMixer&) = delete;
    TestMixer& operator=(const TestMixer&) = delete;

    const HSTREAM handle;
};

inline std::vector<std::int16_t> PullFrames(HSTREAM stream, std::size_t frames)
{
    std::vector<std::int16_t> samples(2 * frames);
    const std::uint32_t bytes = BASS_ChannelGetData(stream, samples.data(), static_cast<std::uint32_t>(4 * frames));
    samples.resize(bytes == UINT32_MAX ? 0 : bytes / 2);
    return samples;
}

} // namespace velmora::soundlayer
