#include "core/MsgHandlerClass.h"

#include <utility>

namespace velmora::core {

MsgHandlerClass::MsgHandlerClass(ClassIdCounter& ids, MsgReceived received)
    : m_classID(ids.Draw())
    , m_received(std::move(received))
{
}

void MsgHandlerClass::IgnoreSender(std::int32_t senderID)
{
    m_ignoreSender = true;
    m_ignoredSenderID = senderID;
}

void MsgHandlerClass::PassMsg(std::int32_t SenderID, std::int32_t MsgID, MsgParametersClass& Params)
{
    if (m_detached || !m_received || (m_ignoreSender && SenderID == m_ignoredSenderID)) {
        return;
    }
    struct BusyGuard {
        explicit BusyGuard(MsgHandlerClass& theHandler)
            : handler(theHandler)
        {
            ++handler.m_busyCount;
        }
        ~BusyGuard()
        {
            // A function that is running is not destroyed; the last call out does it.
            if (--handler.m_busyCount == 0 && handler.m_detached) {
                handler.m_received = nullptr;
            }
        }
        MsgHandlerClass& handler;
    };
    const BusyGuard guard(*this);
    m_received(SenderID, MsgID, Params);
}

void MsgHandlerClass::Detach()
{
    m_detached = true;
    if (m_busyCount == 0) {
        m_received = nullptr;
    }
}

} // namespace velmora::core
