#include "soundlayer/internal/ClipReader.h"

#include "tests/soundlayer/TestAudio.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using namespace velmora::soundlayer::testing;
using velmora::testing::TemporaryFolder;

/// A file in memory that counts what is read of it.
class FakeFile final : public AudioFile {
public:
    FakeFile(Samples samples, std::uint32_t rate, std::uint32_t channels)
        : m_samples(std::move(samples))
        , m_rate(rate)
        , m_channels(channels)
    {
    }

    std::uint32_t Rate() const override { return m_rate; }
    std::uint32_t Channels() const override { return m_channels; }
    std::int64_t LengthFrames() const override { return static_cast<std::int64_t>(m_samples.size() / m_channels); }
    bool IsWma() const override { return false; }
    void Seek(std::int64_t frame) override { m_frame = std::clamp<std::int64_t>(frame, 0, LengthFrames()); }
    std::size_t Read(std::span<std::int16_t> interleaved) override
    {
        const Samples piece = Cut(m_samples, m_channels, m_frame, interleaved.size() / m_channels);
        std::ranges::copy(piece, interleaved.begin());
        m_frame += static_cast<std::int64_t>(piece.size() / m_channels);
        return piece.size() / m_channels;
    }

private:
    Samples m_samples;
    std::uint32_t m_rate;
    std::uint32_t m_channels;
    std::int64_t m_frame = 0;
};

ClipReader Reader(const Samples& samples, std::uint32_t fileRate, std::uint32_t channels, std::uint32_t rate)
{
    return {std::make_unique<FakeFile>(samples, fileRate, channels), rate};
}

/// `frames` stereo frames from where the reader stands.
Samples Take(ClipReader& reader, std::size_t frames)
{
    Samples piece(2 * frames);
    piece.resize(2 * reader.Read(piece));
    return piece;
}

Samples TakeAll(ClipReader& reader)
{
    reader.Seek(0);
    return Take(reader, static_cast<std::size_t>(reader.LengthFrames()) + 10);
}

int LargestDifference(const Samples& a, const Samples& b)
{
    int largest = a.size() == b.size() ? 0 : 1 << 20;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        largest = std::max(largest, std::abs(a[i] - b[i]));
    }
    return largest;
}

/// A sine of `frequency` Hz, `amplitude` steps high.
Samples Sine(std::uint32_t rate, std::uint32_t channels, std::size_t frames, double frequency, double amplitude)
{
    Samples samples;
    for (std::size_t n = 0; n < frames; ++n) {
        const double phase = 2 * std::numbers::pi * frequency * static_cast<double>(n) / rate;
        samples.insert(samples.end(), channels, static_cast<std::int16_t>(std::lrint(amplitude * std::sin(phase))));
    }
    return samples;
}

TEST(ClipReader, PassesEqualRatesThrough)
{
    const Samples stereo = Music(44100, 2, 20000);
    ClipReader same = Reader(stereo, 44100, 2, 44100);
    EXPECT_EQ(TakeAll(same), stereo);
    same.Seek(12345);
    EXPECT_EQ(Take(same, 3000), Cut(stereo, 2, 12345, 3000));

    const Samples mono = Music(44100, 1, 9000);
    ClipReader doubled = Reader(mono, 44100, 1, 44100);
    const Samples both = TakeAll(doubled);
    ASSERT_EQ(both.size(), 2 * mono.size());
    for (std::size_t n = 0; n < mono.size(); ++n) {
        ASSERT_TRUE(both[2 * n] == mono[n] && both[2 * n + 1] == mono[n]) << n;
    }
}

/// Rates of a file and of a mixer.
struct Rates {
    std::uint32_t from;
    std::uint32_t to;
};

std::ostream& operator<<(std::ostream& out, const Rates& rates)
{
    return out << rates.from << " to " << rates.to;
}

class ResampledClip : public ::testing::TestWithParam<Rates> {};

