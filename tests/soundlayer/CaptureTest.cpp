#include "soundlayer/internal/Capture.h"

#include "soundlayer/internal/OwnRecorder.h"
#include "soundlayer/soundlayer.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t kRate = 44'100;
constexpr std::size_t kBlock = 441;

/// A capture whose device the test drives: blocks of 10 ms, each sample of a block its number.
class Captured {
public:
    explicit Captured(AudioFormat format = {kRate, 2}, Capture::Times times = {})
        : m_format(format)
        , m_recorder(std::make_shared<OwnRecorder>("", format, false, [] {}))
        , heard(std::make_shared<ReadingLog>())
        , capture(std::make_unique<Capture>(OwnRecorder::MakeDevice(m_recorder), kRate, heard, kRate, times))
    {
        EXPECT_TRUE(capture->Start());
    }

    /// A block that is delivered `late`.
    void Deliver(std::int16_t number, milliseconds late = {})
    {
        const std::size_t frames = m_format.rate / 100;
        const std::vector<std::int16_t> block(frames * m_format.channels, number);
        time += milliseconds(10);
        ASSERT_TRUE(m_recorder->Deliver(block.data(), frames, time + late));
    }
    void Lose() { m_recorder->Lose(); }

    /// All that came, once nothing more is to come: one number for each 10 ms on both sides.
    std::vector<std::int16_t> Numbers()
    {
        capture->Stop();
        std::vector<std::int16_t> samples(2 * kBlock);
        std::vector<std::int16_t> numbers;
        bool lost = false;
        for (std::int64_t at = 0; capture->Read(at, samples.data(), kBlock, lost) == kBlock; at += kBlock) {
            numbers.push_back(samples[kBlock]);
            EXPECT_EQ(samples[kBlock], samples[kBlock + 1]) << "both sides";
        }
        EXPECT_FALSE(lost);
        return numbers;
    }

private:
    const AudioFormat m_format;
    const std::shared_ptr<OwnRecorder> m_recorder;

public:
    const std::shared_ptr<ReadingLog> heard;
    const std::unique_ptr<Capture> capture;
    SoundClock::time_point time = SoundClock::now();
};

std::vector<std::int16_t> Sequence(int first, int last)
{
    std::vector<std::int16_t> numbers;
    for (int number = first; number <= last; ++number) {
        numbers.push_back(static_cast<std::int16_t>(number));
    }
    return numbers;
}

TEST(Capture, FillsAGapWithSilenceOfItsLengthAndTakesALateBlockForLate)
{
    Captured captured;
    for (std::int16_t i = 1; i <= 50; ++i) {
        // A machine under load: ten blocks arrive at once.
        captured.Deliver(i, milliseconds(i > 20 && i <= 30 ? 10 * (30 - i) : 0));
    }
    captured.time += milliseconds(120);
    for (std::int16_t i = 51; i <= 100; ++i) {
        captured.Deliver(i, milliseconds(i % 7));
    }
    auto expected = Sequence(1, 50);
    expected.insert(expected.end(), 12, 0);
    const auto rest = Sequence(51, 100);
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(captured.Numbers(), expected);
    EXPECT_EQ(captured.capture->GapFrames(), 12U * kBlock);
}

TEST(Capture, CountsTheGapRightBeforeItsEnd)
{
    for (const bool dies : {true, false}) {
        Captured captured;
        for (std::int16_t i = 1; i <= 50; ++i) {
            captured.Deliver(i);
        }
        captured.time += milliseconds(60);
        for (std::int16_t i = 51; i <= 62; ++i) {
            captured.Deliver(i);
        }
        if (dies) {
            captured.Lose();
        }
        auto expected = Sequence(1, 50);
        expected.insert(expected.end(), 6, 0);
        const auto rest = Sequence(51, 62);
        expected.insert(expected.end(), rest.begin(), rest.end());
        EXPECT_EQ(captured.Numbers(), expected);
    }
    // One late block is no gap, not even as the last one.
    Captured late;
    for (std::int16_t i = 1; i <= 50; ++i) {
        late.Deliver(i, milliseconds(i == 50 ? 60 : 0));
    }
    EXPECT_EQ(late.Numbers(), Sequence(1, 50));
}

TEST(Capture, CountsWhatItsRingHadNoRoomFor)
{
    CaptureFeed feed({kRate, 2});
    const std::vector<std::int16_t> second(2 * std::size_t{kRate}, 1);
    std::size_t taken = 0;
    while (feed.Put({second.data(), kRate, {}, true})) {
        ++taken;
    }
    EXPECT_GE(taken, 4U);
    EXPECT_FALSE(feed.Put({second.data(), kRate, {}, false}));
    CaptureFeed::Arrival arrival;
    std::vector<std::int16_t> samples;
    while (feed.Take(arrival, samples)) {
        EXPECT_EQ(arrival.lost, 0U);
    }
    EXPECT_TRUE(feed.Put({second.data(), kRate, {}, false}));
    ASSERT_TRUE(feed.Take(arrival, samples));
    EXPECT_EQ(arrival.lost, kRate) << "and not what was offered again";
    EXPECT_EQ(samples, second);
}

