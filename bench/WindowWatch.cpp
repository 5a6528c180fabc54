#include "bench/WindowWatch.h"

#include <QMetaEnum>
#include <algorithm>
#include <cstdio>
#include <utility>

#include <xcb/xcb.h>

namespace velmora::bench {
namespace {

constexpr std::chrono::milliseconds kAskEach{2};
/// Shift, which no window takes for a command.
constexpr xcb_keycode_t kKey = 50;

std::string NameOf(const QObject* receiver, QEvent::Type type)
{
    const char* name = QMetaEnum::fromType<QEvent::Type>().valueToKey(type);
    return std::string(name != nullptr ? name : "event") + " to " + receiver->metaObject()->className();
}

} // namespace

/// Receives the questions of the asking thread where the interface receives its events.
class WatchedApplication::Heart final : public QObject {
public:
    explicit Heart(WatchedApplication& application)
        : m_application(application)
    {
    }

    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        m_application.Beat();
        return true;
    }

private:
    WatchedApplication& m_application;
};

WatchedApplication::WatchedApplication(int& argc, char** argv)
    : QApplication(argc, argv)
    , m_heart(std::make_unique<Heart>(*this))
{
}

WatchedApplication::~WatchedApplication()
{
    m_end = true;
    if (m_asking.joinable()) {
        m_asking.join();
    }
}

void WatchedApplication::StartWatch()
{
    m_lastServed = Clock::now();
    m_asking = std::thread([this] {
        while (!m_end) {
            if (!m_asked) {
                m_askedAt = Clock::now();
                m_asked = true;
                postEvent(m_heart.get(), new QEvent(QEvent::User));
            }
            std::this_thread::sleep_for(kAskEach);
        }
    });
}

WatchedApplication::Report WatchedApplication::TakeReport()
{
    return std::exchange(m_report, {});
}

void WatchedApplication::Beat()
{
    const Clock::time_point askedAt = m_askedAt;
    m_lastServed = Clock::now();
    m_report.held = std::max(m_report.held, Milliseconds(m_lastServed - askedAt));
    QWidget* front = activeModalWidget() != nullptr ? activeModalWidget() : activeWindow();
    if ((m_paintTarget == nullptr || !m_paintTarget->isVisible()) && front != nullptr && front->isVisible()) {
        m_paintTarget = front;
        m_paintAskedAt = askedAt;
        front->update(0, front->height() - 1, 1, 1);
    }
    m_asked = false;
}

void WatchedApplication::NotePaint(const QObject* receiver)
{
    if (m_paintTarget != nullptr && receiver == m_paintTarget) {
        m_report.unpainted = std::max(m_report.unpainted, Milliseconds(Clock::now() - m_paintAskedAt));
        m_paintTarget.clear();
    }
}

void WatchedApplication::PressKey(const QWindow& window)
{
    xcb_connection_t* server = nativeInterface<QNativeInterface::QX11Application>()->connection();
    xcb_key_press_event_t press{};
    press.response_type = XCB_KEY_PRESS;
    press.detail = kKey;
    press.event = static_cast<xcb_window_t>(window.winId());
    press.same_screen = 1;
    xcb_send_event(server, 0, press.event, XCB_EVENT_MASK_KEY_PRESS, reinterpret_cast<const char*>(&press));
    xcb_flush(server);
    m_keyPressed = true;
}

bool WatchedApplication::notify(QObject* receiver, QEvent* event)
{
    // Both may be gone afterwards.
    const QEvent::Type type = event->type();
    const QPointer<QObject> alive = receiver;
    const auto begun = Clock::now();
    const std::size_t reported = m_report.longEvents.size();
    const bool result = QApplication::notify(receiver, event);
    const Milliseconds alone = Clock::now() - std::max(begun, m_lastServed);
    if (m_asking.joinable() && alone > kLong) {
        std::string name = alive ? NameOf(receiver, type) : "event to an object that is gone";
        name += ", " + std::to_string(alone.count()) + " ms";
        auto& longEvents = m_report.longEvents;
        if (reported < longEvents.size()) {
            name += " < " + longEvents.back();
            longEvents.resize(reported);
        }
        longEvents.push_back(std::move(name));
    }
    if (type == QEvent::UpdateRequest) {
        NotePaint(receiver);
    }
    if (onReady && alive) {
        auto* window = qobject_cast<QWindow*>(receiver);
        if (!m_keyPressed && type == QEvent::Expose && window != nullptr && window->isExposed()) {
            PressKey(*window);
        } else if (m_keyPressed && type == QEvent::KeyPress) {
            std::exchange(onReady, nullptr)();
        }
    }
    return result;
}

void PrintTimeAndLeave()
{
    std::printf("%.6f\n", std::chrono::duration<double>(Clock::now().time_since_epoch()).count());
    for (QWidget* window : QApplication::topLevelWidgets()) {
        window->close();
    }
    QApplication::quit();
}

} // namespace velmora::bench