TEST_P(ResampledClip, IsLongAsItShouldBeAndReadsTheSameFromAnyPlace)
{
    const auto [from, to] = GetParam();
    const std::size_t frames = from * 5 / 2 + 7;
    for (const std::uint32_t channels : {1U, 2U}) {
        ClipReader reader = Reader(Music(from, channels, frames), from, channels, to);
        const auto expected = (static_cast<std::int64_t>(frames) * to + from - 1) / from;
        ASSERT_EQ(reader.LengthFrames(), expected);
        const Samples all = TakeAll(reader);
        ASSERT_EQ(static_cast<std::int64_t>(all.size()), 2 * expected);

        std::mt19937 random(9);
        for (int i = 0; i < 50; ++i) {
            const auto frame = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(expected));
            const std::size_t count = random() % 2500;
            reader.Seek(frame);
            ASSERT_LE(LargestDifference(Take(reader, count), Cut(all, 2, frame, count)), 1) << "from " << frame;
        }
        // Two reads are one, and a seek to where the reader stands changes nothing.
        reader.Seek(1000);
        const Samples whole = Take(reader, 3000);
        reader.Seek(1000);
        Samples parts = Take(reader, 1);
        for (const std::size_t count : {700U, 1299U, 1000U}) {
            reader.Seek(1000 + static_cast<std::int64_t>(parts.size() / 2));
            const Samples piece = Take(reader, count);
            parts.insert(parts.end(), piece.begin(), piece.end());
        }
        ASSERT_EQ(parts, whole);
    }
}

TEST_P(ResampledClip, KeepsATonePureAndInItsPlace)
{
    const auto [from, to] = GetParam();
    const double frequency = 0.11 * std::min(from, to);
    ClipReader reader = Reader(Sine(from, 2, 2 * from, frequency, 26000), from, 2, to);
    const Samples ideal = Sine(to, 2, 2 * to, frequency, 26000);
    // Not at the ends, where the tone begins and stops at once.
    reader.Seek(to / 4);
    EXPECT_GT(SignalToNoise(Cut(ideal, 2, to / 4, to), Take(reader, to)), 90);
}

INSTANTIATE_TEST_SUITE_P(Rates, ResampledClip,
                         ::testing::Values(Rates{48000, 44100}, Rates{44100, 48000}, Rates{22050, 48000},
                                           Rates{96000, 44100}, Rates{192000, 48000}, Rates{32000, 44100},
                                           Rates{8000, 44100}, Rates{44100, 8000},
                                           // Nothing in common: they meet once a second.
                                           Rates{44100, 48001}, Rates{47999, 44100}));

TEST(ClipReader, LetsNoToneThroughThatTheLowerRateCannotHold)
{
    ClipReader reader = Reader(Sine(48000, 2, 48000, 23000, 26000), 48000, 2, 44100);
    reader.Seek(10000);
    const Samples rest = Take(reader, 20000);
    EXPECT_LE(LargestDifference(rest, Samples(rest.size())), 1);
}

TEST(ClipReader, LimitsWhatTheFilterLiftsBeyondFullScale)
{
    Samples square;
    for (int n = 0; n < 48000; ++n) {
        square.push_back(n / 24 % 2 == 0 ? 32767 : -32768);
    }
    ClipReader reader = Reader(square, 48000, 1, 44100);
    const Samples all = TakeAll(reader);
    // A sample that wrapped around would have the wrong sign in the middle of a half period.
    for (std::size_t n = 2000; n < 40000; ++n) {
        const double half = std::fmod(static_cast<double>(n) * 48000 / 44100, 24.0);
        if (half > 4 && half < 20) {
            const bool high = std::fmod(static_cast<double>(n) * 48000 / 44100, 48.0) < 24;
            ASSERT_EQ(all[2 * n] > 0, high) << n;
        }
    }
}

TEST(ClipReader, HandlesEmptyAndTinyFiles)
{
    for (const std::size_t frames : {0U, 1U, 2U}) {
        ClipReader reader = Reader(Samples(2 * frames, 1000), 48000, 2, 44100);
        EXPECT_EQ(reader.LengthFrames(), static_cast<std::int64_t>(frames)); // ceil of 0, 0.92 and 1.84
        EXPECT_EQ(TakeAll(reader).size(), 2 * frames);
        reader.Seek(100);
        EXPECT_EQ(Take(reader, 10), Samples{});
    }
}

TEST(ClipReader, ReadsCodedFilesAtAnotherRate)
{
    const TemporaryFolder folder;
    WriteFile(folder.Posix() / "a.wav", Wav(Music(44100, 2, 100'000), 44100, 2));
    Encode(folder.Posix() / "a.wav", "-q:a 3", folder.Posix() / "a.mp3");
    ClipReader reader(OpenOrThrow(folder.Posix() / "a.mp3"), 48000);
    const Samples all = TakeAll(reader);
    ASSERT_EQ(all.size(), 2 * 108844); // ceil of 108843.5
    for (const std::int64_t frame : {90'000, 33, 50'000, 108'000}) {
        reader.Seek(frame);
        EXPECT_LE(LargestDifference(Take(reader, 2000), Cut(all, 2, frame, 2000)), 1);
    }
}

} // namespace
} // namespace velmora::soundlayer
