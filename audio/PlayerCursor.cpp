#include "audio/PlayerCursor.h"

#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "engine/audioplayer.h"
#include "project/ProjectFile_Class.h"

#include <algorithm>
#include <chrono>

namespace velmora::audio {

namespace {
constexpr std::chrono::milliseconds kInterval{50};
} // namespace

PlayerCursor::PlayerCursor(core::Environment& environment, project::ProjectFile_Class& project)
    : m_environment(environment)
    , m_project(project)
    , m_timer(environment.ports.timers.Create(kInterval, false, [this] { Tick(); }))
{
}

void PlayerCursor::Tick()
{
    const std::int32_t pos = player_GetTimePos();
    if (pos == m_lastTimerPosMS) {
        return;
    }
    m_lastTimerPosMS = pos;
    core::MsgSenderClass& bus = *m_project.MsgSender;
    core::MsgParametersClass params;
    const double length = m_project.util_GetProjectLength();
    if (pos > length && !m_project.Recorder->isRecording() && AutoStopEnabled) {
        bus.SendMsg(core::kNoSender, core::Msg_Player_Stop, params);
        if (player_GetTimePos() > length) {
            core::MsgParametersClass range;
            range.PlayFromMS = core::kUnset;
            range.PlayToMS = core::RoundToInt(length);
            bus.SendMsg(core::kNoSender, core::Msg_Player_SetRange, range);
        }
        return;
    }
    params.PlayerPosMS = std::max(pos - m_environment.config.BassBuffer_LengthMS, 0);
    bus.SendMsg(core::kNoSender, core::Msg_Player_Tick, params);
}

} // namespace velmora::audio
