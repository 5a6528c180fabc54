#include "core/MsgSenderClass.h"

#include "core/MsgIds.h"
#include "core/Units.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace velmora::core {
namespace {

constexpr std::size_t kFirstRows = 21;
constexpr std::size_t kMoreRows = 20;

/// Numbers the deliveries of the whole process, so that an endpoint on two buses is marked right.
std::uint64_t g_lastDelivery = 0;

bool IsStructural(std::int32_t msgID)
{
    return msgID == Msg_DeleteChannel || msgID == Msg_Recorder_Start;
}

} // namespace

/// One call of `SendMsg`: marks the endpoints that it serves, and takes its marks back at its end.
class MsgSenderClass::Delivery {
public:
    explicit Delivery(MsgSenderClass& bus)
        : m_bus(bus)
        , m_number(++g_lastDelivery)
        , m_firstServed(bus.m_served.size())
    {
        ++m_bus.m_depth;
    }

    ~Delivery()
    {
        while (m_bus.m_served.size() > m_firstServed) {
            const Served last = std::move(m_bus.m_served.back());
            m_bus.m_served.pop_back();
            last.handler->m_servedBy = last.earlierMark;
        }
        if (--m_bus.m_depth == 0) {
            m_bus.FreeDetachedRows();
        }
    }

    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    /// The endpoint whose turn it is, marked as served; null when there is none left.
    MsgHandlerClass* Next()
    {
        if (m_version != m_bus.m_version) {
            m_bus.SortRows();
            m_version = m_bus.m_version;
            m_at = 0;
        }
        for (; m_at < m_bus.m_order.size(); ++m_at) {
            const std::shared_ptr<MsgHandlerClass>& handler = m_bus.m_rows[m_bus.m_order[m_at]].Handler;
            if (handler->m_detached || handler->m_servedBy == m_number) {
                continue;
            }
            m_bus.m_served.push_back({handler, handler->m_servedBy});
            handler->m_servedBy = m_number;
            return handler.get();
        }
        return nullptr;
    }

private:
    MsgSenderClass& m_bus;
    const std::uint64_t m_number;
    const std::size_t m_firstServed;
    std::uint64_t m_version = UINT64_MAX;
    std::size_t m_at = 0;
};

MsgSenderClass::MsgSenderClass(ClassIdCounter& ids, PendingEvents& pendingEvents)
    : m_classID(ids.Draw())
    , m_pendingEvents(pendingEvents)
    , m_rows(kFirstRows)
{
}

void MsgSenderClass::Add_MsgHandlerOBJ(std::int32_t Priority, std::shared_ptr<MsgHandlerClass> Handler)
{
    if (m_closed || !Handler) {
        return;
    }
    if (m_depth == 0) {
        FreeDetachedRows();
    }
    auto row = std::ranges::find(m_rows, false, &Row::Active);
    if (row == m_rows.end()) {
        const std::size_t used = m_rows.size();
        m_rows.resize(used + kMoreRows);
        row = m_rows.begin() + static_cast<std::ptrdiff_t>(used);
    }
    row->Active = true;
    row->HandlerClassID = Handler->ClassID();
    row->Priority = Priority;
    row->Handler = std::move(Handler);
    ++m_activeRows;
    ++m_version;
}

void MsgSenderClass::Set_OBJ_Priority(std::int32_t ClassID, std::int32_t Priority)
{
    for (Row& row : m_rows) {
        if (row.Active && RoundToInt(row.HandlerClassID) == ClassID) {
            row.Priority = Priority;
            ++m_version;
        }
    }
}

void MsgSenderClass::Remove_MsgHandleOBJ(std::int32_t ClassID)
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].Active && RoundToInt(m_rows[i].HandlerClassID) == ClassID) {
            FreeRow(i);
        }
    }
}

void MsgSenderClass::SendMsg(std::int32_t SenderID, std::int32_t MsgID, MsgParametersClass& Params, bool DoEvents)
{
    const std::shared_ptr<MsgSenderClass> alive = weak_from_this().lock();
    if (m_depth > 0 && IsStructural(MsgID)) {
        WhenIdle(
            [this, SenderID, MsgID, copy = Params, DoEvents]() mutable { SendMsg(SenderID, MsgID, copy, DoEvents); });
        return;
    }
    try {
        Delivery delivery(*this);
        do {
            if (DoEvents && m_activeRows > 0) {
                m_pendingEvents.Run();
            }
            MsgHandlerClass* endpoint = delivery.Next();
            if (!endpoint) {
                break;
            }
            endpoint->PassMsg(SenderID, MsgID, Params);
        } while (!Params.CancelDelivery);
    } catch (...) {
        RunWaiting();
        throw;
    }
    RunWaiting();
}

void MsgSenderClass::WhenIdle(std::function<void()> command)
{
    if (m_closed) {
        return;
    }
    if (m_depth == 0) {
        command();
        return;
    }
    m_waiting.push_back(std::move(command));
}

void MsgSenderClass::Close()
{
    m_closed = true;
    m_waiting.clear();
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].Active) {
            FreeRow(i);
        }
    }
}

void MsgSenderClass::FreeRow(std::size_t index)
{
    // What the endpoint's end sets off finds the row free already.
    const Row released = std::exchange(m_rows[index], Row{});
    --m_activeRows;
    ++m_version;
}

void MsgSenderClass::FreeDetachedRows()
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].Active && m_rows[i].Handler->Detached()) {
            FreeRow(i);
        }
    }
}

void MsgSenderClass::SortRows()
{
    if (m_sortedVersion == m_version) {
        return;
    }
    m_order.clear();
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].Active && m_rows[i].Priority >= 0) {
            m_order.push_back(i);
        }
    }
    std::ranges::stable_sort(m_order, std::ranges::greater{}, [this](std::size_t i) { return m_rows[i].Priority; });
    m_sortedVersion = m_version;
}

void MsgSenderClass::RunWaiting()
{
    if (m_depth > 0 || m_runningWaiting) {
        return;
    }
    m_runningWaiting = true;
    std::exception_ptr failure;
    while (!m_waiting.empty()) {
        const std::function<void()> command = std::move(m_waiting.front());
        m_waiting.pop_front();
        try {
            command();
        } catch (...) {
            failure = failure ? failure : std::current_exception();
        }
    }
    m_runningWaiting = false;
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace velmora::core
