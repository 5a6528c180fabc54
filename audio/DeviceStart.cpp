#include "audio/DeviceStart.h"

#include "core/Units.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <limits>
#include <string>

namespace velmora::audio {
namespace {

constexpr std::uint32_t kGeneration = 0x204;
constexpr std::int32_t kSafeRate = 44100;
constexpr std::int16_t kDefaultDevice = -1;
constexpr std::int16_t kDeviceMinimum = -1;
constexpr std::int16_t kShortestBufferMS = 6;
constexpr std::int32_t kShortestUpdateMS = 5;

bool Init(const core::Configuration& config, std::uint32_t flags)
{
    const auto rate = static_cast<std::uint32_t>(config.BassDevice_Freq);
    return BASS_Init(config.Global_OutputDevice, rate, flags, nullptr, nullptr) != 0;
}

std::string CannotInitialize()
{
    return "Can't initialize digital sound system (error code: " + std::to_string(BASS_ErrorGetCode()) + ")\n";
}

bool OpenDevice(core::MessageBoxes& messages, core::Configuration& config)
{
    if (Init(config, BASS_DEVICE_LATENCY)) {
        return true;
    }
    if (BASS_ErrorGetCode() == BASS_ERROR_DEVICE && config.Global_OutputDevice != kDefaultDevice) {
        config.Global_OutputDevice = kDefaultDevice;
        return OpenDevice(messages, config);
    }
    messages.Show(CannotInitialize() + "The program will try now to initialize the audio using 16 bits at 44100 Hz",
                  core::Icon::Exclamation, "Error");
    config.BassDevice_Freq = kSafeRate;
    if (Init(config, 0)) {
        return true;
    }
    messages.Show(CannotInitialize() + "The program will now exit", core::Icon::Critical, "Error");
    return false;
}

} // namespace

bool BassStartDevice(core::MessageBoxes& messages, core::Configuration& config)
{
    if (BASS_GetVersion() >> 16 != kGeneration) {
        messages.Show("An incorrect version of BASS.DLL was loaded", core::Icon::Critical);
        return false;
    }
    if (!OpenDevice(messages, config)) {
        return false;
    }
    config.Global_OutputDevice = static_cast<std::int16_t>(BASS_GetDevice());
    BASS_INFO info{};
    BASS_GetInfo(&info);
    if (config.BassBuffer_LengthMS == kDeviceMinimum) {
        constexpr std::uint32_t kGreatest = std::numeric_limits<std::int16_t>::max();
        config.BassBuffer_LengthMS = static_cast<std::int16_t>(std::min(info.minbuf, kGreatest));
    }
    BassApplyBufferConfig(config);
    BASS_SetConfig(BASS_CONFIG_CURVE_VOL, 0);
    BassReadLatency(config);
    return true;
}

void BassReadLatency(core::Configuration& config)
{
    BASS_INFO info{};
    if (BASS_GetInfo(&info)) {
        config.OutputLatencyMS = static_cast<std::int32_t>(info.latency);
    }
}

void BassApplyBufferConfig(core::Configuration& config)
{
    config.BassBuffer_LengthMS = std::max(config.BassBuffer_LengthMS, kShortestBufferMS);
    const std::int32_t update = std::max(core::RoundToInt(config.BassBuffer_LengthMS / 2.0), kShortestUpdateMS);
    BASS_SetConfig(BASS_CONFIG_BUFFER, static_cast<std::uint32_t>(config.BassBuffer_LengthMS));
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, static_cast<std::uint32_t>(update));
}

} // namespace velmora::audio
