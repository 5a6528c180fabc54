#include "soundlayer/internal/CaptureStream.h"
#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/soundlayer.h"

#include <chrono>
#include <memory>
#include <utility>

using namespace velmora::soundlayer;

namespace {

constexpr std::uint32_t kEnabled = 1;
constexpr std::uint32_t kDefault = 2;
constexpr std::uint32_t kInUse = 4;
constexpr std::uint32_t kMinRate = 8000;
constexpr std::uint32_t kMaxRate = 192000;

/// The channel of `handle` at work, or null with SOUND_ERROR_HANDLE set.
Capture* FindCapture(HRECORD handle)
{
    const auto* stream = dynamic_cast<const CaptureStream*>(Library::Get().FindStream(handle));
    return stream ? stream->Device().get() : Fail<Capture*>(SOUND_ERROR_HANDLE, nullptr);
}

/// A failed operation on the inputs of the current device: no server tells about them.
template <typename T>
T NoInputs(T failed)
{
    return Operation(failed, [&] {
        const bool any = Library::Get().recorders.current >= 0;
        return Fail(any ? BASS_ERROR_NOTAVAIL : BASS_ERROR_INIT, failed);
    });
}

} // namespace

int BASS_RecordInit(int32_t device)
{
    return Operation(0, [&] {
        Recorders& recorders = Library::Get().recorders;
        if (recorders.ready.contains(device)) {
            return Fail(BASS_ERROR_ALREADY, 0);
        }
        if (!recorders.Own(device)) {
            recorders.System().Refresh();
        }
        if (!recorders.IsThere(device)) {
            return Fail(device <= 0 && !recorders.Any() ? BASS_ERROR_DRIVER : BASS_ERROR_DEVICE, 0);
        }
        recorders.ready.emplace(device, 0);
        recorders.current = device;
        return 1;
    });
}

int BASS_RecordFree(void)
{
    return Operation(0, [] {
        Library& library = Library::Get();
        Recorders& recorders = library.recorders;
        const auto current = recorders.ready.find(recorders.current);
        if (current == recorders.ready.end()) {
            return Fail(BASS_ERROR_INIT, 0);
        }
        library.StopRecording(current->second);
        recorders.ready.erase(current);
        recorders.current = recorders.ready.empty() ? -1 : recorders.ready.begin()->first;
        return 1;
    });
}

int BASS_RecordSetDevice(uint32_t device)
{
    return Operation(0, [&] {
        Recorders& recorders = Library::Get().recorders;
        const auto number = static_cast<std::int32_t>(device);
        if (!recorders.ready.contains(number)) {
            return Fail(recorders.IsThere(number) ? BASS_ERROR_INIT : BASS_ERROR_DEVICE, 0);
        }
        recorders.current = number;
        return 1;
    });
}

HRECORD BASS_RecordStart(uint32_t freq, uint32_t chans, uint32_t flags, const void* proc, SOUND_USER)
{
    return Operation(HRECORD{0}, [&] {
        Library& library = Library::Get();
        Recorders& recorders = library.recorders;
        const auto current = recorders.ready.find(recorders.current);
        if (current == recorders.ready.end()) {
            return Fail(BASS_ERROR_INIT, HRECORD{0});
        }
        if (library.handles.Find(current->second)) {
            return Fail(BASS_ERROR_ALREADY, HRECORD{0});
        }
        if (freq < kMinRate || freq > kMaxRate || chans != 2 || flags != 0 || proc) {
            return Fail(BASS_ERROR_FORMAT, HRECORD{0});
        }
        auto device = recorders.MakeDevice(current->first);
        if (!device) {
            return Fail(BASS_ERROR_NOTAVAIL, HRECORD{0});
        }
        auto heard = library.output ? library.output->HeardLog() : nullptr;
        auto capture = std::make_shared<Capture>(std::move(device), freq, std::move(heard),
                                                 library.output ? library.output->Rate() : freq);
        if (!capture->Start()) {
            return Fail(BASS_ERROR_NOTAVAIL, HRECORD{0});
        }
        current->second = library.Register(std::make_shared<CaptureStream>(freq, std::move(capture)));
        library.SetAwake(Library::kRecorder, true);
        return current->second;
    });
}