TEST(Capture, MonoGivesBothSidesAndAnotherRateIsConverted)
{
    Captured mono({kRate, 1});
    Captured slow({32'000, 1});
    for (std::int16_t i = 0; i < 100; ++i) {
        mono.Deliver(1000);
        slow.Deliver(1000);
    }
    EXPECT_EQ(mono.Numbers(), std::vector<std::int16_t>(100, 1000));
    const auto converted = slow.Numbers();
    ASSERT_EQ(converted.size(), 100U);
    EXPECT_NEAR(converted[50], 1000, 1);
}

TEST(Capture, LinesUpWithWhatIsHeard)
{
    Captured captured({32'000, 1});
    const auto start = captured.time;
    // Frame n is heard n / 44100 s after 3 s; single readings are off by some ms to both sides.
    for (int i = 0; i < 100; ++i) {
        captured.heard->Add({1000 + 441 * i, start + milliseconds(3000 + 10 * i + (i % 3 - 1) * 4), 0});
    }
    for (std::int16_t i = 0; i < 100; ++i) {
        captured.Deliver(1, milliseconds(i % 3 == 2 ? 0 : 3));
    }
    const auto offset = captured.capture->OffsetOf(441 * 50, 1000 + 441 * 20);
    ASSERT_TRUE(offset);
    EXPECT_NEAR(std::chrono::duration<double>(*offset).count(), 3.2 - 0.5, 0.0001);

    // Ten seconds later frames went missing at the output; that moves what comes later, not what was.
    captured.heard->Add({1000 + 44'100, start + milliseconds(14'000), 1});
    const auto before = captured.capture->OffsetOf(441 * 50, 1000 + 441 * 20);
    const auto after = captured.capture->OffsetOf(441 * 50, 1000 + 44'100);
    EXPECT_EQ(before, offset);
    EXPECT_NEAR(std::chrono::duration<double>(*after).count(), 14 - 0.5, 0.0001);
}

TEST(Capture, KeepsPaceWithTheOutputWhereTheirClocksRunApart)
{
    for (const std::int64_t ppm : {200, -120}) {
        Captured captured;
        const auto start = captured.time;
        const std::int64_t first = captured.capture->FrameBefore(milliseconds(0));
        std::vector<std::int16_t> taken;
        std::vector<std::int16_t> room(2 * std::size_t{kRate});
        for (std::int16_t i = 1; i <= 6000; ++i) {
            captured.heard->Add({441 * i, start + milliseconds(3000 + 10 * i), 0});
            captured.time += std::chrono::nanoseconds(10 * ppm);
            captured.Deliver(i, milliseconds(i % 7));
            bool lost = false;
            const auto at = first + static_cast<std::int64_t>(taken.size() / 2);
            const std::size_t given = captured.capture->Read(at, room.data(), kRate, lost);
            ASSERT_FALSE(lost);
            taken.insert(taken.end(), room.begin(), room.begin() + static_cast<std::ptrdiff_t>(2 * given));
        }
        EXPECT_EQ(captured.capture->GapFrames(), 0U);
        // Of a late block: where it lies in the take, and where the output was when it sounded.
        std::size_t found = 0;
        while (found < taken.size() / 2 && taken[2 * found] < 5500) {
            ++found;
        }
        const double sounded = 5499 * 441 * (1 + static_cast<double>(ppm) / 1e6);
        EXPECT_NEAR(static_cast<double>(found), sounded, kRate / 1000.0) << "a millisecond, with " << ppm << " ppm";
    }
}

TEST(Capture, GivesSilenceForADeviceThatDeliversNothing)
{
    Capture::Times soon;
    soon.patience = milliseconds(30);
    Captured captured({kRate, 2}, soon);
    while (captured.capture->State() != CaptureState::Silent || captured.capture->Ready() < kBlock) {
        std::this_thread::yield();
    }
    // It wakes up: what it gives lies where it sounded.
    captured.time = SoundClock::now() + milliseconds(1000);
    captured.Deliver(5);
    captured.Lose();
    while (captured.capture->State() != CaptureState::Lost) {
        std::this_thread::yield();
    }
    const auto numbers = captured.Numbers();
    ASSERT_GE(numbers.size(), 100U);
    EXPECT_EQ(numbers[0], 0);
    bool lost = false;
    std::vector<std::int16_t> last(2 * std::size_t{kRate});
    const std::size_t rest = captured.capture->Read(44'100, last.data(), kRate, lost);
    ASSERT_GE(rest, kBlock);
    EXPECT_EQ(last[2 * rest - 1], 5);
    EXPECT_EQ(last[2 * (rest - kBlock)], 5);
    EXPECT_EQ(last[2 * (rest - kBlock) - 1], 0);
}

TEST(Capture, IsHeardAtOnceWhateverHadPiledUp)
{
    Captured captured;
    std::vector<std::int16_t> block(2 * kBlock);
    for (std::int16_t i = 1; i <= 90; ++i) {
        captured.Deliver(i);
    }
    while (captured.capture->Ready() < 90 * kBlock) {
        std::this_thread::yield();
    }
    ASSERT_EQ(captured.capture->Hear(block.data(), kBlock), kBlock);
    EXPECT_EQ(block[0], 90);
    // A hearer that falls behind by 100 ms catches up within a second.
    for (std::int16_t i = 91; i <= 300; ++i) {
        const std::size_t ready = captured.capture->Ready();
        captured.Deliver(i);
        while (captured.capture->Ready() == ready) {
            std::this_thread::yield();
        }
        if (i > 100) {
            captured.capture->Hear(block.data(), kBlock);
        }
    }
    EXPECT_GE(block[0], 298);
}

TEST(CaptureGuard, NoticesADeadAndAnOverloadedInput)
{
    CaptureGuard guard(kRate);
    const std::vector<std::int16_t> zeros(2 * std::size_t{kRate});
    std::vector<std::int16_t> loud(2 * std::size_t{kRate}, 20'000);
    guard.Look(loud);
    EXPECT_FALSE(guard.Clipped());
    guard.Look(zeros);
    guard.Look(zeros);
    EXPECT_FALSE(guard.Silent());
    guard.Look(zeros);
    EXPECT_TRUE(guard.Silent());
    // One sample at the limit is a peak, some in a row on one side are not.
    loud[10] = 32'767;
    guard.Look(loud);
    EXPECT_FALSE(guard.Clipped() || guard.Silent());
    loud[12] = loud[14] = 32'767;
    guard.Look(loud);
    guard.Look(zeros);
    EXPECT_TRUE(guard.Clipped());
    guard.Look(zeros);
    guard.Look(zeros);
    EXPECT_FALSE(guard.Clipped());
}

TEST(Recording, RefusesAsToldAndFreesWhatItTook)
{
    EXPECT_FALSE(BASS_RecordInit(0));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DRIVER) << "no hardware, no server";
    EXPECT_EQ(BASS_RecordStart(kRate, 2, 0, nullptr, 0), 0U);
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_INIT);
    EXPECT_FALSE(BASS_RecordFree());
    BASS_DEVICEINFO info{};
    EXPECT_FALSE(BASS_RecordGetDeviceInfo(0, &info));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);

    const SOUND_RECORDER good{"Good", 0, 2, 0, nullptr, 0};
    const SOUND_RECORDER busy{"Busy", 0, 2, 1, nullptr, 0};
    const std::int32_t device = Sound_RecordAddDevice(&good);
    const std::int32_t refusing = Sound_RecordAddDevice(&busy);
    EXPECT_FALSE(BASS_RecordInit(7));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);
    ASSERT_TRUE(BASS_RecordInit(device));
    EXPECT_FALSE(BASS_RecordInit(device));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_ALREADY);
    float volume = 0;
    EXPECT_EQ(BASS_RecordGetInput(0, &volume), UINT32_MAX);
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_NOTAVAIL);
    EXPECT_EQ(BASS_RecordStart(1, 2, 0, nullptr, 0), 0U);
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_FORMAT);

    const HRECORD record = BASS_RecordStart(kRate, 2, 0, nullptr, 0);
    ASSERT_NE(record, 0U);
    EXPECT_EQ(BASS_RecordStart(kRate, 2, 0, nullptr, 0), 0U);
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_ALREADY);
    ASSERT_TRUE(BASS_RecordInit(refusing));
    EXPECT_EQ(BASS_RecordStart(kRate, 2, 0, nullptr, 0), 0U);
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_NOTAVAIL);
    EXPECT_TRUE(BASS_RecordFree());

    ASSERT_TRUE(BASS_RecordSetDevice(static_cast<std::uint32_t>(device)));
    EXPECT_TRUE(BASS_RecordFree());
    EXPECT_EQ(BASS_ChannelGetData(record, nullptr, 0), UINT32_MAX);
    EXPECT_EQ(Sound_RecordState(record), 0);
    const std::int16_t frame[2]{};
    EXPECT_FALSE(Sound_RecordDeliver(device, frame, 1, 0)) << "not started any more";
    Sound_RecordRemoveDevice(device);
    Sound_RecordRemoveDevice(refusing);
}

} // namespace
} // namespace velmora::soundlayer
