#include "audio/internal/WmaConversion.h"

#include "audio/internal/EncodedFile.h"
#include "core/Paths.h"
#include "core/RunBeside.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora::audio {
namespace {

constexpr std::uint32_t kPieceBytes = 40'000;
constexpr std::uint32_t kNoData = 0xFFFFFFFF;
constexpr const char* kUnreadable = " [Error loading file]";
constexpr const char* kNotWritten = " [Error writing file, the disk may be full]";

} // namespace

std::int32_t GetNearestBitrate(std::int32_t freq, std::int32_t channels, std::int32_t wanted)
{
    const std::uint32_t* rates = BASS_WMA_EncodeGetRates(
        static_cast<std::uint32_t>(freq), static_cast<std::uint32_t>(channels), BASS_WMA_ENCODE_STANDARD);
    std::int64_t nearest = 0;
    std::int64_t least = 100'000'000;
    for (; rates && *rates != 0; ++rates) {
        const std::int64_t difference = std::llabs(std::int64_t{*rates} - wanted);
        if (difference < least) {
            least = difference;
            nearest = *rates;
        }
    }
    return static_cast<std::int32_t>(nearest);
}

WmaConversion::WmaConversion(core::Files& files, std::string source, std::string destination)
    : m_files(files)
    , m_source(std::move(source))
    , m_destination(std::move(destination))
    , m_piece(kPieceBytes / sizeof(std::int16_t))
{
}

WmaConversion::~WmaConversion()
{
    CloseEncoder();
    if (m_stream != 0) {
        BASS_StreamFree(m_stream);
    }
    if (!m_temporary.empty()) {
        m_files.DeleteFile(m_temporary);
    }
}

bool WmaConversion::Open(std::int32_t stereoBitrate)
{
    const std::string file = core::PosixPath(m_source);
    BASS_CHANNELINFO info{};
    m_stream = BASS_StreamCreateFile(0, file.c_str(), 0, 0, BASS_STREAM_DECODE | BASS_STREAM_PRESCAN);
    if (m_stream == 0 || BASS_ChannelGetInfo(m_stream, &info) == 0) {
        return Fail(m_source, kUnreadable);
    }
    m_length = BASS_ChannelGetLength(m_stream, BASS_POS_BYTE);

    const std::int32_t wanted = info.chans == 2 ? stereoBitrate : core::RoundToInt(stereoBitrate / 2.0);
    const std::int32_t rate =
        GetNearestBitrate(static_cast<std::int32_t>(info.freq), static_cast<std::int32_t>(info.chans), wanted);
    m_temporary = FreeName(m_files, core::FileExtensionCut(m_destination) + ".part", ".wma");
    m_encoder = BASS_WMA_EncodeOpenFile(info.freq, info.chans, BASS_WMA_ENCODE_STANDARD,
                                        static_cast<std::uint32_t>(rate), core::PosixPath(m_temporary).c_str());
    return m_encoder != 0 || Fail(m_destination, EncoderErrorSuffix(BASS_ErrorGetCode()));
}

bool WmaConversion::Step()
{
    const std::uint32_t bytes = BASS_ChannelGetData(m_stream, m_piece.data(), kPieceBytes);
    if (bytes == 0 || bytes == kNoData) {
        return false;
    }
    m_done += bytes;
    return BASS_WMA_EncodeWrite(m_encoder, m_piece.data(), bytes) != 0 && Sound_EncodeFailed(m_encoder) == 0;
}

bool WmaConversion::Finish(core::Trash& trash, core::PendingEvents& events)
{
    if (!CloseEncoder()) {
        return Fail(m_destination, kNotWritten);
    }
    if (m_done < m_length) {
        return Fail(m_source, kUnreadable);
    }
    if (m_files.FileExists(m_destination)) {
        trash.Move(m_destination);
    }
    if (!core::RunBeside(events, [this] { return m_files.Replace(m_temporary, m_destination); })) {
        return Fail(m_destination, EncoderErrorSuffix(BASS_ERROR_CREATE));
    }
    m_temporary.clear();
    return true;
}

double WmaConversion::Done() const
{
    return m_length == 0 ? 1.0 : std::min(1.0, static_cast<double>(m_done) / static_cast<double>(m_length));
}

bool WmaConversion::Fail(const std::string& file, const std::string& why)
{
    m_error = file + why;
    return false;
}

bool WmaConversion::CloseEncoder()
{
    return m_encoder == 0 || BASS_WMA_EncodeClose(std::exchange(m_encoder, 0)) != 0;
}

} // namespace velmora::audio
