#pragma once

#include "core/ClassIds.h"
#include "core/MsgHandlerClass.h"
#include "core/Ports.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace velmora::core {

/// The bus: every change of the document travels over it as a numbered message, in one call stack, from the endpoint
/// of the highest priority to that of the lowest; equal priorities in the order of their rows. Interface thread only.
///
/// An endpoint registered during a delivery takes part in it if its priority is still ahead or equal. A structural
/// command that arrives while a message is being delivered waits until the outermost delivery has ended.
/// Cost: a row is looked at once a round; pending interface events run through the port, which bounds how often.
class MsgSenderClass : public std::enable_shared_from_this<MsgSenderClass> {
public:
    MsgSenderClass(ClassIdCounter& ids, PendingEvents& pendingEvents);

    core::ClassID ClassID() const { return m_classID; }

    void Add_MsgHandlerOBJ(std::int32_t Priority, std::shared_ptr<MsgHandlerClass> Handler);
    void Set_OBJ_Priority(std::int32_t ClassID, std::int32_t Priority);
    void Remove_MsgHandleOBJ(std::int32_t ClassID);

    /// Delivers `Params` and returns when that has ended; a structural command inside a delivery is queued instead.
    /// A failure in a receiver travels to the caller, and the remaining endpoints are not served.
    void SendMsg(std::int32_t SenderID, std::int32_t MsgID, MsgParametersClass& Params, bool DoEvents = true);

    /// Runs `command` now, or once the outermost delivery has ended.
    void WhenIdle(std::function<void()> command);
    bool Delivering() const { return m_depth > 0; }

private:
    struct Row {
        bool Active = false;
        core::ClassID HandlerClassID = 0;
        std::int32_t Priority = 0;
        std::shared_ptr<MsgHandlerClass> Handler;
    };

    core::ClassID m_classID;
    PendingEvents& m_pendingEvents;
    std::vector<Row> m_rows;
    std::deque<std::function<void()>> m_waiting;
    std::int32_t m_depth = 0;
};

} // namespace velmora::core
