#include "engine/internal/Engine.h"

#include "soundlayer/soundlayer.h"

namespace velmora::engine {

namespace {

/// [RT]
std::uint32_t OnHeartbeat(std::uint32_t frames, SOUND_USER user)
{
    reinterpret_cast<Engine*>(user)->clock.Advance(frames);
    return frames;
}

} // namespace

Engine& Engine::Get()
{
    static Engine engine;
    return engine;
}

void Engine::Start()
{
    Sound_SetHeartbeat(&OnHeartbeat, reinterpret_cast<SOUND_USER>(this));
}

void Engine::Stop()
{
    Sound_SetHeartbeat(nullptr, 0);
    clock.Pause();
    clock.SetPositionMS(0, Rate());
    copier.Clear();
    tables.ClearChannels();
    tables.ClearEvents();
    metronome = {};
}

std::int32_t Engine::Rate() const
{
    constexpr std::int32_t kDefaultRate = 44100;
    BASS_INFO info{};
    return BASS_GetInfo(&info) ? static_cast<std::int32_t>(info.freq) : kDefaultRate;
}

} // namespace velmora::engine
