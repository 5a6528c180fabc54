#pragma once

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace velmora::bench {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

/// An application that looks on at its own interface thread.
class WatchedApplication final : public QApplication {
public:
    WatchedApplication(int& argc, char** argv);
    ~WatchedApplication() override;

    /// Called once: a window has been painted and a key that was pressed then, on its way over the display's server,
    /// has been answered.
    std::function<void()> onReady;

    /// What the interface thread did since the last call.
    struct Report {
        /// The longest that an event waited for the thread.
        Milliseconds held{};
        /// The longest from a request to draw the window in front anew until it was drawn.
        Milliseconds unpainted{};
        /// The events that held the thread longer than `kLong`, with those inside them that did so.
        std::vector<std::string> longEvents;
    };
    static constexpr std::chrono::milliseconds kLong{50};

    /// From here on a thread asks, each 2 ms.
    void StartWatch();
    Report TakeReport();

    bool notify(QObject* receiver, QEvent* event) override;

private:
    class Heart;

    void PressKey(const QWindow& window);
    void Beat();
    void NotePaint(const QObject* receiver);

    std::unique_ptr<Heart> m_heart;
    std::thread m_asking;
    std::atomic<bool> m_end{false};
    std::atomic<bool> m_asked{false};
    std::atomic<Clock::time_point> m_askedAt{};
    QPointer<QWidget> m_paintTarget;
    Clock::time_point m_paintAskedAt;
    Clock::time_point m_lastServed;
    bool m_keyPressed = false;
    Report m_report;
};

/// For `onReady`: prints the clock in s and closes all windows.
void PrintTimeAndLeave();

} // namespace velmora::bench
