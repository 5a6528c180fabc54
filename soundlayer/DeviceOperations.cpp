#include "soundlayer/internal/AudioDevice.h"
#include "soundlayer/internal/CubebDevice.h"
#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/MixingThread.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/internal/SurvivingDevice.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <utility>

using velmora::soundlayer::AudioDevice;
using velmora::soundlayer::CubebDevice;
using velmora::soundlayer::Fail;
using velmora::soundlayer::KnownDevice;
using velmora::soundlayer::Library;
using velmora::soundlayer::MakeNoSoundDevice;
using velmora::soundlayer::Operation;
using velmora::soundlayer::Output;
using velmora::soundlayer::SurvivingDevice;

namespace {
constexpr std::uint32_t kVersion = 0x02040000;
constexpr std::int32_t kNoSound = 0;
constexpr std::int32_t kDefaultDevice = -1;
constexpr std::uint32_t kMinRate = 8000;
constexpr std::uint32_t kMaxRate = 192000;
constexpr std::uint32_t kEnabled = 1;
constexpr std::uint32_t kDefault = 2;
constexpr std::uint32_t kInUse = 4;

std::unique_ptr<AudioDevice> MakeRealDevice(const KnownDevice& device, bool followDefault)
{
    // The same backend each time: hardware that is taken while its server is away would keep the server from coming
    // back.
    CubebDevice::Choice choice{device.backend, followDefault ? std::string() : device.id};
    return std::make_unique<SurvivingDevice>([choice](std::uint32_t deviceMS, SurvivingDevice::LostNotice lost) {
        CubebDevice::Choice now = choice;
        now.deviceMS = deviceMS;
        return std::make_unique<CubebDevice>(std::move(now), std::move(lost));
    });
}

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
        if (device != kNoSound) {
            library.outputs.Refresh();
        }
        const std::int32_t number = device == kDefaultDevice ? library.outputs.DefaultNumber() : device;
        const KnownDevice* real = library.outputs.Find(number);
        if (number != kNoSound && !(real && real->present)) {
            return Fail(BASS_ERROR_DEVICE, 0);
        }
        if (freq < kMinRate || freq > kMaxRate) {
            return Fail(BASS_ERROR_FORMAT, 0);
        }
        auto sink = real ? MakeRealDevice(*real, device == kDefaultDevice) : MakeNoSoundDevice();
        auto output = std::make_unique<Output>(std::move(sink), freq, library.edits);
        output->SetBuffer(library.bufferMS, library.periodMS);
        output->SetHeartbeat(library.heartbeat, library.heartbeatUser);
        if (!output->Start()) {
            return Fail(BASS_ERROR_DRIVER, 0);
        }
        library.deviceNumber = number;
        library.output = std::move(output);
        library.output->SetAwake(library.awake != 0);
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
    return Operation(-1, [] {
        const Library& library = Library::Get();
        return library.output ? library.deviceNumber : Fail(BASS_ERROR_INIT, -1);
    });
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
    return Operation(0, [&] {
        Library& library = Library::Get();
        library.outputs.RefreshIfOld();
        const KnownDevice* real = library.outputs.Find(device);
        if (device != kNoSound && !real) {
            return Fail(BASS_ERROR_DEVICE, 0);
        }
        const auto number = static_cast<std::int32_t>(device);
        const bool present = !real || real->present;
        const bool inUse = library.output && library.deviceNumber == number;
        const bool isDefault = library.outputs.DefaultNumber() == number;
        *info = {real ? real->name.c_str() : "No sound", real ? real->backend.c_str() : "",
                 (present ? kEnabled : 0) | (isDefault ? kDefault : 0) | (inUse ? kInUse : 0)};
        return 1;
    });
}

int32_t Sound_DeviceState(void)
{
    return Operation(0, [] {
        const Library& library = Library::Get();
        return library.output ? static_cast<std::int32_t>(library.output->Device().State()) : 0;
    });
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
        Library::Get().pullHelpers.SetThreads(threads);
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

void Sound_MixNow(void)
{
    Operation(0, [] {
        if (const auto& output = Library::Get().output) {
            output->MixNow();
        }
        return 1;
    });
}

void Sound_SetAwake(int awake)
{
    Operation(0, [&] {
        Library::Get().SetAwake(Library::kPlayer, awake != 0);
        return 1;
    });
}

int Sound_OnMixingThread(void)
{
    return velmora::soundlayer::OnMixingThread() ? 1 : 0;
}

uint64_t Sound_MissedFrames(void)
{
    return Operation(std::uint64_t{0}, [] {
        const Library& library = Library::Get();
        return library.output ? library.output->MissedFrames() : 0;
    });
}

uint64_t Sound_MixedFrames(void)
{
    return Operation(std::uint64_t{0}, [] {
        const Library& library = Library::Get();
        return library.output ? library.output->MixedFrames() : 0;
    });
}

uint64_t Sound_LateFrames(void)
{
    return Library::Get().readAhead.LateFrames();
}
