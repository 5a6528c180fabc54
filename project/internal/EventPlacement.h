#pragma once

#include "core/MsgParametersClass.h"

#include <cstdint>

namespace velmora::project {

class CDC_Event_Wave_Class;
class ProjectFile_Class;

/// Brings events into channels: an audio file as a new event, an event of one channel into another.
class EventPlacement {
public:
    explicit EventPlacement(ProjectFile_Class& project);

    /// Makes a wave event from an audio file and sends it on its way; `params` goes no further. A file that does not
    /// open as audio is reported and changes nothing.
    void AddWave(core::MsgParametersClass& params);
    /// Moves an event to the same time in another channel and writes its new id into `params`.
    void MoveVertical(core::MsgParametersClass& params);

private:
    /// Deletes what lies wholly under the new event and shortens what reaches into it from the left.
    void MakeRoom(double channelID, double timePos, double length);

    ProjectFile_Class& m_project;
};

} // namespace velmora::project
