#pragma once

#include "core/ClassIds.h"
#include "core/MsgHandlerClass.h"
#include "core/Ports.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace velmora::core {

/// The sender of what no endpoint sends.
inline constexpr std::int32_t kNoSender = -1;

/// The bus: every change of the document travels over it as a numbered message, in one call stack, from the endpoint
/// of the highest priority to that of the lowest; equal priorities in the order of their rows. Interface thread only.
///
/// Before each endpoint is chosen the table is looked at afresh: one that is registered during a delivery takes part
/// in it, one that is removed does not. No endpoint is served twice by a delivery, nor one of a priority below 0 ever.
/// A structural command (`Msg_DeleteChannel`, `Msg_Recorder_Start`) that is sent while a message is being delivered
/// waits, as a copy, until the outermost delivery has ended; its sender gets no out-fields.
/// Ownership: held by a `shared_ptr`. `SendMsg` keeps the bus and the endpoint that it serves alive.
/// Cost: without a change of the table, a delivery looks at each row once and allocates nothing. Pending interface
/// events run before each endpoint, through a port that bounds how often.
class MsgSenderClass : public std::enable_shared_from_this<MsgSenderClass> {
public:
    MsgSenderClass(ClassIdCounter& ids, PendingEvents& pendingEvents);
    MsgSenderClass(const MsgSenderClass&) = delete;
    MsgSenderClass& operator=(const MsgSenderClass&) = delete;

    core::ClassID ClassID() const { return m_classID; }

    /// Takes the first free row; the table grows by 20 rows when there is none.
    void Add_MsgHandlerOBJ(std::int32_t Priority, std::shared_ptr<MsgHandlerClass> Handler);
    void Set_OBJ_Priority(std::int32_t ClassID, std::int32_t Priority);
    void Remove_MsgHandleOBJ(std::int32_t ClassID);

    /// Delivers `Params` and returns when that has ended; a structural command inside a delivery is queued instead.
    /// A failure in a receiver travels to the caller, and the remaining endpoints are not served.
    void SendMsg(std::int32_t SenderID, std::int32_t MsgID, MsgParametersClass& Params, bool DoEvents = true);

    /// Runs `command` now, or once the outermost delivery has ended. Commands that wait run in their order.
    void WhenIdle(std::function<void()> command);
    bool Delivering() const { return m_depth > 0; }

    /// The project ends: lets go of every endpoint and drops the commands that wait. What is sent afterwards reaches
    /// nobody, and running deliveries end.
    void Close();

private:
    struct Row {
        bool Active = false;
        core::ClassID HandlerClassID = 0;
        std::int32_t Priority = 0;
        std::shared_ptr<MsgHandlerClass> Handler;
    };
    struct Served {
        std::shared_ptr<MsgHandlerClass> handler;
        std::uint64_t earlierMark;
    };
    class Delivery;

    void FreeRow(std::size_t index);
    void FreeDetachedRows();
    void SortRows();
    void RunWaiting();

    core::ClassID m_classID;
    PendingEvents& m_pendingEvents;
    std::vector<Row> m_rows;
    std::int32_t m_activeRows = 0;
    /// Rows of priority 0 and above in the order of delivery, as of `m_sortedVersion`.
    std::vector<std::size_t> m_order;
    /// Counts the changes of the table.
    std::uint64_t m_version = 0;
    std::uint64_t m_sortedVersion = 0;
    /// What the running deliveries have served, the innermost one's last.
    std::vector<Served> m_served;
    std::deque<std::function<void()>> m_waiting;
    std::int32_t m_depth = 0;
    bool m_runningWaiting = false;
    bool m_closed = false;
};

} // namespace velmora::core
