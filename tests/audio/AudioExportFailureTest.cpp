#include "core/MsgIds.h"
#include "core/Paths.h"
#include "core/Units.h"
#include "project/ChannelDataClass.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"
#include "tests/support/FileSizeLimit.h"

#include <stdexcept>

namespace velmora::audio {
namespace {

/// Two seconds to export over an earlier mix, with a device buffer and a monitored channel that must come back.
class ExportFailure : public ExportTest {
protected:
    ExportFailure()
    {
        m_source = m_environment.Path("sounds\\constant.wav");
        WriteWav(m_source, {44100, 1, std::vector<std::int16_t>(88200, 8000)});
        AddClip(*m_channel, m_source, 0, 0, 2000);
        m_environment.disk.WriteTextFile(MixPath(), "earlier mix");
        BASS_SetConfig(BASS_CONFIG_BUFFER, 123);
        BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, 17);
        Send(core::Msg_Channel_SetLive, m_channel->ClassID(), core::kTrue);
    }

    void ExpectAllPutBack()
    {
        EXPECT_EQ(BASS_GetConfig(BASS_CONFIG_BUFFER), 123u);
        EXPECT_EQ(BASS_GetConfig(BASS_CONFIG_UPDATEPERIOD), 17u);
        EXPECT_TRUE(m_channel->LiveStatus);
        EXPECT_FALSE(m_export->Exporting());
        std::vector<std::string>& calls = m_environment.ports.views.calls;
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(calls.back().substr(0, 16), "EnableMainWindow");
    }

    void ExpectEarlierMixStands()
    {
        EXPECT_EQ(m_environment.disk.ReadTextFile(MixPath(), 100), "earlier mix");
        EXPECT_EQ(FilesBesideTheMix(), (std::vector<std::string>{"mix.wav", "paths.cfg"}));
        ExpectAllPutBack();
    }

    std::string m_source;
};

TEST_F(ExportFailure, FullDiskLeavesTheEarlierFile)
{
    {
        const testing::FileSizeLimit limit(100'000);
        EXPECT_EQ(Export(), AudioExport::Outcome::Failed);
    }
    EXPECT_NE(m_environment.ports.messages.LastText().find(MixPath()), std::string::npos);
    ExpectEarlierMixStands();

    ASSERT_EQ(Export(), AudioExport::Outcome::Done) << "with room again";
    EXPECT_EQ(Mix().Frames(), 88200u);
    ExpectAllPutBack();
}

TEST_F(ExportFailure, NameThatCannotBeTakenLeavesTheEarlierFile)
{
    m_environment.files.FailEach(testing::FileOperation::Replace);
    EXPECT_EQ(Export(), AudioExport::Outcome::Failed);
    EXPECT_NE(m_environment.ports.messages.LastText().find(MixPath()), std::string::npos);
    ExpectEarlierMixStands();
}

TEST_F(ExportFailure, EncoderThatDoesNotStartSaysWhy)
{
    m_export->FilePath = m_environment.Path("no folder\\mix.wav");
    EXPECT_EQ(Export(), AudioExport::Outcome::Failed);
    m_export->FilePath = MixPath();
    m_export->Channels = 7;
    EXPECT_EQ(Export(), AudioExport::Outcome::Failed);
    const std::string failure = "frmExportAudio::StartExport\nError starting encoder";
    EXPECT_EQ(m_environment.ports.messages.Texts(),
              (std::vector<std::string>{failure + " [Error creating file]", failure + " [Invalid format]"}));
    ExpectEarlierMixStands();
}

TEST_F(ExportFailure, ParametersThatLackAreRefused)
{
    m_export->SampleRate = 0;
    EXPECT_EQ(Export(), AudioExport::Outcome::Failed);
    m_export->encoder_Format(AudioExport::kWma);
    EXPECT_EQ(m_export->encoder_Format(), AudioExport::kWav);
    EXPECT_EQ(
        m_environment.ports.messages.Texts(),
        (std::vector<std::string>{"frmExportAudio::StartExport\nInvalid parameters", "encoder_Format already set"}));
    EXPECT_EQ(m_environment.ports.messages.shown.front().icon, core::Icon::Exclamation);
}

TEST_F(ExportFailure, FailingReceiverLeavesNothingBehind)
{
    bool failing = true;
    Listen(25, [&](std::int32_t msgID) {
        if (failing && msgID == core::Msg_Master_SetMute) {
            throw std::runtime_error("a view failed");
        }
    });
    EXPECT_THROW(Export(), std::runtime_error);
    EXPECT_EQ(m_export->Result(), AudioExport::Outcome::Failed);
    ExpectEarlierMixStands();
    failing = false;
    EXPECT_EQ(Export(), AudioExport::Outcome::Done);
}

TEST_F(ExportFailure, SourceOfTheProjectIsNotOverwritten)
{
    m_export->FilePath = m_source;
    EXPECT_EQ(Export(), AudioExport::Outcome::Failed);
    EXPECT_NE(m_environment.ports.messages.LastText().find(m_source), std::string::npos);
    EXPECT_EQ(ReadWav(m_source).Frames(), 88200u);
}

TEST_F(ExportFailure, UnreadableFilesAreSilentAndNamedOnce)
{
    const std::string broken = m_environment.Path("sounds\\broken.wav");
    m_environment.disk.WriteTextFile(broken, "not a sound");
    AddClip(*m_channel, broken, 0, 0, 500);
    AddClip(*m_channel, broken, 600, 0, 500);
    AddClip(*m_channel, "C:\\elsewhere\\a.wav", 0, 0, 500);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    EXPECT_EQ(m_export->UnreadableFiles(), (std::vector<std::string>{"C:\\elsewhere\\a.wav", broken}));
    EXPECT_EQ(Mix().samples[1000], 8000);
}

TEST_F(ExportFailure, CommandInsideADeliveryWaitsForItsEnd)
{
    bool deliveryEnded = false;
    m_export->encoder_Format(AudioExport::kWav);
    Listen(25, [&](std::int32_t msgID) {
        if (msgID == core::Msg_Refresh) {
            m_export->StartExport();
            EXPECT_EQ(m_export->Result(), AudioExport::Outcome::NotRun);
        }
    });
    Listen(1, [&](std::int32_t msgID) { deliveryEnded = deliveryEnded || msgID == core::Msg_Refresh; });
    Send(core::Msg_Refresh, 0, 0);
    EXPECT_TRUE(deliveryEnded);
    EXPECT_EQ(m_export->Result(), AudioExport::Outcome::Done);
}

} // namespace
} // namespace velmora::audio
