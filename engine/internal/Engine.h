#pragma once

#include "engine/internal/EngineTables.h"
#include "engine/internal/PlaybackClock.h"
#include "engine/internal/StreamCopier.h"

#include <cstdint>

namespace velmora::engine {

struct MetronomeSetting {
    bool enabled = false;
    double periodMS = 0;
    std::uint32_t streamHandle = 0;
};

/// What stands behind the library's entry points. Interface thread, but for what its parts say.
class Engine {
public:
    static Engine& Get();

    /// Hears the device's heartbeat from now on.
    void Start();
    /// Empties everything and puts the clock back to 0.
    void Stop();
    /// The device's rate in Hz; 44100 while there is none.
    std::int32_t Rate() const;

    EngineTables tables;
    PlaybackClock clock;
    StreamCopier copier;
    MetronomeSetting metronome;
};

} // namespace velmora::engine
