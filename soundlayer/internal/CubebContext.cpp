#include "soundlayer/internal/CubebContext.h"

#include <alsa/asoundlib.h>
#include <cubeb/cubeb.h>

namespace velmora::soundlayer {

namespace {

constexpr const char* kProgram = "Velmora";

std::string Text(const char* text)
{
    return text ? text : "";
}

/// ALSA's "null" takes sound as fast as it comes: no clock, and a core burnt.
bool TakesWithoutClock(const char* alsaName)
{
    snd_pcm_t* pcm = nullptr;
    if (snd_pcm_open(&pcm, alsaName, SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK) < 0) {
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

std::vector<SystemOutput> ListOutputs(cubeb& context)
{
    cubeb_device_collection found{};
    if (cubeb_enumerate_devices(&context, CUBEB_DEVICE_TYPE_OUTPUT, &found) != CUBEB_OK) {
        return {};
    }
    const bool alsa = BackendOf(context) == "alsa";
    std::vector<SystemOutput> outputs;
    for (std::size_t i = 0; i < found.count; ++i) {
        const cubeb_device_info& device = found.device[i];
        if (device.state != CUBEB_DEVICE_STATE_ENABLED || (alsa && TakesWithoutClock(device.device_id))) {
            continue;
        }
        const bool isDefault = (device.preferred & CUBEB_DEVICE_PREF_MULTIMEDIA) != 0;
        outputs.push_back({device.devid, Text(device.device_id), Text(device.friendly_name), isDefault});
    }
    cubeb_device_collection_destroy(&context, &found);
    return outputs;
}

} // namespace velmora::soundlayer
