#pragma once

#include "core/ClassIds.h"
#include "core/MsgParametersClass.h"

#include <cstdint>
#include <functional>

namespace velmora::core {

/// An endpoint of the bus: hands each message to its owner and knows whether the owner is inside one.
///
/// An owner that also sends asks `Busy()` before it sends on a control's change, so that a control moved by a message
/// sends none. Interface thread only.
class MsgHandlerClass {
public:
    using MsgReceived = std::function<void(std::int32_t SenderID, std::int32_t MsgID, MsgParametersClass& Params)>;

    MsgHandlerClass(ClassIdCounter& ids, MsgReceived received);
    MsgHandlerClass(const MsgHandlerClass&) = delete;
    MsgHandlerClass& operator=(const MsgHandlerClass&) = delete;

    core::ClassID ClassID() const { return m_classID; }
    bool Busy() const { return m_busyCount > 0; }
    std::int32_t BusyCount() const { return m_busyCount; }

    /// Drops messages of `senderID` from now on.
    void IgnoreSender(std::int32_t senderID);
    void PassMsg(std::int32_t SenderID, std::int32_t MsgID, MsgParametersClass& Params);

    /// The owner goes: nothing reaches it any more, and the bus uses the row again once nothing is being delivered.
    /// May be called from inside `MsgReceived`.
    void Detach();
    bool Detached() const { return m_detached; }

private:
    friend class MsgSenderClass;

    core::ClassID m_classID;
    MsgReceived m_received;
    bool m_ignoreSender = false;
    std::int32_t m_ignoredSenderID = -1;
    std::int32_t m_busyCount = 0;
    bool m_detached = false;
    /// The innermost delivery that has served this endpoint; the bus's own mark.
    std::uint64_t m_servedBy = 0;
};

} // namespace velmora::core
