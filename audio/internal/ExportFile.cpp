#include "audio/internal/ExportFile.h"

#include "audio/internal/EncodedFile.h"
#include "core/Paths.h"
#include "core/RunBeside.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"

#include <utility>

namespace velmora::audio {

ExportFile::ExportFile(core::Files& files, std::string target, std::uint32_t stream, std::int32_t streamRate)
    : m_files(files)
    , m_target(std::move(target))
    , m_stream(stream)
    , m_streamRate(streamRate)
{
}

ExportFile::~ExportFile()
{
    Close();
    if (!m_temporary.empty()) {
        m_files.DeleteFile(m_temporary);
    }
}

bool ExportFile::Open(const ExportFormat& format)
{
    const std::string name = FreeName(m_files, m_target + ".part", "");
    const std::string file = core::PosixPath(name);
    if (format.wma) {
        m_wmaEncoder = BASS_WMA_EncodeOpenFile(static_cast<std::uint32_t>(format.sampleRate),
                                               static_cast<std::uint32_t>(format.channels), 0,
                                               static_cast<std::uint32_t>(format.bitrate), file.c_str());
    } else {
        const WAVEFORMATEX wave = WaveFormat(format.sampleRate, format.channels);
        m_wavEncoder = BASS_Encode_StartACMFile(m_stream, &wave, BASS_ENCODE_PAUSE, file.c_str());
    }
    if (m_wmaEncoder == 0 && m_wavEncoder == 0) {
        return false;
    }
    m_temporary = name;
    return true;
}

bool ExportFile::Begin()
{
    if (m_wavEncoder != 0) {
        return BASS_Encode_SetPaused(m_wavEncoder, 0) != 0;
    }
    Sound_WMA_EncodeSetInput(m_wmaEncoder, static_cast<std::uint32_t>(m_streamRate), 2);
    m_wmaDsp =
        BASS_ChannelSetDSP(m_stream, reinterpret_cast<DSPPROC*>(get_WMAEncoderFillDSP_memaddress()), m_wmaEncoder, 0);
    return m_wmaDsp != 0;
}

bool ExportFile::Failed() const
{
    return Sound_EncodeFailed(m_wavEncoder != 0 ? m_wavEncoder : m_wmaEncoder) != 0;
}

bool ExportFile::Finish(core::PendingEvents& events)
{
    // A disk may take long until it has all.
    if (!Close() || !core::RunBeside(events, [this] { return m_files.Replace(m_temporary, m_target); })) {
        return false;
    }
    m_temporary.clear();
    return true;
}

bool ExportFile::Close()
{
    bool whole = true;
    if (m_wmaDsp != 0) {
        BASS_ChannelRemoveDSP(m_stream, std::exchange(m_wmaDsp, 0));
    }
    if (m_wavEncoder != 0) {
        whole = BASS_Encode_Stop(std::exchange(m_wavEncoder, 0)) != 0;
    }
    if (m_wmaEncoder != 0) {
        whole = BASS_WMA_EncodeClose(std::exchange(m_wmaEncoder, 0)) != 0;
    }
    return whole;
}

} // namespace velmora::audio
