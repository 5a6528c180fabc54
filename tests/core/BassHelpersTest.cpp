#include "core/BassHelpers.h"

#include "core/Paths.h"
#include "core/PosixFiles.h"
#include "soundlayer/soundlayer.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::core {
namespace {

class BassHelpers : public ::testing::Test {
protected:
    BassHelpers() { BASS_Init(0, 44100, 0, nullptr, nullptr); }
    ~BassHelpers() override { BASS_Free(); }

    testing::TemporaryFolder folder;
    PosixFiles files;
};

/// A WMA file of 20480 frames, ten of the codec's blocks.
void WriteWma(const std::string& path)
{
    const HWMENCODE encoder =
        BASS_WMA_EncodeOpenFile(44100, 2, BASS_WMA_ENCODE_STANDARD, 128000, PosixPath(path).c_str());
    ASSERT_NE(encoder, 0u);
    const std::vector<std::int16_t> samples(2 * 20480);
    BASS_WMA_EncodeWrite(encoder, samples.data(), static_cast<std::uint32_t>(samples.size() * sizeof(samples[0])));
    ASSERT_TRUE(BASS_WMA_EncodeClose(encoder));
}

/// A mono file of 16-bit samples at 8000 Hz.
std::string WavText(std::uint32_t frames)
{
    const auto number = [](std::uint32_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) {
            text += static_cast<char>(value >> (8 * i));
        }
        return text;
    };
    const std::string samples(2 * frames, '\0');
    return "RIFF" + number(36 + 2 * frames, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) + number(1, 2) +
           number(8000, 4) + number(16000, 4) + number(2, 2) + number(16, 2) + "data" + number(2 * frames, 4) + samples;
}

TEST_F(BassHelpers, OpenBothKindsOfFiles)
{
    const std::string wav = folder.Path("odd\xEF\x80\xBAname.wav");
    const std::string wma = folder.Path("take.wma");
    ASSERT_TRUE(files.WriteTextFile(wav, WavText(8004)));
    WriteWma(wma);
    bool failed = true;
    EXPECT_EQ(GetAudioFileLengthMS(wav, &failed), 1000) << "1000.5 ms, halves to the even number";
    EXPECT_FALSE(failed);
    EXPECT_NEAR(GetAudioFileLengthMS(wma, &failed), 464, 1);
    EXPECT_FALSE(failed);

    ASSERT_TRUE(files.WriteTextFile(wav, "no sound"));
    for (const std::string& bad : {wav, folder.Path("absent.wav"), folder.Path(), std::string("C:\\a.wav")}) {
        EXPECT_EQ(GetAudioFileLengthMS(bad, &failed), 0) << bad;
        EXPECT_TRUE(failed) << bad;
        EXPECT_EQ(BassOpenAudioFile(bad, BASS_STREAM_DECODE), 0u) << bad;
    }
}

TEST_F(BassHelpers, LeaveMarkedAttributesAlone)
{
    const HSTREAM mixer = BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE);
    const auto attribute = [mixer](std::uint32_t which) {
        float value = -1;
        BASS_ChannelGetAttribute(mixer, which, &value);
        return value;
    };
    BassSetAttributes(mixer, 22050, 50, -100);
    EXPECT_EQ(attribute(BASS_ATTRIB_FREQ), 22050);
    EXPECT_EQ(attribute(BASS_ATTRIB_VOL), 0.5f);
    EXPECT_EQ(attribute(BASS_ATTRIB_PAN), -1);
    BassSetAttributes(mixer, -1, 0, -101);
    BassSetAttributes(mixer, -1, -1, 25);
    EXPECT_EQ(attribute(BASS_ATTRIB_FREQ), 22050);
    EXPECT_EQ(attribute(BASS_ATTRIB_VOL), 0);
    EXPECT_EQ(attribute(BASS_ATTRIB_PAN), 0.25f);
}

} // namespace
} // namespace velmora::core
