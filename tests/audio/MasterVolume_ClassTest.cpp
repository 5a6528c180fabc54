#include "audio/MasterVolume_Class.h"

#include "core/MsgIds.h"
#include "core/Units.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"

namespace velmora::audio {
namespace {

class MasterVolume : public SoundTest {
protected:
    /// The master's volume attribute after a message, in percent.
    float After(std::int32_t msgID, double value)
    {
        Send(msgID, 0, value);
        float volume = -1;
        BASS_ChannelGetAttribute(m_project->MasterVolume->BassMixStreamHandle(), BASS_ATTRIB_VOL, &volume);
        return volume * 100;
    }
};

TEST_F(MasterVolume, VolumeSetWhileMutedIsHeardAfterwards)
{
    EXPECT_FLOAT_EQ(After(core::Msg_Master_SetVolume, 70), 70);
    EXPECT_FLOAT_EQ(After(core::Msg_Master_SetMute, core::kTrue), 0);
    EXPECT_FLOAT_EQ(After(core::Msg_Master_SetVolume, 30), 0);
    EXPECT_EQ(m_project->MasterVolume->GetVolume(), 30);
    // Only the stored true mutes.
    EXPECT_FLOAT_EQ(After(core::Msg_Master_SetMute, 1), 30);
    // Volume 0 is no mute.
    EXPECT_FLOAT_EQ(After(core::Msg_Master_SetVolume, 0), 0);
    EXPECT_FLOAT_EQ(After(core::Msg_Master_SetVolume, 55), 55);
}

} // namespace
} // namespace velmora::audio
