#include "audio/AudioInput_Class.h"

#include "core/BassHelpers.h"
#include "core/Paths.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/audio/SoundFixture.h"
#include "tests/support/FileSizeLimit.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <malloc.h>

namespace velmora::audio {
namespace {

class AudioInput : public SoundTest {
protected:
    AudioInput()
    {
        m_input.InputDevice = m_device.Number();
        m_input.FilePath = m_environment.Path("take.wav");
    }

    /// How many frames of the file have this sample on the first channel.
    static std::int64_t Count(const WavSound& file, std::int16_t sample)
    {
        std::int64_t count = 0;
        for (std::size_t i = 0; i < file.samples.size(); i += static_cast<std::size_t>(file.channels)) {
            count += file.samples[i] == sample;
        }
        return count;
    }

    ScriptedCapture m_device;
    AudioInput_Class m_input{*m_environment};
};

TEST_F(AudioInput, WritesAllThatIsDeliveredFromTheStartOfTheEncoderOn)
{
    m_input.SaveToFile = true;
    ASSERT_TRUE(m_input.StartCapture()) << m_input.LastErrorMessage();
    EXPECT_FALSE(m_input.StartCapture());
    EXPECT_EQ(m_input.LastErrorMessage(), "AudioInput_Class::StartCaptureAlready recording");
    ASSERT_TRUE(m_device.Deliver(2000, 111));
    m_input.StartEncoder();
    ASSERT_TRUE(m_device.Deliver(20'000, 222));
    // Blocks that come late just when the take ends.
    m_device.Skip(50);
    ASSERT_TRUE(m_device.Deliver(80, 333));
    m_input.EndCapture();
    const WavSound file = ReadWav(m_input.FilePath);
    EXPECT_EQ(file.channels, 2);
    EXPECT_EQ(Count(file, 111), 22'050) << "half a second of history";
    EXPECT_EQ(Count(file, 222), 20 * 44'100);
    EXPECT_EQ(Count(file, 333), 80 * 44'100 / 1000);
    EXPECT_EQ(m_input.GapMS(), 0);
    EXPECT_FALSE(m_input.FileFailed());
    m_input.EndCapture();
    EXPECT_TRUE(m_environment.ports.messages.shown.empty());
}

TEST_F(AudioInput, SaysWhyItDoesNotStartAndFreesWhatItTook)
{
    const auto fails = [this](const std::string& message) {
        EXPECT_FALSE(m_input.StartCapture());
        EXPECT_EQ(m_input.LastErrorMessage(), message);
        EXPECT_FALSE(m_input.Capturing());
    };
    m_input.InputDevice = 55;
    fails("RecordInit: The device number specified is invalid.");

    const ScriptedCapture busy({}, true);
    m_input.InputDevice = busy.Number();
    fails("RecordStart: \nBASS_ERROR_NOTAVAIL: The recording device is not available. \n"
          "Another application may already be recording with it, or it could be a half-duplex device\n"
          "and is currently being used for playback.");
    m_input.InputDevice = AudioInput_Class::kConfiguredDevice;
    m_environment->config.Global_InputDevice = static_cast<std::int16_t>(m_device.Number());
    m_input.SaveToFile = true;
    m_input.FilePath = m_environment.Path("no such folder\\take.wav");
    fails("AudioInput_Class::StartCapture\nError starting encoder [Error creating file]");
    ASSERT_TRUE(BASS_RecordInit(m_device.Number()));
    fails("RecordInit: The device has already been initialized. Call BASS_RecordFree first.");
    ASSERT_TRUE(BASS_RecordFree());

    // Nothing is left of all that.
    m_input.FilePath = m_environment.Path("take.wav");
    EXPECT_TRUE(m_input.StartCapture()) << m_input.LastErrorMessage();
    m_input.EndCapture();
    EXPECT_EQ(m_environment.ports.messages.Texts(),
              std::vector<std::string>{"AudioInput_Class::Endcapture\nEncoder paused"});
}

TEST_F(AudioInput, IsStereoToHearWhateverTheFileHas)
{
    m_input.SaveToFile = true;
    m_input.RecordAsMono = true;
    ASSERT_TRUE(m_input.StartCapture());
    m_input.StartEncoder();
    std::vector<std::int16_t> sides;
    for (int i = 0; i < 44'100; ++i) {
        sides.insert(sides.end(), {1000, 200});
    }
    ASSERT_TRUE(m_device.Deliver(sides));
    std::vector<std::int16_t> heard(882);
    while (heard[880] == 0) {
        BASS_ChannelGetData(m_input.OutStream(), heard.data(), 1764);
    }
    EXPECT_EQ(heard[880], 1000);
    EXPECT_EQ(heard[881], 200);
    m_input.EndCapture();
    const WavSound file = ReadWav(m_input.FilePath);
    EXPECT_EQ(file.channels, 1);
    EXPECT_EQ(Count(file, 600), 44'100) << "the mean";
}

TEST_F(AudioInput, TellsOfGapsAndOfADeadInputAndOfALostDevice)
{
    m_input.SaveToFile = true;
    ASSERT_TRUE(m_input.StartCapture());
    m_input.StartEncoder();
    ASSERT_TRUE(m_device.Deliver(1000, 32'767));
    m_device.Skip(250);
    ASSERT_TRUE(m_device.Deliver(1000, 7));
    while (m_input.GapMS() == 0) {
    }
    EXPECT_EQ(m_input.GapMS(), 250);
    EXPECT_TRUE(m_input.Input().clipped);
    EXPECT_FALSE(m_input.Input().silent);
    ASSERT_TRUE(m_device.Deliver(3500, 0));
    while (!m_input.Input().silent) {
    }
    EXPECT_EQ(m_input.Device(), AudioInput_Class::DeviceState::Delivering);
    m_device.Lose();
    while (m_input.Device() != AudioInput_Class::DeviceState::Lost) {
    }
    EXPECT_TRUE(m_input.Capturing()) << "until its owner ends it";
    m_input.EndCapture();
    EXPECT_EQ(m_input.Device(), AudioInput_Class::DeviceState::Lost);
    EXPECT_EQ(m_input.GapMS(), 250);
    const WavSound file = ReadWav(m_input.FilePath);
    EXPECT_EQ(file.Frames(), 441 + (1000 + 250 + 1000 + 3500) * 441U / 10);
}

TEST_F(AudioInput, GoesOnInSilenceWhereTheDeviceDeliversNothing)
{
    m_device.firstFrames = 0;
    m_input.SaveToFile = true;
    ASSERT_TRUE(m_input.StartCapture());
    EXPECT_GE(m_input.DeviceLatencyMS(), 2900);
    EXPECT_LE(m_input.DeviceLatencyMS(), 5000);
    EXPECT_EQ(m_input.Device(), AudioInput_Class::DeviceState::Silent);
    EXPECT_TRUE(m_input.Input().silent);
    m_input.StartEncoder();
    m_input.EndCapture();
    EXPECT_GE(m_input.GapMS(), 3000);
    EXPECT_GT(ReadWav(m_input.FilePath).Frames(), 0U);
}

TEST_F(AudioInput, KeepsWhatFitsWhenTheDiskIsFull)
{
    m_input.SaveToFile = true;
    ASSERT_TRUE(m_input.StartCapture());
    m_input.StartEncoder();
    {
        const testing::FileSizeLimit limit(1'000'000);
        ASSERT_TRUE(m_device.Deliver(10'000, 3));
        while (!m_input.FileFailed()) {
        }
    }
    ASSERT_TRUE(m_device.Deliver(20'000, 3)) << "nobody waits for the file";
    m_input.EndCapture();
    EXPECT_TRUE(m_input.FileFailed());
    std::ifstream file(core::PosixPath(m_input.FilePath), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data() + bytes.find("data") + 4, sizeof length);
    EXPECT_GT(length, 900'000U) << "what the header tells is there";
    EXPECT_LE(length, bytes.size() - bytes.find("data") - 8);
}

std::int64_t TakeMinutes()
{
    const char* wanted = std::getenv("VELMORA_TAKE_MINUTES");
    return wanted ? std::atoi(wanted) : 10;
}

TEST_F(AudioInput, RecordsForHoursInTheSameMemory)
{
    // Nothing is counted under a sanitizer.
    const auto inUse = [] {
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    m_input.SaveToFile = true;
    ASSERT_TRUE(m_input.StartCapture());
    m_input.StartEncoder();
    const std::vector<std::int16_t> minute(std::size_t{2} * 60 * 44'100, 1);
    ASSERT_TRUE(m_device.Deliver(minute));
    const std::size_t before = inUse();
    for (std::int64_t i = 1; i < TakeMinutes(); ++i) {
        ASSERT_TRUE(m_device.Deliver(minute));
    }
    EXPECT_LT(inUse(), before + 1'000'000);
    m_input.EndCapture();
    EXPECT_FALSE(m_input.FileFailed());
    EXPECT_EQ(m_input.GapMS(), 0);
    const auto size = std::filesystem::file_size(core::PosixPath(m_input.FilePath));
    EXPECT_EQ(core::GetAudioFileLengthMS(m_input.FilePath), 10 + TakeMinutes() * 60'000) << "also beyond 4 GiB";
    EXPECT_EQ(size, 80U + 4 * (441U + static_cast<std::uintmax_t>(TakeMinutes()) * 60 * 44'100));
}

} // namespace
} // namespace velmora::audio
