#pragma once

#include "core/Environment.h"
#include "core/MsgParametersClass.h"

#include <cstdint>

namespace velmora::project {

class Channel_Class;

/// Applies the messages that change a channel's effects, each in one edit of the sound. A message for an unknown
/// chain or effect does nothing.
class ChannelEffects {
public:
    ChannelEffects(core::Environment& environment, Channel_Class& channel);

    /// False when the message is not about effects. `params` names this channel.
    bool Handle(std::int32_t msgID, core::MsgParametersClass& params);

private:
    bool EditChain(std::int32_t msgID, const core::MsgParametersClass& params);
    void LoadPack(core::MsgParametersClass& params);
    void SavePack(core::MsgParametersClass& params);

    core::Environment& m_environment;
    Channel_Class& m_channel;
};

} // namespace velmora::project
