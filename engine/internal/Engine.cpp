#include "engine/internal/Engine.h"

#include "core/Units.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>

namespace velmora::engine {

namespace {

/// [RT]
std::uint32_t OnHeartbeat(std::uint32_t frames, SOUND_USER user)
{
    return reinterpret_cast<MixSide*>(user)->BeforeBlock(frames);
}

} // namespace

Engine::Engine()
    : planner(mixSide)
    , m_metronome(mixSide)
{
}

Engine::~Engine() = default;

Engine& Engine::Get()
{
    static Engine engine;
    return engine;
}

void Engine::Start()
{
    planner.Start();
    Sound_SetHeartbeat(&OnHeartbeat, reinterpret_cast<SOUND_USER>(&mixSide));
}

void Engine::Stop()
{
    Sound_SetHeartbeat(nullptr, 0);
    Pause();
    m_metronome.Set(false, 0, 0, DeviceRate());
    planner.Stop();
    mixSide.clock.SetFrames(0);
    copier.Clear();
}

void Engine::Play()
{
    if (mixSide.clock.Playing()) {
        return;
    }
    Sound_SetAwake(1);
    // The clock starts once the voices at its position are ready, as after a seek.
    mixSide.Play(planner.Seek(planner.Frames()));
}

void Engine::Pause()
{
    mixSide.clock.Pause();
    Sound_SetAwake(0);
}

void Engine::SetTimePos(std::int32_t positionMS)
{
    planner.Seek(core::FrameOfMS(std::max(positionMS, 0), DeviceRate()));
}

std::int32_t Engine::TimePos() const
{
    return PlaybackClock::TimeOf(planner.Frames(), DeviceRate());
}

bool Engine::MixedFrameOf(std::int32_t& positionMS, std::uint64_t& mixedFrame) const
{
    const auto stamp = mixSide.LastStamp();
    if (!stamp) {
        return false;
    }
    if (positionMS == core::kUnset) {
        positionMS = PlaybackClock::TimeOf(stamp->clockFrame, DeviceRate());
    }
    // A clock that stands between two milliseconds left the earlier one before it was held.
    const std::int64_t since = stamp->clockFrame - core::FrameOfMS(positionMS, DeviceRate());
    mixedFrame = static_cast<std::uint64_t>(static_cast<std::int64_t>(stamp->mixedFrame) - since);
    return true;
}

void Engine::SetMetronome(bool enabled, double periodMS, std::uint32_t stream)
{
    m_metronome.Set(enabled, periodMS, stream, DeviceRate());
}

} // namespace velmora::engine
