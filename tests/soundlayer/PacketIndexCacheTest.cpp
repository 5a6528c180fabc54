#include "soundlayer/internal/PacketIndexCache.h"

#include "tests/soundlayer/TestAudio.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using velmora::testing::TemporaryFolder;

class PacketIndexCacheTest : public ::testing::Test {
protected:
    std::shared_ptr<const FileBytes> File(const char* name, const std::string& bytes)
    {
        testing::WriteFile(m_folder.Posix() / name, bytes);
        return FileBytes::Open((m_folder.Posix() / name).native());
    }

    /// Counts how often an index is made; one of `packets` packets.
    PacketIndexCache::Maker Make(std::size_t packets)
    {
        return [this, packets] {
            ++m_made;
            auto index = std::make_shared<PacketIndex>();
            index->packets.resize(packets);
            return index;
        };
    }

    TemporaryFolder m_folder;
    std::atomic<int> m_made{0};
};

TEST_F(PacketIndexCacheTest, MakesOneIndexForAllWhoAskAtOnce)
{
    constexpr int kThreads = 8;
    PacketIndexCache cache(1 << 20);
    const auto file = File("a.mp3", "some bytes");
    std::latch start(kThreads);
    std::vector<std::shared_ptr<const PacketIndex>> got(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (auto& index : got) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            index = cache.Get(*file, Make(5));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(m_made, 1);
    EXPECT_EQ(std::count(got.begin(), got.end(), got[0]), kThreads);

    // It outlives its users, but not a change of the file.
    got.clear();
    EXPECT_NE(cache.Get(*file, Make(5)), nullptr);
    EXPECT_EQ(m_made, 1);
    EXPECT_NE(cache.Get(*File("a.mp3", "more bytes now"), Make(5)), nullptr);
    EXPECT_EQ(m_made, 2);
}

TEST_F(PacketIndexCacheTest, DropsTheOldestBeyondItsLimitUnlessInUse)
{
    const std::size_t packets = 1000;
    PacketIndexCache cache(5 * packets / 2 * sizeof(PacketIndex::Packet)); // two and a half
    const auto a = File("a", "a");
    const auto b = File("b", "b");
    const auto c = File("c", "c");
    const auto held = cache.Get(*a, Make(packets));
    cache.Get(*b, Make(packets));
    cache.Get(*b, Make(packets));
    EXPECT_EQ(m_made, 2);
    cache.Get(*c, Make(packets)); // a and, in a moment, b have to go
    cache.Get(*File("d", "d"), Make(packets));
    EXPECT_EQ(m_made, 4);
    EXPECT_EQ(cache.Get(*a, Make(packets)), held) << "still open somewhere";
    EXPECT_EQ(m_made, 4);
    cache.Get(*b, Make(packets));
    EXPECT_EQ(m_made, 5);
}

TEST_F(PacketIndexCacheTest, AsksAgainAfterAFailure)
{
    PacketIndexCache cache(1 << 20);
    const auto file = File("a", "a");
    EXPECT_EQ(cache.Get(*file, [] { return nullptr; }), nullptr);
    EXPECT_NE(cache.Get(*file, Make(1)), nullptr);
}

} // namespace
} // namespace velmora::soundlayer
