#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/CallbackStream.h"
#include "soundlayer/internal/CaptureStream.h"
#include "soundlayer/internal/FileStream.h"
#include "soundlayer/internal/FrameSource.h"
#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/MixingThread.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

using namespace velmora::soundlayer;

namespace {

enum class Reader { AllButWma, WmaOnly };

std::uint64_t FrameBytes(const Stream& stream)
{
    return stream.Channels() * sizeof(std::int16_t);
}

std::unique_ptr<AudioFile> OpenFile(const std::string& file)
{
    OpenResult result = OpenResult::Ok;
    auto opened = AudioFile::Open(file, result);
    if (!opened) {
        Library::SetError(result == OpenResult::CannotRead ? SOUND_ERROR_FILEOPEN : SOUND_ERROR_FILEFORM);
    }
    return opened;
}

/// Opens a file with `open` and makes it a stream. Opening may take long, so it happens before the library is held.
HSTREAM OpenFileStream(const std::string& file, std::uint32_t flags, const FileStream::Reopen& open)
{
    auto source = WithoutHold(std::unique_ptr<FrameSource>(), open);
    if (!source) {
        return 0;
    }
    return Operation(HSTREAM{0}, [&] {
        Library& library = Library::Get();
        auto stream =
            std::make_shared<FileStream>(file, flags & ~BASS_UNICODE, std::move(source), open, library.readAhead);
        stream->Open(library.edits);
        return library.Register(std::move(stream));
    });
}

HSTREAM CreateFileStream(int mem, const void* name, std::uint64_t offset, std::uint64_t length, std::uint32_t flags,
                         Reader reader)
{
    if (mem != 0 || !name || offset != 0 || length != 0) {
        return Fail(SOUND_ERROR_PARAM, HSTREAM{0});
    }
    const std::string file(static_cast<const char*>(name));
    return OpenFileStream(file, flags, [file, reader]() -> std::unique_ptr<FrameSource> {
        auto opened = OpenFile(file);
        if (opened && opened->IsWma() != (reader == Reader::WmaOnly)) {
            return Fail(SOUND_ERROR_FILEFORM, nullptr);
        }
        return opened ? std::make_unique<PlainSource>(std::move(opened)) : nullptr;
    });
}

/// Pulls in pieces that a stream can give at once; ends early when it ends or has no data now.
std::size_t PullAll(Stream& stream, std::int16_t* out, std::size_t frames)
{
    std::size_t done = 0;
    while (done < frames) {
        std::int16_t* to = out + done * stream.Channels();
        const std::size_t wanted = std::min(frames - done, Stream::kMaxFrames);
        const Block block = stream.Pull(to, wanted);
        if (block.silent) {
            std::fill_n(to, block.frames * stream.Channels(), std::int16_t{0});
        }
        done += block.frames;
        if (block.ended || block.frames == 0) {
            break;
        }
    }
    return done;
}

} // namespace

HSTREAM BASS_StreamCreateFile(int mem, const void* file, uint64_t offset, uint64_t length, uint32_t flags)
{
    return CreateFileStream(mem, file, offset, length, flags, Reader::AllButWma);
}

HSTREAM BASS_WMA_StreamCreateFile(int mem, const void* file, uint64_t offset, uint64_t length, uint32_t flags)
{
    return CreateFileStream(mem, file, offset, length, flags, Reader::WmaOnly);
}

HSTREAM Sound_ClipCreate(const char* name, uint32_t freq)
{
    if (!name || freq == 0) {
        return Fail(SOUND_ERROR_PARAM, HSTREAM{0});
    }
    const std::string file(name);
    return OpenFileStream(file, BASS_STREAM_DECODE, [file, freq]() -> std::unique_ptr<FrameSource> {
        auto opened = OpenFile(file);
        return opened ? std::make_unique<ClipSource>(std::move(opened), freq) : nullptr;
    });
}

