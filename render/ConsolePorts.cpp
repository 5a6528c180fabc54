#include "render/ConsolePorts.h"

#include "core/Paths.h"
#include "core/ProgramFiles.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <unistd.h>

namespace velmora::render {

namespace {

class SleepingTimer : public core::Timer {
public:
    void Start() override { m_running = true; }
    void Stop() override { m_running = false; }
    bool Running() const override { return m_running; }

private:
    bool m_running = false;
};

/// An absolute folder from the environment, or `fallback` under the home folder.
std::string FolderFromEnvironment(const char* variable, const char* fallback)
{
    const char* value = std::getenv(variable);
    if (value != nullptr && value[0] == '/') {
        return core::InternalPath(value);
    }
    const char* home = std::getenv("HOME");
    return core::InternalPath(std::string(home != nullptr ? home : "") + "/" + fallback);
}

} // namespace

void Say(std::string_view text)
{
    std::string line = isatty(STDERR_FILENO) ? "\r\033[K" : "";
    line += "velmora-render: ";
    line += text;
    line += '\n';
    std::fputs(line.c_str(), stderr);
}

void ConsoleMessages::Show(std::string_view text, core::Icon icon, std::string_view /*title*/)
{
    if (icon == core::Icon::Information) {
        return;
    }
    m_troubled = true;
    std::string said;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        // A path stands on a line of its own.
        said += (said.empty() ? "" : " ") + Named(line);
    }
    Say(said);
}

void ConsoleMessages::CallPath(std::string internal, std::string name)
{
    m_names.insert_or_assign(std::move(internal), std::move(name));
}

std::string ConsoleMessages::Named(std::string_view line) const
{
    if (const auto name = m_names.find(line); name != m_names.end()) {
        return name->second;
    }
    std::string posix = core::PosixPath(line);
    return posix.empty() ? std::string(line) : posix;
}

core::Answer ConsoleMessages::Ask(std::string_view text, core::Buttons buttons, core::Icon /*icon*/,
                                  std::string_view title)
{
    Show(text, core::Icon::Question, title);
    return buttons == core::Buttons::YesNo ? core::Answer::No : core::Answer::Cancel;
}

std::unique_ptr<core::Timer> SleepingTimers::Create(std::chrono::milliseconds /*interval*/, bool /*oneShot*/,
                                                    std::function<void()> /*tick*/)
{
    return std::make_unique<SleepingTimer>();
}

std::string XdgFolders::Get(core::ShellFolder folder) const
{
    switch (folder) {
    case core::ShellFolder::MyDocuments:
        return FolderFromEnvironment("XDG_DOCUMENTS_DIR", "Documents");
    case core::ShellFolder::ApplicationData:
        return FolderFromEnvironment("XDG_CONFIG_HOME", ".config");
    case core::ShellFolder::LocalApplicationData:
        return FolderFromEnvironment("XDG_DATA_HOME", ".local/share");
    case core::ShellFolder::CommonApplicationData:
        return core::InternalPath("/usr/share");
    }
    return {};
}

std::string XdgFolders::AppExe() const
{
    return core::ProgramFilesFolder();
}

core::Ports ConsolePorts::Ports()
{
    return {m_messages,      m_input,        m_fileDialogs, m_fileNotFound, m_timers,
            m_pendingEvents, m_shellFolders, m_trash,       m_views};
}

} // namespace velmora::render
