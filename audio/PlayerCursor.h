#pragma once

#include "core/Environment.h"
#include "core/Units.h"

#include <cstdint>
#include <memory>

namespace velmora::core {
class MsgSenderClass;
}
namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::audio {

/// The timer behind the playback cursor: every 50 ms while playing it tells the position that is heard, and stops
/// playback behind the project's end. Interface thread only.
class PlayerCursor {
public:
    PlayerCursor(core::Environment& environment, project::ProjectFile_Class& project);

    /// Playback stops by itself past the end of the project.
    bool AutoStopEnabled = true;

    void Start() { m_timer->Start(); }
    void Stop() { m_timer->Stop(); }

private:
    void Tick();

    core::Environment& m_environment;
    project::ProjectFile_Class& m_project;
    std::int32_t m_lastTimerPosMS = core::kUnset;
    std::unique_ptr<core::Timer> m_timer;
};

} // namespace velmora::audio
