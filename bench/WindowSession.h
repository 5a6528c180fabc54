#pragma once

#include "app/frmMain.h"
#include "bench/WindowWatch.h"

#include <QTimer>
#include <functional>
#include <string>
#include <vector>

namespace velmora::bench {

/// A user at the main window: one step after the other, each followed by a rest in which its traces can show. Prints a
/// line for each: its name, how long it took at most until an event or a painting was served, ms, tab between. Events
/// that held the interface, and steps that came to nothing, go to standard error. Answers the boxes that come: they are
/// left by their default button, and nothing is saved that is not a step.
class WindowSession {
public:
    /// `use`: all that a user does with the project `subject`; else its export and compression, into its folder.
    WindowSession(WatchedApplication& application, bool use, std::string subject);

    /// Once the main window is up.
    void Start();

private:
    struct Step {
        const char* name;
        std::function<void()> act;
        std::chrono::milliseconds rest;
        /// Looked at after the rest; none is always true.
        std::function<bool()> happened;
    };

    void Use();
    void Edit();
    void Record();
    void Write();
    void Add(const char* name, std::function<void()> act, std::function<bool()> happened = {},
             std::chrono::milliseconds rest = kRest);
    void Next();
    void AnswerBox() const;

    void Open(const std::string& path) const;
    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) const;
    void Tool(int index) const;
    void Choose(const QString& path) const;
    void Drag(const char* slider) const;
    void DropFile(const QString& file) const;
    void DeleteClip() const;
    std::int32_t Channels() const;
    std::size_t Clips() const;
    bool Playing() const;
    bool Recording() const;
    std::int32_t TimeMS() const;
    std::string UndoTitle() const;
    project::ProjectFile_Class& Project() const { return *m_window->Workspace().Project(); }

    static constexpr std::chrono::milliseconds kRest{400};

    WatchedApplication& m_application;
    bool m_use;
    std::string m_subject;
    app::frmMain* m_window = nullptr;
    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    QTimer m_box;
};

} // namespace velmora::bench
