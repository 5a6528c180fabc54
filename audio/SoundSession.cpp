#include "audio/SoundSession.h"

#include "audio/DeviceStart.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"

namespace velmora::audio {
namespace {

constexpr std::int32_t kEngineVersion = 1001;

bool EngineFits(core::MessageBoxes& messages)
{
    const std::int32_t version = GetDLLVersion();
    if (version == kEngineVersion) {
        return true;
    }
    messages.Show(version == -1 ? "Invalid Bass version for audioplayer.dll" : "Invalid version of audioplayer.dll",
                  core::Icon::Critical);
    return false;
}

} // namespace

std::unique_ptr<SoundSession> SoundSession::Start(core::Environment& environment)
{
    core::MessageBoxes& messages = environment.ports.messages;
    if (!EngineFits(messages)) {
        return nullptr;
    }
    initdata();
    if (!BassStartDevice(messages, environment.config)) {
        freedata();
        return nullptr;
    }
    return std::unique_ptr<SoundSession>(new SoundSession);
}

SoundSession::~SoundSession()
{
    freedata();
    BASS_Free();
}

} // namespace velmora::audio
