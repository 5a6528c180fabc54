#pragma once

#include "core/MsgParametersClass.h"

#include <cstdint>
#include <memory>

namespace velmora::project {

class CDC_Event_Wave_Class;
class ChannelDataClass;
class Channel_Class;
class ProjectFile_Class;

/// Applies the edits of a channel's clips: adding, deleting, resizing, moving, splitting, gain and fades.
///
/// An edit of an unknown event does nothing. Fields of the message that an edit limits are written back, so that
/// whoever hears it later sees what was done.
class ChannelEdits {
public:
    ChannelEdits(ProjectFile_Class& project, Channel_Class& channel);

    /// False when the message is no edit of clips. `params` names this channel.
    bool Handle(std::int32_t msgID, core::MsgParametersClass& params);

private:
    ChannelDataClass& Events();
    std::shared_ptr<CDC_Event_Wave_Class> WaveEvent(std::int32_t eventID);
    void Add(core::MsgParametersClass& params);
    void ResizeRight(const core::MsgParametersClass& params);
    void ResizeLeft(core::MsgParametersClass& params);
    void Move(const core::MsgParametersClass& params);
    void Split(core::MsgParametersClass& params);
    void SetGain(const core::MsgParametersClass& params);
    void SetFadeIn(core::MsgParametersClass& params);
    void SetFadeOut(core::MsgParametersClass& params);
    /// Moves the other fade out of the way of the one that is being set.
    void Push(std::int32_t msgID, std::int32_t eventID, double value);

    ProjectFile_Class& m_project;
    Channel_Class& m_channel;
};

} // namespace velmora::project
