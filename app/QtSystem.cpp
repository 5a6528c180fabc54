#include "app/QtSystem.h"

#include "app/QtText.h"
#include "core/Paths.h"
#include "core/ProgramFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QStandardPaths>
#include <QTimerEvent>
#include <utility>

namespace velmora::app {
namespace {

constexpr qint64 kLeastBetweenMS = 10;

class QtTimer final : public QObject, public core::Timer {
public:
    QtTimer(std::chrono::milliseconds interval, bool oneShot, std::function<void()> tick)
        : m_interval(interval)
        , m_oneShot(oneShot)
        , m_tick(std::move(tick))
    {
    }

    void Start() override
    {
        Stop();
        m_id = startTimer(m_interval, Qt::PreciseTimer);
    }

    void Stop() override
    {
        if (m_id != 0) {
            killTimer(std::exchange(m_id, 0));
        }
    }

    bool Running() const override { return m_id != 0; }

private:
    void timerEvent(QTimerEvent* event) override
    {
        if (event->timerId() != m_id) {
            return;
        }
        if (m_oneShot) {
            Stop();
        }
        // The tick may destroy this timer.
        const auto tick = m_tick;
        tick();
    }

    std::chrono::milliseconds m_interval;
    bool m_oneShot;
    std::function<void()> m_tick;
    int m_id = 0;
};

} // namespace

std::unique_ptr<core::Timer> QtTimers::Create(std::chrono::milliseconds interval, bool oneShot,
                                              std::function<void()> tick)
{
    return std::make_unique<QtTimer>(interval, oneShot, std::move(tick));
}

void QtPendingEvents::Run()
{
    if (m_running || (m_sinceLast.isValid() && m_sinceLast.elapsed() < kLeastBetweenMS)) {
        return;
    }
    m_running = true;
    QCoreApplication::processEvents();
    m_running = false;
    m_sinceLast.start();
}

std::string DesktopFolders::Get(core::ShellFolder folder) const
{
    const auto where = [](QStandardPaths::StandardLocation location) {
        return core::InternalPath(FromQt(QStandardPaths::writableLocation(location)));
    };
    switch (folder) {
    case core::ShellFolder::MyDocuments:
        return where(QStandardPaths::DocumentsLocation);
    case core::ShellFolder::ApplicationData:
        return where(QStandardPaths::GenericConfigLocation);
    case core::ShellFolder::LocalApplicationData:
        return where(QStandardPaths::GenericDataLocation);
    case core::ShellFolder::CommonApplicationData:
        return core::InternalPath("/usr/share");
    }
    return {};
}

std::string DesktopFolders::AppExe() const
{
    return core::ProgramFilesFolder();
}

bool DesktopTrash::Move(std::string_view path)
{
    const QString from = ToQt(core::PosixPath(path));
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    // Without its folder the trash ends up in the current one.
    if (from.isEmpty() || !QDir().mkpath(data + "/Trash/files") || !QDir().mkpath(data + "/Trash/info")) {
        return false;
    }
    QFile file(from);
    if (!file.moveToTrash()) {
        return false;
    }
    if (QFileInfo(file.fileName()).isAbsolute()) {
        return true;
    }
    QDir().rename(file.fileName(), from);
    return false;
}

} // namespace velmora::app