int Sound_ClipPrepare(HSTREAM clip, uint32_t frames)
{
    std::shared_ptr<Stream> stream =
        Operation(std::shared_ptr<Stream>(), [&] { return Library::Get().ShareStream(clip); });
    auto* file = dynamic_cast<FileStream*>(stream.get());
    if (!file) {
        return Fail(SOUND_ERROR_HANDLE, 0);
    }
    return WithoutHold(0, [&] {
        file->Prepare(frames);
        return 1;
    });
}

int Sound_SetRunning(HSTREAM source, int running)
{
    Stream* stream = Library::Get().FindStream(source);
    if (!stream) {
        return 0;
    }
    stream->stopped.store(running == 0, std::memory_order_relaxed);
    return 1;
}

HSTREAM BASS_StreamCreate(uint32_t freq, uint32_t chans, uint32_t flags, STREAMPROC* proc, SOUND_USER user)
{
    return Operation(HSTREAM{0}, [&] {
        if (freq == 0 || chans < 1 || chans > 2 || !proc) {
            return Fail(SOUND_ERROR_PARAM, HSTREAM{0});
        }
        return Library::Get().Register(std::make_shared<CallbackStream>(freq, chans, flags, proc, user));
    });
}

int BASS_StreamFree(HSTREAM handle)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        if (!library.FindStream(handle)) {
            return 0;
        }
        library.FreeStream(handle);
        // Its callback, if it has one, is not called once this has returned.
        library.edits.Flush();
        return 1;
    });
}

int BASS_ChannelPlay(uint32_t handle, int restart)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        const auto stream = library.ShareStream(handle);
        if (!stream) {
            return 0;
        }
        if (stream->IsDecoding()) {
            stream->stopped = false;
            return Fail(SOUND_ERROR_DECODE, 0);
        }
        if (!library.output) {
            return Fail(BASS_ERROR_INIT, 0);
        }
        const EditScope scope(library.edits);
        if (restart && stream->SetPosition(library.edits, 0, library.Sounding(*stream)) &&
            library.output->Playing(*stream)) {
            stream->parent->RenewSource(library.edits, *stream);
        }
        library.output->Play(stream);
        return 1;
    });
}

int BASS_ChannelStop(uint32_t handle)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return 0;
        }
        if (dynamic_cast<const CaptureStream*>(stream)) {
            library.StopRecording(handle);
            return 1;
        }
        stream->stopped = true;
        if (library.output && library.output->Playing(*stream)) {
            library.output->StopPlaying(*stream);
        }
        return 1;
    });
}

uint32_t BASS_ChannelGetData(uint32_t handle, void* buffer, uint32_t length)
{
    return Operation(UINT32_MAX, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return UINT32_MAX;
        }
        if (!OnMixingThread() && !InSharedPull()) {
            if (library.Sounding(*stream)) {
                return Fail(SOUND_ERROR_DECODE, UINT32_MAX);
            }
            library.edits.Flush();
        }
        if (const auto* capture = dynamic_cast<const CaptureStream*>(stream); capture && length == 0) {
            return static_cast<std::uint32_t>(capture->Device()->Ready() * FrameBytes(*stream));
        }
        const auto frames = static_cast<std::size_t>(length / FrameBytes(*stream));
        return static_cast<std::uint32_t>(PullAll(*stream, static_cast<std::int16_t*>(buffer), frames) *
                                          FrameBytes(*stream));
    });
}

int BASS_ChannelGetInfo(uint32_t handle, BASS_CHANNELINFO* info)
{
    return Operation(0, [&] {
        const Stream* stream = Library::Get().FindStream(handle);
        if (!stream) {
            return 0;
        }
        *info = {stream->Rate(), stream->Channels(), stream->Flags(), stream->FileName()};
        return 1;
    });
}

