#include "engine/internal/StreamCopier.h"

#include "engine/audioplayer.h"

#include <vector>

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

/// Frame n is n on the left and -n on the right.
std::uint32_t Count(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& next = *reinterpret_cast<std::int16_t*>(user);
    auto* out = static_cast<std::int16_t*>(buffer);
    for (std::uint32_t i = 0; i < length / 4; ++i, ++next) {
        out[2 * i] = next;
        out[2 * i + 1] = static_cast<std::int16_t>(-next);
    }
    return length;
}

std::vector<std::int16_t> Read(HSTREAM stream, std::size_t frames)
{
    std::vector<std::int16_t> samples(2 * frames);
    const auto bytes = BASS_ChannelGetData(stream, samples.data(), static_cast<std::uint32_t>(4 * frames));
    samples.resize(bytes / 2);
    return samples;
}

TEST(StreamCopier, EveryDestinationGetsEveryFrameInWhateverBlocks)
{
    std::int16_t next = 0;
    const HSTREAM source =
        BASS_StreamCreate(44'100, 2, BASS_STREAM_DECODE, &Count, reinterpret_cast<SOUND_USER>(&next));
    ASSERT_NE(StreamCopy_AddSourceStream(source, 44'100), 0);
    const HSTREAM a = StreamCopy_AddDestStream(source, 44'100, 0x200010);
    const HSTREAM b = StreamCopy_AddDestStream(source, 44'100, 0x200010);
    std::vector<std::int16_t> fromA;
    std::vector<std::int16_t> fromB;
    for (int round = 0; round < 40; ++round) {
        for (int i = 0; i < 7; ++i) {
            const auto block = Read(a, 63);
            fromA.insert(fromA.end(), block.begin(), block.end());
        }
        std::int32_t waiting = 0;
        StreamCopy_GetBufferSize(source, &waiting);
        EXPECT_EQ(waiting, 4 * 441);
        const auto block = Read(b, 441);
        fromB.insert(fromB.end(), block.begin(), block.end());
    }
    EXPECT_EQ(fromA, fromB);
    ASSERT_EQ(fromA.size(), 2 * 40 * 441U);
    for (std::size_t i = 0; i < fromA.size() / 2; ++i) {
        ASSERT_EQ(fromA[2 * i], static_cast<std::int16_t>(i));
    }

    // One that is not read costs no more than the ring, and finds the newest when it is read again.
    for (int i = 0; i < 60; ++i) {
        Read(a, 1000);
    }
    const auto late = Read(b, 10);
    const auto newest = static_cast<std::int16_t>(40 * 441 + 60'000 - static_cast<int>(StreamCopier::kRingFrames));
    EXPECT_EQ(late.front(), newest);

    StreamCopy_RemoveDestStream(a);
    StreamCopy_RemoveDestStream(a);
    StreamCopy_RemoveSourceStream(source);
    const auto rest = Read(b, StreamCopier::kRingFrames);
    EXPECT_LT(rest.size() / 2, StreamCopier::kRingFrames) << "what waits, and no more";
    EXPECT_TRUE(Read(b, 10).empty());
    StreamCopy_RemoveDestStream(b);
    BASS_StreamFree(source);
}

TEST(StreamCopier, GoesOnUntilTheEditThatRemovesItIsInForce)
{
    std::int16_t next = 0;
    const HSTREAM source =
        BASS_StreamCreate(44'100, 2, BASS_STREAM_DECODE, &Count, reinterpret_cast<SOUND_USER>(&next));
    const HSTREAM mixer = BASS_Mixer_StreamCreate(44'100, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    const auto start = [&] {
        EXPECT_NE(StreamCopy_AddSourceStream(source, 44'100), 0);
        const HSTREAM copy = StreamCopy_AddDestStream(source, 44'100, 0x200010);
        EXPECT_NE(BASS_Mixer_StreamAddChannel(mixer, copy, 0), 0);
        return copy;
    };
    HSTREAM copy = start();
    EXPECT_EQ(Read(mixer, 100).back(), -99);

    Sound_BeginEdit();
    StreamCopy_RemoveDestStream(copy);
    StreamCopy_RemoveSourceStream(source);
    EXPECT_EQ(Read(mixer, 100).back(), -199) << "the old graph sounds while the new one is being made";
    copy = start();
    EXPECT_EQ(Read(mixer, 100).back(), -299);
    Sound_EndEdit();
    EXPECT_EQ(Read(mixer, 100).back(), -399) << "no frame is lost or heard twice";

    StreamCopy_RemoveDestStream(copy);
    StreamCopy_RemoveSourceStream(source);
    EXPECT_EQ(Read(mixer, 100), std::vector<std::int16_t>(200, 0));
    BASS_StreamFree(mixer);
    BASS_StreamFree(source);
}

TEST(StreamCopier, MonoIsHeardOnBothSides)
{
    const auto ramp = [](HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user) {
        auto& next = *reinterpret_cast<std::int16_t*>(user);
        for (std::uint32_t i = 0; i < length / 2; ++i) {
            static_cast<std::int16_t*>(buffer)[i] = next++;
        }
        return length;
    };
    std::int16_t next = 1;
    const HSTREAM source = BASS_StreamCreate(44'100, 1, BASS_STREAM_DECODE, ramp, reinterpret_cast<SOUND_USER>(&next));
    ASSERT_NE(StreamCopy_AddSourceStream(source, 44'100), 0);
    const HSTREAM copy = StreamCopy_AddDestStream(source, 44'100, 0x200010);
    EXPECT_EQ(Read(copy, 3), (std::vector<std::int16_t>{1, 1, 2, 2, 3, 3}));
    StreamCopy_RemoveDestStream(copy);
    StreamCopy_RemoveSourceStream(source);
    BASS_StreamFree(source);
}

TEST(StreamCopier, RefusesWhatIsNoStream)
{
    EXPECT_EQ(StreamCopy_AddSourceStream(0xBADBAD, 44'100), 0);
    EXPECT_EQ(BASS_ErrorGetCode(), SOUND_ERROR_HANDLE);
    EXPECT_EQ(StreamCopy_AddDestStream(0xBADBAD, 44'100, 0x200010), 0U);
}

} // namespace
} // namespace velmora::engine
