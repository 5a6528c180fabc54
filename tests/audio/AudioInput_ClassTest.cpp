#include "audio/AudioInput_Class.h"

#include "soundlayer/soundlayer.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/audio/SoundFixture.h"

#include <algorithm>
#include <string>
#include <vector>

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
    m_input.EndCapture();
    const WavSound file = ReadWav(m_input.FilePath);
    EXPECT_EQ(file.channels, 2);
    EXPECT_EQ(Count(file, 111), 22'050) << "half a second of history";
    EXPECT_EQ(Count(file, 222), 20 * 44'100);
    EXPECT_EQ(m_input.GapMS(), 0);
    EXPECT_FALSE(m_input.FileFailed());
    m_input.EndCapture();
    EXPECT_TRUE(m_environment.ports.messages.shown.empty());
}

} // namespace
} // namespace velmora::audio