uint64_t BASS_ChannelGetLength(uint32_t handle, uint32_t mode)
{
    return Operation(UINT64_MAX, [&] {
        const Stream* stream = Library::Get().FindStream(handle);
        if (!stream) {
            return UINT64_MAX;
        }
        if (mode != BASS_POS_BYTE || stream->LengthFrames() < 0) {
            return Fail(SOUND_ERROR_PARAM, UINT64_MAX);
        }
        return static_cast<std::uint64_t>(stream->LengthFrames()) * FrameBytes(*stream);
    });
}

double BASS_ChannelBytes2Seconds(uint32_t handle, uint64_t position)
{
    return Operation(-1.0, [&] {
        const Stream* stream = Library::Get().FindStream(handle);
        if (!stream) {
            return -1.0;
        }
        const std::uint64_t frames = position / FrameBytes(*stream);
        return static_cast<double>(frames) / stream->Rate();
    });
}

uint64_t BASS_ChannelSeconds2Bytes(uint32_t handle, double position)
{
    return Operation(UINT64_MAX, [&] {
        const Stream* stream = Library::Get().FindStream(handle);
        if (!stream) {
            return UINT64_MAX;
        }
        // 2^52 frames are beyond any file, and what a double still counts one by one.
        const double frames = std::clamp(std::floor(position * stream->Rate()), 0.0, 4503599627370496.0);
        return std::isnan(position) ? Fail(SOUND_ERROR_PARAM, UINT64_MAX)
                                    : static_cast<std::uint64_t>(frames) * FrameBytes(*stream);
    });
}

int BASS_ChannelSetPosition(uint32_t handle, uint64_t position, uint32_t mode)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return 0;
        }
        if (mode != BASS_POS_BYTE) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        const EditScope scope(library.edits);
        const bool sounding = library.Sounding(*stream);
        if (!stream->SetPosition(library.edits, static_cast<std::int64_t>(position / FrameBytes(*stream)), sounding)) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        if (stream->parent) {
            stream->parent->RenewSource(library.edits, *stream);
        }
        return 1;
    });
}

int BASS_ChannelSetAttribute(uint32_t handle, uint32_t attribute, float value)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return 0;
        }
        if (!std::isfinite(value)) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        switch (attribute) {
        case BASS_ATTRIB_FREQ:
            if (value < 0 || value > 1e6F) {
                return Fail(SOUND_ERROR_PARAM, 0);
            }
            stream->frequency = value;
            if (stream->parent) {
                stream->parent->RenewSource(library.edits, *stream);
            }
            return 1;
        case BASS_ATTRIB_VOL:
            stream->volume = value;
            return 1;
        case BASS_ATTRIB_PAN:
            stream->pan = value;
            return 1;
        default:
            return Fail(SOUND_ERROR_PARAM, 0);
        }
    });
}

int BASS_ChannelGetAttribute(uint32_t handle, uint32_t attribute, float* value)
{
    return Operation(0, [&] {
        const Stream* stream = Library::Get().FindStream(handle);
        if (!stream) {
            return 0;
        }
        switch (attribute) {
        case BASS_ATTRIB_FREQ:
            *value = stream->frequency > 0 ? stream->frequency.load() : static_cast<float>(stream->Rate());
            return 1;
        case BASS_ATTRIB_VOL:
            *value = stream->volume;
            return 1;
        case BASS_ATTRIB_PAN:
            *value = stream->pan;
            return 1;
        default:
            return Fail(SOUND_ERROR_PARAM, 0);
        }
    });
}

HDSP BASS_ChannelSetDSP(uint32_t handle, DSPPROC* proc, SOUND_USER user, int32_t priority)
{
    return Operation(HDSP{0}, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return HDSP{0};
        }
        return proc ? stream->AddDsp(library.edits, proc, user, priority) : Fail(SOUND_ERROR_PARAM, HDSP{0});
    });
}

int BASS_ChannelRemoveDSP(uint32_t handle, HDSP dsp)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return 0;
        }
        return stream->RemoveDsp(library.edits, dsp) ? 1 : Fail(SOUND_ERROR_HANDLE, 0);
    });
}
