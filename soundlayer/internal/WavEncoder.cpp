#include "soundlayer/internal/WavEncoder.h"

#include <sndfile.h>

namespace velmora::soundlayer {

std::unique_ptr<FileEncoder> WavEncoder::Open(const std::string& file, AudioFormat format, EncoderError& error)
{
    SF_INFO info{};
    info.samplerate = static_cast<int>(format.rate);
    info.channels = static_cast<int>(format.channels);
    info.format = SF_FORMAT_RF64 | SF_FORMAT_PCM_16;
    if (format.rate == 0 || format.rate > 768'000 || format.channels < 1 || format.channels > 2 ||
        sf_format_check(&info) == 0) {
        error = EncoderError::InvalidFormat;
        return nullptr;
    }
    SNDFILE* opened = sf_open(file.c_str(), SFM_WRITE, &info);
    if (!opened) {
        error = EncoderError::CannotCreate;
        return nullptr;
    }
    sf_command(opened, SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
    sf_command(opened, SFC_SET_UPDATE_HEADER_AUTO, nullptr, SF_TRUE);
    return std::make_unique<WavEncoder>(opened, format);
}

WavEncoder::WavEncoder(sf_private_tag* file, AudioFormat format)
    : FileEncoder(format)
    , m_file(file)
{
}

WavEncoder::~WavEncoder()
{
    Close();
}

bool WavEncoder::Encode(std::span<const std::int16_t> interleaved)
{
    const auto wanted = static_cast<sf_count_t>(interleaved.size());
    return sf_write_short(m_file, interleaved.data(), wanted) == wanted && sf_error(m_file) == SF_ERR_NO_ERROR;
}

bool WavEncoder::Close()
{
    if (!m_file) {
        return true;
    }
    // Closing reports success after lost data, so the state is asked for before.
    sf_command(m_file, SFC_UPDATE_HEADER_NOW, nullptr, 0);
    const bool complete = sf_error(m_file) == SF_ERR_NO_ERROR;
    const bool closed = sf_close(m_file) == 0;
    m_file = nullptr;
    return complete && closed;
}

} // namespace velmora::soundlayer
