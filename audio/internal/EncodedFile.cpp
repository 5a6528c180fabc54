#include "audio/internal/EncodedFile.h"

namespace velmora::audio {

std::string EncoderErrorSuffix(std::int32_t code)
{
    switch (code) {
    case BASS_ERROR_CREATE:
        return " [Error creating file]";
    case BASS_ERROR_NOTAVAIL:
        return " [Invalid format]";
    case BASS_ERROR_WMA:
        return " [Windows media player 9 needed]";
    default:
        return "";
    }
}

WAVEFORMATEX WaveFormat(std::int32_t rate, std::int32_t channels)
{
    WAVEFORMATEX format{};
    format.wFormatTag = 1;
    format.nChannels = static_cast<std::uint16_t>(channels);
    format.nSamplesPerSec = static_cast<std::uint32_t>(rate);
    format.wBitsPerSample = 16;
    format.nBlockAlign = static_cast<std::uint16_t>(2 * channels);
    format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
    return format;
}

std::string FreeName(const std::string& stem, const std::string& ending,
                     const std::function<bool(const std::string& name)>& taken)
{
    std::string name = stem + ending;
    for (int n = 1; taken(name); ++n) {
        name = stem;
        name.append(std::to_string(n)).append(ending);
    }
    return name;
}

std::string FreeName(const core::Files& files, const std::string& stem, const std::string& ending)
{
    return FreeName(stem, ending, [&files](const std::string& name) { return files.FileExists(name); });
}

} // namespace velmora::audio
