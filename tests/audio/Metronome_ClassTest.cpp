#include "audio/Metronome_Class.h"

#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"

namespace velmora::audio {
namespace {

class Metronome : public SoundTest {
protected:
    float ClickVolume() const
    {
        float volume = -1;
        BASS_ChannelGetAttribute(m_project->Metronome->Metronome_StreamHandle(), BASS_ATTRIB_VOL, &volume);
        return volume;
    }
};

TEST_F(Metronome, SettingsComeBackWithTheSameBytes)
{
    const std::string click = m_environment.Path("click.wav");
    WriteWav(click, {44100, 1, std::vector<std::int16_t>(100, 5)});
    Send(core::Msg_Metronome_Enable, 0, -1);
    Send(core::Msg_Metronome_SetOnPlayback, 0, 1);
    Send(core::Msg_Metronome_SetOnRecording, 0, 0);
    Send(core::Msg_Metronome_SetBPM, 0, 60000.0 / 133);
    Send(core::Msg_Metronome_SetVolume, 0, 25);
    EXPECT_EQ(Send(core::Msg_Metronome_SetFile, 0, 0, click).Text, click);
    EXPECT_FLOAT_EQ(ClickVolume(), 0.25F);
    Send(core::Msg_Metronome_SetVolume, 0, 40);
    EXPECT_FLOAT_EQ(ClickVolume(), 0.4F);
    const std::string saved = m_project->Metronome->GetXMLData();

    Metronome_Class loaded(*m_environment, *m_project->MsgSender, *m_project->Recorder);
    EXPECT_TRUE(loaded.Metronome_RecorderEnabled());
    ASSERT_TRUE(loaded.LoadXMLData(saved));
    EXPECT_EQ(loaded.GetXMLData(), saved);
    EXPECT_FALSE(loaded.Metronome_RecorderEnabled());
    EXPECT_NE(loaded.Metronome_StreamHandle(), 0u);

    // What is absent stays, but for the file; what cannot be a period is none.
    ASSERT_TRUE(loaded.LoadXMLData("<Metronome_Class><wMetronome_TimeMs>float: nan</wMetronome_TimeMs>"
                                   "</Metronome_Class>"));
    EXPECT_EQ(loaded.Metronome_TimeMs(), 60000.0 / 133);
    EXPECT_EQ(loaded.Metronome_FilePath(), "");
    EXPECT_EQ(loaded.Metronome_StreamHandle(), 0u);
    EXPECT_FALSE(loaded.LoadXMLData("<Recorder_Class></Recorder_Class>"));

    // One of the program's own sounds.
    m_environment.files.MakeFolderIfMissing(m_environment->ports.shellFolders.AppExe());
    WriteWav(m_environment->ports.shellFolders.AppExe() + "\\tick.wav", {44100, 1, std::vector<std::int16_t>(100, 5)});
    EXPECT_EQ(Send(core::Msg_Metronome_SetFile, 0, 0, "tick.wav").Text, "tick.wav");
    EXPECT_NE(m_project->Metronome->Metronome_StreamHandle(), 0u);

    // A file that does not open is kept, and told to the sender.
    const std::uint32_t stream = m_project->Metronome->Metronome_StreamHandle();
    const std::string gone = m_environment.Path("gone.wav");
    EXPECT_EQ(Send(core::Msg_Metronome_SetFile, 0, 0, gone).Text, "");
    EXPECT_EQ(m_project->Metronome->Metronome_FilePath(), gone);
    EXPECT_FALSE(BASS_StreamFree(stream)) << "freed already";
}

} // namespace
} // namespace velmora::audio
