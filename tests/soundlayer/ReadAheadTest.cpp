#include "soundlayer/internal/ReadAhead.h"

#include "soundlayer/internal/MixingThread.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

/// Mono; each frame is its own number.
class Counting final : public FrameSource {
public:
    std::uint32_t Rate() const override { return 44'100; }
    std::uint32_t Channels() const override { return 1; }
    std::int64_t LengthFrames() const override { return 20'000; }
    void Seek(std::int64_t frame) override { m_at = frame; }
    std::size_t Read(std::span<std::int16_t> frames) override
    {
        std::size_t read = 0;
        for (; read < frames.size() && m_at < LengthFrames(); ++read) {
            frames[read] = static_cast<std::int16_t>(m_at++);
        }
        return read;
    }

private:
    std::int64_t m_at = 0;
};

struct Given {
    Block block;
    std::int16_t first = -1;
};

Given ReadLive(ReadBuffer& buffer, std::size_t frames)
{
    const MixingThreadMark mark;
    std::vector<std::int16_t> out(frames, -1);
    const Block block = buffer.Read(out.data(), frames);
    return {block, out[0]};
}

TEST(ReadAhead, WhatComesTooLateIsSilentCountedAndShiftsNothing)
{
    ReadAhead workers;
    const auto buffer = std::make_shared<ReadBuffer>(std::make_unique<Counting>(), workers);
    // Before the first sound nothing is late.
    EXPECT_EQ(ReadLive(*buffer, 100).block.frames, 0U);
    buffer->Fill(1);
    EXPECT_EQ(ReadLive(*buffer, 4000).first, 0);
    EXPECT_EQ(ReadLive(*buffer, 1000).block.frames, 96U);
    EXPECT_EQ(ReadLive(*buffer, 300).block.frames, 0U);
    EXPECT_EQ(workers.LateFrames(), 904U + 300U);
    buffer->Fill(1);
    EXPECT_EQ(ReadLive(*buffer, 10).first, 5300);

    // More is owed than is left of the file: then it is over.
    EXPECT_EQ(ReadLive(*buffer, 30'000).block.frames, 8192U - 5310U);
    buffer->Fill(20'000);
    EXPECT_TRUE(ReadLive(*buffer, 10).block.ended);

    buffer->Seek(50);
    buffer->Fill(1);
    EXPECT_EQ(ReadLive(*buffer, 10).first, 50);
}

} // namespace
} // namespace velmora::soundlayer
