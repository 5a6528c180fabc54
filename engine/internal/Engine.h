#pragma once

#include "engine/internal/MetronomeClick.h"
#include "engine/internal/MixSide.h"
#include "engine/internal/Planner.h"
#include "engine/internal/StreamCopier.h"

#include <cstdint>

namespace velmora::engine {

/// What stands behind the library's entry points. Interface thread, but for what its parts say.
class Engine {
public:
    Engine();
    ~Engine();
    /// The one behind the entry points.
    static Engine& Get();

    /// Hears the device's heartbeat from now on.
    void Start();
    /// Empties everything and puts the clock back to 0.
    void Stop();

    void Play();
    void Pause();
    void SetTimePos(std::int32_t positionMS);
    std::int32_t TimePos() const;
    /// As the entry point `player_GetStamp`.
    bool MixedFrameOf(std::int32_t& positionMS, std::uint64_t& mixedFrame) const;
    void SetMetronome(bool enabled, double periodMS, std::uint32_t stream);

    MixSide mixSide;
    Planner planner;
    StreamCopier copier;

private:
    MetronomeClick m_metronome;
};

} // namespace velmora::engine
