#include "tests/support/ScriptedPorts.h"

#include "core/Paths.h"
#include "core/TextUtilities.h"
#include "persistence/Numbers.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <gtest/gtest.h>

namespace velmora::testing {
namespace {

template <typename Answer>
Answer TakeAnswer(std::deque<Answer>& answers, Answer careful, const std::string& question)
{
    if (answers.empty()) {
        ADD_FAILURE() << "asked without an answer: " << question;
        return careful;
    }
    Answer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

} // namespace

void ScriptedMessageBoxes::Show(std::string_view text, core::Icon icon, std::string_view title)
{
    shown.push_back({std::string(text), icon, std::string(title),
                     icon == core::Icon::Information ? m_notes.information : m_notes.trouble});
}

core::Answer ScriptedMessageBoxes::Ask(std::string_view text, core::Buttons buttons, core::Icon icon,
                                       std::string_view title)
{
    asked.push_back({std::string(text), icon, std::string(title), {}});
    return TakeAnswer(m_answers, buttons == core::Buttons::YesNo ? core::Answer::No : core::Answer::Cancel,
                      std::string(text));
}

std::vector<std::string> ScriptedMessageBoxes::Texts() const
{
    std::vector<std::string> texts;
    for (const ShownMessage& message : shown) {
        texts.push_back(message.text);
    }
    return texts;
}

std::optional<std::string> ScriptedInputBox::Ask(std::string_view title, std::string_view prompt,
                                                 std::string_view suggestion)
{
    asked.push_back({std::string(title), std::string(prompt), std::string(suggestion)});
    return TakeAnswer(m_answers, std::optional<std::string>{}, std::string(prompt));
}

std::optional<std::string> ScriptedFileDialogs::Open(std::string_view caption, const std::vector<core::FileType>& types)
{
    return Next({std::string(caption), types, {}});
}

std::optional<std::string> ScriptedFileDialogs::Save(std::string_view caption, const std::vector<core::FileType>& types,
                                                     std::string_view suggestion)
{
    return Next({std::string(caption), types, std::string(suggestion)});
}

std::optional<std::string> ScriptedFileDialogs::Next(Question question)
{
    asked.push_back(std::move(question));
    return TakeAnswer(m_answers, std::optional<std::string>{}, asked.back().caption);
}

core::FileNotFoundAnswer ScriptedFileNotFound::Ask(std::string_view path, std::string& replacement)
{
    asked.emplace_back(path);
    if (beforeAnswer) {
        beforeAnswer(path);
    }
    auto [answer, chosen] =
        TakeAnswer(m_answers, std::pair(core::FileNotFoundAnswer::Ignore, std::string{}), std::string(path));
    if (answer == core::FileNotFoundAnswer::Replace) {
        replacement = std::move(chosen);
    }
    return answer;
}

void ScriptedFileNotFound::Expect(core::FileNotFoundAnswer answer, std::string replacement)
{
    m_answers.emplace_back(answer, std::move(replacement));
}

struct ManualTimers::Clock {
    struct Entry {
        std::chrono::milliseconds interval;
        bool oneShot;
        std::function<void()> tick;
        bool running = false;
        std::chrono::milliseconds due{0};
    };
    std::chrono::milliseconds now{0};
    std::vector<std::shared_ptr<Entry>> entries;
};

class ManualTimers::ManualTimer final : public core::Timer {
public:
    ManualTimer(std::shared_ptr<Clock> clock, std::shared_ptr<Clock::Entry> entry)
        : m_clock(std::move(clock))
        , m_entry(std::move(entry))
    {
    }
    ~ManualTimer() override
    {
        m_entry->running = false;
        std::erase(m_clock->entries, m_entry);
    }
    void Start() override
    {
        m_entry->running = true;
        m_entry->due = m_clock->now + m_entry->interval;
    }
    void Stop() override { m_entry->running = false; }
    bool Running() const override { return m_entry->running; }

private:
    std::shared_ptr<Clock> m_clock;
    std::shared_ptr<Clock::Entry> m_entry;
};

ManualTimers::ManualTimers()
    : m_clock(std::make_shared<Clock>())
{
}

ManualTimers::~ManualTimers() = default;

std::unique_ptr<core::Timer> ManualTimers::Create(std::chrono::milliseconds interval, bool oneShot,
                                                  std::function<void()> tick)
{
    constexpr std::chrono::milliseconds kShortest{1};
    auto entry = std::make_shared<Clock::Entry>();
    entry->interval = std::max(interval, kShortest);
    entry->oneShot = oneShot;
    entry->tick = std::move(tick);
    m_clock->entries.push_back(entry);
    return std::make_unique<ManualTimer>(m_clock, std::move(entry));
}

void ManualTimers::Advance(std::chrono::milliseconds time)
{
    const auto end = m_clock->now + time;
    for (;;) {
        std::shared_ptr<Clock::Entry> next;
        for (const auto& entry : m_clock->entries) {
            if (entry->running && entry->due <= end && (!next || entry->due < next->due)) {
                next = entry;
            }
        }
        if (!next) {
            break;
        }
        m_clock->now = std::max(m_clock->now, next->due);
        next->due += next->interval;
        next->running = !next->oneShot;
        next->tick();
    }
    m_clock->now = end;
}

int ManualTimers::RunningCount() const
{
    return static_cast<int>(std::ranges::count_if(m_clock->entries, [](const auto& entry) { return entry->running; }));
}

void ScriptedPendingEvents::Run()
{
    ++runs;
    std::deque<std::function<void()>> events = std::exchange(m_events, {});
    for (const auto& event : events) {
        event();
    }
}

std::string TestShellFolders::Get(core::ShellFolder folder) const
{
    const auto found = folders.find(folder);
    return found == folders.end() ? std::string{} : found->second;
}

bool FolderTrash::Move(std::string_view path)
{
    if (folder.empty()) {
        return false;
    }
    const std::string target = folder + '\\' + std::to_string(moved.size() + 1) + ' ' + core::FileNameOfPath(path);
    std::error_code error;
    std::filesystem::create_directories(core::PosixPath(folder), error);
    std::filesystem::rename(core::PosixPath(path), core::PosixPath(target), error);
    if (error) {
        return false;
    }
    moved.emplace_back(path);
    return true;
}

void RecordingViews::ShowFXSetupForm(double channelID, std::string_view title)
{
    calls.push_back("ShowFXSetupForm " + persistence::NumberText(channelID) + ' ' + std::string(title));
}

void RecordingViews::CloseFXSetupForm(double channelID)
{
    calls.push_back("CloseFXSetupForm " + persistence::NumberText(channelID));
}

void RecordingViews::EnableFXSetupForms(bool enable)
{
    calls.push_back(enable ? "EnableFXSetupForms true" : "EnableFXSetupForms false");
}

void RecordingViews::EnableMainWindow(bool enable)
{
    calls.push_back(enable ? "EnableMainWindow true" : "EnableMainWindow false");
}

core::Ports ScriptedPorts::All()
{
    return {messages, input, fileDialogs, fileNotFound, timers, pendingEvents, shellFolders, trash, views};
}

} // namespace velmora::testing
