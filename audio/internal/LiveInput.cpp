#include "audio/internal/LiveInput.h"

#include "core/BassHelpers.h"
#include "soundlayer/soundlayer.h"

namespace velmora::audio {

bool LiveInput::Start(std::uint32_t mixer, bool heard)
{
    if (!Input.StartCapture()) {
        m_error = Input.LastErrorMessage();
        return false;
    }
    // Before it joins, so that not even its first block is heard.
    SetHeard(heard);
    if (!Join(mixer)) {
        m_error = "BASS_Mixer_StreamAddChannel: " + std::to_string(BASS_ErrorGetCode());
        Input.WarnIfEncoderPaused = false;
        End();
        return false;
    }
    return true;
}

void LiveInput::SetHeard(bool heard)
{
    constexpr std::int32_t kFull = 100;
    core::BassSetAttributes(Input.OutStream(), -1, heard ? kFull : 0, -101);
}

bool LiveInput::Join(std::uint32_t mixer)
{
    BASS_Mixer_ChannelRemove(Input.OutStream());
    return BASS_Mixer_StreamAddChannel(mixer, Input.OutStream(), 0) != 0;
}

void LiveInput::End()
{
    if (Input.Capturing()) {
        BASS_Mixer_ChannelRemove(Input.OutStream());
        Input.EndCapture();
    }
}

} // namespace velmora::audio
