#pragma once

#include "core/Ports.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::render {

/// One line on standard error, with the program's name, on top of what progress has drawn there.
void Say(std::string_view text);

/// What the program says goes to standard error, a line each, with paths in the system's form; what only informs is
/// left out. Questions get the answer that changes nothing.
class ConsoleMessages : public core::MessageBoxes {
public:
    void Show(std::string_view text, core::Icon icon, std::string_view title) override;
    core::Answer Ask(std::string_view text, core::Buttons buttons, core::Icon icon, std::string_view title) override;
    void Beep() override {}

    /// Something went wrong and was said.
    bool Troubled() const { return m_troubled; }
    /// The path `internal` is called `name` from now on.
    void CallPath(std::string internal, std::string name);

private:
    std::string Named(std::string_view line) const;

    std::map<std::string, std::string, std::less<>> m_names;
    bool m_troubled = false;
};

class NoInput : public core::InputBox {
public:
    std::optional<std::string> Ask(std::string_view, std::string_view, std::string_view) override { return {}; }
};

class NoFileDialogs : public core::FileDialogs {
public:
    std::optional<std::string> Open(std::string_view, const std::vector<core::FileType>&) override { return {}; }
    std::optional<std::string> Save(std::string_view, const std::vector<core::FileType>&, std::string_view) override
    {
        return {};
    }
};

class IgnoreMissingFiles : public core::FileNotFoundQuestion {
public:
    core::FileNotFoundAnswer Ask(std::string_view, std::string&) override { return core::FileNotFoundAnswer::Ignore; }
};

/// Nothing here waits, so no timer ever ticks.
class SleepingTimers : public core::Timers {
public:
    std::unique_ptr<core::Timer> Create(std::chrono::milliseconds interval, bool oneShot,
                                        std::function<void()> tick) override;
};

class NoPendingEvents : public core::PendingEvents {
public:
    void Run() override {}
};

/// The user's folders as the XDG base directories name them.
class XdgFolders : public core::ShellFolders {
public:
    std::string Get(core::ShellFolder folder) const override;
    std::string AppExe() const override;
};

class NoTrash : public core::Trash {
public:
    bool Move(std::string_view) override { return false; }
};

/// The document's ports for a program without a window.
class ConsolePorts {
public:
    core::Ports Ports();
    ConsoleMessages& Messages() { return m_messages; }

private:
    ConsoleMessages m_messages;
    NoInput m_input;
    NoFileDialogs m_fileDialogs;
    IgnoreMissingFiles m_fileNotFound;
    SleepingTimers m_timers;
    NoPendingEvents m_pendingEvents;
    XdgFolders m_shellFolders;
    NoTrash m_trash;
    core::Views m_views;
};

} // namespace velmora::render
