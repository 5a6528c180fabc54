#pragma once

#include "core/Ports.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Ports that record what they are asked and answer as told beforehand. A question without an answer fails the test and
/// gets the most careful one.
namespace velmora::testing {

struct ShownMessage {
    std::string text;
    core::Icon icon;
    std::string title;
    /// What stood below it.
    std::string note;
};

class ScriptedMessageBoxes final : public core::MessageBoxes {
public:
    void Show(std::string_view text, core::Icon icon, std::string_view title) override;
    core::Answer Ask(std::string_view text, core::Buttons buttons, core::Icon icon, std::string_view title) override;
    void Beep() override { ++beeps; }
    void SetNotes(const core::BoxNotes& notes) override { m_notes = notes; }

    /// The next question gets `answer`; each answer serves once, in order.
    void Expect(core::Answer answer) { m_answers.push_back(answer); }
    /// All answers have been used.
    bool AllAsked() const { return m_answers.empty(); }

    /// Texts shown, oldest first.
    std::vector<std::string> Texts() const;
    /// The text of the last message shown; "" without one.
    std::string LastText() const { return shown.empty() ? std::string{} : shown.back().text; }

    std::vector<ShownMessage> shown;
    std::vector<ShownMessage> asked;
    int beeps = 0;

private:
    std::deque<core::Answer> m_answers;
    core::BoxNotes m_notes;
};

class ScriptedInputBox final : public core::InputBox {
public:
    std::optional<std::string> Ask(std::string_view title, std::string_view prompt,
                                   std::string_view suggestion) override;

    /// Nothing is a cancel.
    void Expect(std::optional<std::string> answer) { m_answers.push_back(std::move(answer)); }

    struct Question {
        std::string title;
        std::string prompt;
        std::string suggestion;
    };
    std::vector<Question> asked;

private:
    std::deque<std::optional<std::string>> m_answers;
};

class ScriptedFileDialogs final : public core::FileDialogs {
public:
    std::optional<std::string> Open(std::string_view caption, const std::vector<core::FileType>& types) override;
    std::optional<std::string> Save(std::string_view caption, const std::vector<core::FileType>& types,
                                    std::string_view suggestion) override;

    /// The next dialog, of either kind, gives `path`; nothing is a cancel.
    void Expect(std::optional<std::string> path) { m_answers.push_back(std::move(path)); }

    struct Question {
        std::string caption;
        std::vector<core::FileType> types;
        std::string suggestion;
    };
    std::vector<Question> asked;

private:
    std::optional<std::string> Next(Question question);

    std::deque<std::optional<std::string>> m_answers;
};

class ScriptedFileNotFound final : public core::FileNotFoundQuestion {
public:
    core::FileNotFoundAnswer Ask(std::string_view path, std::string& replacement) override;

    void Expect(core::FileNotFoundAnswer answer, std::string replacement = {});
    /// Runs before each answer, with the path asked for: the place to bring a file back for a retry.
    std::function<void(std::string_view path)> beforeAnswer;

    std::vector<std::string> asked;

private:
    std::deque<std::pair<core::FileNotFoundAnswer, std::string>> m_answers;
};

/// Time that stands still until a test moves it.
class ManualTimers final : public core::Timers {
public:
    ManualTimers();
    ~ManualTimers() override;

    std::unique_ptr<core::Timer> Create(std::chrono::milliseconds interval, bool oneShot,
                                        std::function<void()> tick) override;

    /// Moves time by `time`, with all ticks that fall into it in their order.
    void Advance(std::chrono::milliseconds time);
    int RunningCount() const;

private:
    struct Clock;
    class ManualTimer;

    std::shared_ptr<Clock> m_clock;
};

/// Counts the yields of the bus, and runs what a test has put there.
class ScriptedPendingEvents final : public core::PendingEvents {
public:
    void Run() override;

    /// Runs inside the next yield.
    void Post(std::function<void()> event) { m_events.push_back(std::move(event)); }

    int runs = 0;

private:
    std::deque<std::function<void()>> m_events;
};

class TestShellFolders final : public core::ShellFolders {
public:
    std::string Get(core::ShellFolder folder) const override;
    std::string AppExe() const override { return appExe; }

    std::map<core::ShellFolder, std::string> folders;
    std::string appExe;
};

/// A trash that is a folder: what goes there can still be looked at.
class FolderTrash final : public core::Trash {
public:
    bool Move(std::string_view path) override;

    /// In the internal form; without one, nothing can be moved.
    std::string folder;
    /// What was moved, by its earlier path.
    std::vector<std::string> moved;
};

/// Views that note the order in which they are initialised and what they are told.
class RecordingViews final : public core::Views {
public:
    void InitializeMainWindow() override { calls.push_back("InitializeMainWindow"); }
    void InitializeMusicFrame() override { calls.push_back("InitializeMusicFrame"); }
    void InitializeVoiceFrame() override { calls.push_back("InitializeVoiceFrame"); }
    void InitializeEventsEditor() override { calls.push_back("InitializeEventsEditor"); }
    void InitializeEventsSmallView() override { calls.push_back("InitializeEventsSmallView"); }
    void RemoveUnusedWaveCacheItems() override { calls.push_back("RemoveUnusedWaveCacheItems"); }
    void ShowFXSetupForm(double channelID, std::string_view title) override;
    void CloseFXSetupForm(double channelID) override;
    void EnableFXSetupForms(bool enable) override;
    void EnableMainWindow(bool enable) override;

    std::vector<std::string> calls;
};

/// All of them, as the ports of an environment.
struct ScriptedPorts {
    ScriptedMessageBoxes messages;
    ScriptedInputBox input;
    ScriptedFileDialogs fileDialogs;
    ScriptedFileNotFound fileNotFound;
    ManualTimers timers;
    ScriptedPendingEvents pendingEvents;
    TestShellFolders shellFolders;
    FolderTrash trash;
    RecordingViews views;

    core::Ports All();
};

} // namespace velmora::testing
