#include "soundlayer/internal/AudioDevice.h"
#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <exception>
#include <memory>

using velmora::soundlayer::Fail;
using velmora::soundlayer::Library;
using velmora::soundlayer::MakeNoSoundDevice;
using velmora::soundlayer::Operation;
using velmora::soundlayer::Output;

namespace {
constexpr std::uint32_t kVersion = 0x02040000;
constexpr std::int32_t kNoSound = 0;
constexpr std::int32_t kDefaultDevice = -1;
constexpr std::uint32_t kMinRate = 8000;
constexpr std::uint32_t kMaxRate = 192000;
} // namespace

uint32_t BASS_GetVersion(void)
{
    return kVersion;
}

int32_t BASS_ErrorGetCode(void)
{
    return Library::Error();
}

int BASS_Init(int32_t device, uint32_t freq, uint32_t, void*, const void*)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        if (library.output) {
            return Fail(BASS_ERROR_ALREADY, 0);
        }
        if (device != kNoSound && device != kDefaultDevice) {
            return Fail(BASS_ERROR_DEVICE, 0);
        }
        if (freq < kMinRate || freq > kMaxRate) {
            return Fail(BASS_ERROR_FORMAT, 0);
        }
        auto output = std::make_unique<Output>(MakeNoSoundDevice(), freq, library.edits);
        output->SetBuffer(library.bufferMS, library.periodMS);
        output->SetHeartbeat(library.heartbeat, library.heartbeatUser);
        if (!output->Start()) {
            return Fail(BASS_ERROR_DRIVER, 0);
        }
        library.output = std::move(output);
        return 1;
    });
}

int BASS_Free(void)
{
    return Operation(0, [] {
        Library& library = Library::Get();
        if (!library.output) {
            return Fail(BASS_ERROR_INIT, 0);
        }
        library.FreeEverything();
        return 1;
    });
}

int32_t BASS_GetDevice(void)
{
    return Operation(-1, [] { return Library::Get().output ? kNoSound : Fail(BASS_ERROR_INIT, -1); });
}

int BASS_GetInfo(BASS_INFO* info)
{
    return Operation(0, [&] {
        const Library& library = Library::Get();
        if (!library.output) {
            return Fail(BASS_ERROR_INIT, 0);
        }
        *info = {library.output->Device().MinBufferMS(), library.output->Device().LatencyMS(), library.output->Rate()};
        return 1;
    });
}

int BASS_GetDeviceInfo(uint32_t device, BASS_DEVICEINFO* info)
{
    if (device != kNoSound) {
        return Fail(BASS_ERROR_DEVICE, 0);
    }
    *info = {"No sound", "", Library::Get().output ? 5U : 1U};
    return 1;
}

int BASS_SetConfig(uint32_t option, uint32_t value)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        switch (option) {
        case BASS_CONFIG_BUFFER:
            library.bufferMS = std::clamp<std::uint32_t>(value, 1, Output::kMaxBufferMS);
            break;
        case BASS_CONFIG_UPDATEPERIOD:
            library.periodMS = std::clamp<std::uint32_t>(value, 5, Output::kMaxBufferMS);
            break;
        case BASS_CONFIG_CURVE_VOL:
            return value == 0 ? 1 : Fail(SOUND_ERROR_PARAM, 0);
        default:
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        if (library.output) {
            library.output->SetBuffer(library.bufferMS, library.periodMS);
        }
        return 1;
    });
}

uint32_t BASS_GetConfig(uint32_t option)
{
    return Operation(UINT32_MAX, [&]() -> std::uint32_t {
        switch (option) {
        case BASS_CONFIG_BUFFER:
            return Library::Get().bufferMS;
        case BASS_CONFIG_UPDATEPERIOD:
            return Library::Get().periodMS;
        case BASS_CONFIG_CURVE_VOL:
            return 0;
        default:
            return Fail(SOUND_ERROR_PARAM, UINT32_MAX);
        }
    });
}

void Sound_SetThreads(uint32_t threads)
{
    Operation(0, [&] {
        Library::Get().readAhead.SetThreads(threads);
        return 0;
    });
}

int Sound_SetHeartbeat(SOUND_HEARTBEATPROC* proc, SOUND_USER user)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        library.heartbeat = proc;
        library.heartbeatUser = user;
        if (library.output) {
            library.output->SetHeartbeat(proc, user);
        }
        return 1;
    });
}

uint64_t Sound_MissedFrames(void)
{
    return Operation(std::uint64_t{0}, [] {
        const Library& library = Library::Get();
        return library.output ? library.output->MissedFrames() : 0;
    });
}