int BASS_RecordGetDeviceInfo(uint32_t device, BASS_DEVICEINFO* info)
{
    return Operation(0, [&] {
        Recorders& recorders = Library::Get().recorders;
        const auto number = static_cast<std::int32_t>(device);
        const std::uint32_t inUse = recorders.ready.contains(number) ? kInUse : 0;
        if (const auto own = recorders.Own(number)) {
            *info = {own->Name().c_str(), "", kEnabled | inUse};
            return 1;
        }
        recorders.System().RefreshIfOld();
        const KnownDevice* known = recorders.Known(device);
        if (!known) {
            return Fail(BASS_ERROR_DEVICE, 0);
        }
        const bool isDefault = recorders.System().DefaultNumber() == number + 1;
        *info = {known->name.c_str(), known->backend.c_str(),
                 (known->present ? kEnabled : 0) | (isDefault ? kDefault : 0) | inUse};
        return 1;
    });
}

uint32_t BASS_RecordGetInput(int32_t, float*)
{
    return NoInputs(UINT32_MAX);
}

int BASS_RecordSetInput(int32_t, uint32_t, float)
{
    return NoInputs(0);
}

int32_t Sound_RecordState(HRECORD record)
{
    return Operation(0, [&] {
        const Capture* capture = FindCapture(record);
        return capture ? static_cast<std::int32_t>(capture->State()) : 0;
    });
}

uint64_t Sound_RecordGapFrames(HRECORD record)
{
    return Operation(std::uint64_t{0}, [&] {
        const Capture* capture = FindCapture(record);
        return capture ? capture->GapFrames() : 0;
    });
}

uint32_t Sound_RecordInput(HRECORD record)
{
    return Operation(std::uint32_t{0}, [&]() -> std::uint32_t {
        const Capture* capture = FindCapture(record);
        if (!capture) {
            return 0;
        }
        return (capture->InputSilent() ? SOUND_INPUT_SILENT : 0) | (capture->InputClipped() ? SOUND_INPUT_CLIPPED : 0);
    });
}

int Sound_RecordOffset(HENCODE encoder, uint64_t mixed, double* seconds)
{
    return Operation(0, [&] {
        const EncoderSession* session = Library::Get().FindEncoder(encoder);
        const auto* take = session ? dynamic_cast<const CaptureTake*>(session->Source()) : nullptr;
        if (!take || take->FirstFrame() < 0) {
            return Fail(SOUND_ERROR_HANDLE, 0);
        }
        const auto offset = take->Device().OffsetOf(take->FirstFrame(), static_cast<std::int64_t>(mixed));
        if (!offset) {
            return Fail(BASS_ERROR_NOTAVAIL, 0);
        }
        *seconds = std::chrono::duration<double>(*offset).count();
        return 1;
    });
}

int32_t Sound_RecordAddDevice(const SOUND_RECORDER* recorder)
{
    return Operation(-1, [&] {
        if (!recorder || !recorder->name || recorder->chans < 1 || recorder->chans > 2) {
            return Fail(SOUND_ERROR_PARAM, -1);
        }
        auto started = [proc = recorder->started, user = recorder->user] {
            if (proc) {
                proc(user);
            }
        };
        return Library::Get().recorders.AddOwn(std::make_shared<OwnRecorder>(
            recorder->name, AudioFormat{recorder->freq, recorder->chans}, recorder->refuses != 0, std::move(started)));
    });
}

int Sound_RecordRemoveDevice(int32_t device)
{
    return Operation(0, [&] { return Library::Get().recorders.RemoveOwn(device) ? 1 : Fail(BASS_ERROR_DEVICE, 0); });
}

int Sound_RecordDeliver(int32_t device, const int16_t* interleaved, uint32_t frames, int64_t endNS)
{
    const auto recorder =
        Operation(std::shared_ptr<OwnRecorder>(), [&] { return Library::Get().recorders.Own(device); });
    const SoundClock::time_point end{std::chrono::nanoseconds(endNS)};
    return recorder && recorder->Deliver(interleaved, frames, end) ? 1 : Fail(BASS_ERROR_NOTAVAIL, 0);
}

int Sound_RecordLose(int32_t device)
{
    const auto recorder =
        Operation(std::shared_ptr<OwnRecorder>(), [&] { return Library::Get().recorders.Own(device); });
    if (!recorder) {
        return Fail(BASS_ERROR_DEVICE, 0);
    }
    recorder->Lose();
    return 1;
}
