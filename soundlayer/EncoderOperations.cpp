#include "soundlayer/internal/CaptureStream.h"
#include "soundlayer/internal/EncoderSession.h"
#include "soundlayer/internal/FileEncoder.h"
#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/soundlayer.h"

#include <memory>

using namespace velmora::soundlayer;

namespace {

std::int32_t CodeOf(EncoderError error)
{
    return error == EncoderError::CannotCreate ? BASS_ERROR_CREATE : BASS_ERROR_NOTAVAIL;
}

int CloseEncoder(std::uint32_t handle)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        if (!library.FindEncoder(handle)) {
            return 0;
        }
        return library.FreeEncoder(handle) ? 1 : Fail(SOUND_ERROR_WRITE, 0);
    });
}

} // namespace

HENCODE BASS_Encode_StartACMFile(uint32_t handle, const WAVEFORMATEX* format, uint32_t flags, const char* file)
{
    return Operation(HENCODE{0}, [&] {
        Library& library = Library::Get();
        const auto stream = library.ShareStream(handle);
        if (!stream) {
            return HENCODE{0};
        }
        constexpr std::uint16_t kPcm = 1;
        if (!format || !file || format->wFormatTag != kPcm || format->wBitsPerSample != 16) {
            return Fail(BASS_ERROR_NOTAVAIL, HENCODE{0});
        }
        EncoderError error = EncoderError::None;
        auto encoder = FileEncoder::OpenWav(file, {format->nSamplesPerSec, format->nChannels}, error);
        if (!encoder) {
            return Fail(CodeOf(error), HENCODE{0});
        }
        const AudioFormat input{stream->Rate(), stream->Channels()};
        const bool paused = (flags & BASS_ENCODE_PAUSE) != 0;
        if (const auto* capture = dynamic_cast<const CaptureStream*>(stream.get())) {
            return library.Register(std::make_shared<EncoderSession>(std::move(encoder), input, paused,
                                                                     std::make_shared<CaptureTake>(capture->Device())));
        }
        auto session = std::make_shared<EncoderSession>(std::move(encoder), input, paused);
        session->stream = stream;
        stream->AddTap(library.edits, session);
        return library.Register(std::move(session));
    });
}

int BASS_Encode_SetPaused(HENCODE encoder, int paused)
{
    return Operation(0, [&] {
        EncoderSession* session = Library::Get().FindEncoder(encoder);
        if (!session) {
            return 0;
        }
        session->SetPaused(paused != 0);
        return 1;
    });
}

int BASS_Encode_Stop(HENCODE encoder)
{
    return CloseEncoder(encoder);
}

HWMENCODE BASS_WMA_EncodeOpenFile(uint32_t freq, uint32_t chans, uint32_t, uint32_t bitrate, const char* file)
{
    return Operation(HWMENCODE{0}, [&] {
        if (!file) {
            return Fail(SOUND_ERROR_PARAM, HWMENCODE{0});
        }
        EncoderError error = EncoderError::None;
        const AudioFormat format{freq, chans};
        auto encoder = FileEncoder::OpenWma(file, format, bitrate, error);
        if (!encoder) {
            return Fail(CodeOf(error), HWMENCODE{0});
        }
        return Library::Get().Register(std::make_shared<EncoderSession>(std::move(encoder), format, false));
    });
}

int Sound_WMA_EncodeSetInput(HWMENCODE encoder, uint32_t freq, uint32_t chans)
{
    return Operation(0, [&] {
        EncoderSession* session = Library::Get().FindEncoder(encoder);
        if (!session) {
            return 0;
        }
        if (freq == 0 || chans < 1 || chans > 2) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        session->SetInput({freq, chans});
        return 1;
    });
}

int Sound_EncodeFailed(uint32_t encoder)
{
    const EncoderSession* session = Library::Get().FindEncoder(encoder);
    return session && session->Failed() ? 1 : 0;
}

int BASS_WMA_EncodeWrite(HWMENCODE encoder, const void* buffer, uint32_t length)
{
    return Operation(0, [&] {
        EncoderSession* session = Library::Get().FindEncoder(encoder);
        if (!session) {
            return 0;
        }
        session->Take(static_cast<const std::int16_t*>(buffer),
                      length / (session->Input().channels * sizeof(std::int16_t)));
        return 1;
    });
}

int BASS_WMA_EncodeClose(HWMENCODE encoder)
{
    return CloseEncoder(encoder);
}

const uint32_t* BASS_WMA_EncodeGetRates(uint32_t freq, uint32_t chans, uint32_t)
{
    return Operation<const std::uint32_t*>(nullptr, [&]() -> const std::uint32_t* {
        static std::vector<std::uint32_t> rates;
        const auto offered = WmaRates({freq, chans});
        if (offered.empty()) {
            return Fail(BASS_ERROR_NOTAVAIL, nullptr);
        }
        rates.assign(offered.begin(), offered.end());
        rates.push_back(0);
        return rates.data();
    });
}
