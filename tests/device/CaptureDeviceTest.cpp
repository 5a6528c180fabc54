#include "audio/AudioInput_Class.h"
#include "soundlayer/soundlayer.h"
#include "tests/device/AudioServer.h"
#include "tests/support/TestEnvironment.h"

#include <chrono>

#include <gtest/gtest.h>

namespace velmora::audio {
namespace {

using testing::Becomes;

class RecordDevices : public ::testing::Test {
protected:
    ~RecordDevices() override { BASS_Free(); }

    testing::AudioServer m_server;
};

TEST_F(RecordDevices, AreListedWithTheDefaultFirst)
{
    m_server.Start({"second"});
    m_server.Control({"set-default-source", "second.monitor"});
    BASS_DEVICEINFO info{};
    ASSERT_TRUE(BASS_RecordGetDeviceInfo(0, &info));
    EXPECT_STREQ(info.name, "Monitor of second");
    EXPECT_EQ(info.flags, 3U);
    ASSERT_TRUE(BASS_RecordGetDeviceInfo(1, &info));
    EXPECT_EQ(info.flags, 1U);
    EXPECT_FALSE(BASS_RecordGetDeviceInfo(2, &info));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);
    EXPECT_FALSE(BASS_RecordInit(2));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DEVICE);
}

TEST_F(RecordDevices, ThatAreNotThereOrHangFromTheStartKeepNobody)
{
    testing::TestEnvironment environment;
    AudioInput_Class input(*environment);
    input.InputDevice = 0;
    EXPECT_FALSE(input.StartCapture());
    EXPECT_EQ(input.LastErrorMessage(), "RecordInit: There is no available device driver.");

    m_server.Start();
    ASSERT_TRUE(Becomes([&] { return input.StartCapture(); })) << input.LastErrorMessage();
    input.EndCapture();
    m_server.Hang();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(input.StartCapture());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    m_server.GoOn();
    EXPECT_TRUE(Becomes([&] { return input.StartCapture(); })) << input.LastErrorMessage();
}

TEST_F(RecordDevices, ThatDieEndWithWhatTheyGave)
{
    m_server.Start();
    testing::TestEnvironment environment;
    AudioInput_Class input(*environment);
    input.InputDevice = 0;
    input.SaveToFile = true;
    input.FilePath = environment.Path("take.wav");
    ASSERT_TRUE(input.StartCapture()) << input.LastErrorMessage();
    input.StartEncoder();
    EXPECT_TRUE(Becomes([&] { return input.Input().silent; })) << "an input without a sound";
    EXPECT_EQ(input.Device(), AudioInput_Class::DeviceState::Delivering);
    m_server.Kill();
    EXPECT_TRUE(Becomes([&] { return input.Device() == AudioInput_Class::DeviceState::Lost; }));
    input.EndCapture();
    EXPECT_FALSE(input.FileFailed());
    EXPECT_GT(std::filesystem::file_size(environment.folder.Posix() / "take.wav"), 3U * 44'100 * 4);

    // And with a server again, the next take is like the first one.
    m_server.Start();
    EXPECT_TRUE(Becomes([&] { return input.StartCapture(); })) << input.LastErrorMessage();
    EXPECT_EQ(input.Device(), AudioInput_Class::DeviceState::Delivering);
}

TEST_F(RecordDevices, ThatHangGiveSilenceAndComeBack)
{
    m_server.Start();
    ASSERT_TRUE(BASS_RecordInit(0));
    const HRECORD record = BASS_RecordStart(44'100, 2, 0, nullptr, 0);
    ASSERT_NE(record, 0U);
    ASSERT_TRUE(Becomes([&] { return BASS_ChannelGetData(record, nullptr, 0) > 0; }));
    m_server.Hang();
    EXPECT_TRUE(Becomes([&] { return Sound_RecordState(record) == 2; }));
    EXPECT_TRUE(Becomes([&] { return Sound_RecordGapFrames(record) >= 3U * 44'100; }));
    m_server.GoOn();
    EXPECT_TRUE(Becomes([&] { return Sound_RecordState(record) == 1; }));
    EXPECT_TRUE(BASS_RecordFree());
}

} // namespace
} // namespace velmora::audio
