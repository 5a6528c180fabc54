#pragma once

#include "core/Ports.h"

#include <QElapsedTimer>
#include <string>
#include <string_view>

/// The ports that reach the system: time, the event loop, folders, trash.
namespace velmora::app {

class QtTimers final : public core::Timers {
public:
    std::unique_ptr<core::Timer> Create(std::chrono::milliseconds interval, bool oneShot,
                                        std::function<void()> tick) override;
};

/// Lets events run at most once in 10 ms, so that a message costs microseconds; not while they run already.
class QtPendingEvents final : public core::PendingEvents {
public:
    void Run() override;

private:
    QElapsedTimer m_sinceLast;
    bool m_running = false;
};

/// The user's folders as the desktop names them.
class DesktopFolders final : public core::ShellFolders {
public:
    std::string Get(core::ShellFolder folder) const override;
    std::string AppExe() const override;
};

class DesktopTrash final : public core::Trash {
public:
    bool Move(std::string_view path) override;
};

} // namespace velmora::app
