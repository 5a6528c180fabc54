#include "core/BassHelpers.h"

#include "core/Paths.h"
#include "core/Units.h"
#include "soundlayer/soundlayer.h"

namespace velmora::core {

std::uint32_t BassOpenAudioFile(std::string_view path, std::uint32_t flags)
{
    const std::string file = PosixPath(path);
    if (file.empty()) {
        return 0;
    }
    const HSTREAM stream = BASS_StreamCreateFile(0, file.c_str(), 0, 0, flags | BASS_UNICODE);
    return stream != 0 ? stream : BASS_WMA_StreamCreateFile(0, file.c_str(), 0, 0, flags | BASS_UNICODE);
}

void BassSetAttributes(std::uint32_t handle, std::int32_t freq, std::int32_t volume, std::int32_t pan)
{
    constexpr float kPercent = 100.0f;
    if (freq > -1) {
        BASS_ChannelSetAttribute(handle, BASS_ATTRIB_FREQ, static_cast<float>(freq));
    }
    if (volume > -1) {
        BASS_ChannelSetAttribute(handle, BASS_ATTRIB_VOL, static_cast<float>(volume) / kPercent);
    }
    if (pan > -101) {
        BASS_ChannelSetAttribute(handle, BASS_ATTRIB_PAN, static_cast<float>(pan) / kPercent);
    }
}

std::int32_t GetAudioFileLengthMS(std::string_view Path, bool* failed)
{
    const HSTREAM stream = BassOpenAudioFile(Path, BASS_STREAM_DECODE | BASS_STREAM_PRESCAN);
    if (failed) {
        *failed = stream == 0;
    }
    if (stream == 0) {
        return 0;
    }
    const std::uint64_t length = BASS_ChannelGetLength(stream, BASS_POS_BYTE);
    const double seconds = BASS_ChannelBytes2Seconds(stream, length);
    BASS_StreamFree(stream);
    return RoundToInt(seconds * 1000);
}

} // namespace velmora::core
