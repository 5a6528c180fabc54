#include "soundlayer/internal/CubebContext.h"

#include <algorithm>

#include <alsa/asoundlib.h>
#include <cubeb/cubeb.h>

namespace velmora::soundlayer {

namespace {

constexpr const char* kProgram = "Velmora";

std::string Text(const char* text)
{
    return text ? text : "";
}

/// ALSA's "null" takes and gives sound as fast as one asks: no clock, and a core burnt.
bool HasNoClock(const char* alsaName, Direction direction)
{
    snd_pcm_t* pcm = nullptr;
    const auto stream = direction == Direction::Output ? SND_PCM_STREAM_PLAYBACK : SND_PCM_STREAM_CAPTURE;
    if (snd_pcm_open(&pcm, alsaName, stream, SND_PCM_NONBLOCK) < 0) {
        return false;
    }
    const bool null = snd_pcm_type(pcm) == SND_PCM_TYPE_NULL;
    snd_pcm_close(pcm);
    return null;
}

} // namespace

void CubebDeleter::operator()(cubeb* context) const
{
    cubeb_destroy(context);
}

void CubebDeleter::operator()(cubeb_stream* stream) const
{
    cubeb_stream_destroy(stream);
}

CubebContext OpenCubeb(const std::string& backend)
{
    cubeb* context = nullptr;
    if (cubeb_init(&context, kProgram, backend.empty() ? nullptr : backend.c_str()) != CUBEB_OK) {
        return nullptr;
    }
    CubebContext opened(context);
    // A backend that is not there gives way to another one unasked.
    if (!backend.empty() && BackendOf(*opened) != backend) {
        return nullptr;
    }
    return opened;
}

std::string BackendOf(cubeb& context)
{
    return Text(cubeb_get_backend_id(&context));
}

std::vector<SystemDevice> ListDevices(cubeb& context, Direction direction)
{
    cubeb_device_collection found{};
    const auto type = direction == Direction::Output ? CUBEB_DEVICE_TYPE_OUTPUT : CUBEB_DEVICE_TYPE_INPUT;
    if (cubeb_enumerate_devices(&context, type, &found) != CUBEB_OK) {
        return {};
    }
    const bool alsa = BackendOf(context) == "alsa";
    std::vector<SystemDevice> devices;
    for (std::size_t i = 0; i < found.count; ++i) {
        const cubeb_device_info& device = found.device[i];
        if (device.state != CUBEB_DEVICE_STATE_ENABLED || (alsa && HasNoClock(device.device_id, direction))) {
            continue;
        }
        const bool isDefault = (device.preferred & CUBEB_DEVICE_PREF_MULTIMEDIA) != 0;
        devices.push_back(
            {device.devid, Text(device.device_id), Text(device.friendly_name), device.default_rate, isDefault});
    }
    cubeb_device_collection_destroy(&context, &found);
    return devices;
}

const SystemDevice* FindDevice(const std::vector<SystemDevice>& devices, const std::string& id)
{
    const auto found =
        std::ranges::find_if(devices, [&id](const SystemDevice& device) { return id.empty() || device.id == id; });
    return found == devices.end() ? nullptr : &*found;
}

} // namespace velmora::soundlayer
