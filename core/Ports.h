#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How the logic reaches the outside. The window's adapters and the tests' scripted ones implement these; the document
/// never asks what stands behind. All are called on the interface thread.
namespace velmora::core {

enum class Icon { None, Information, Exclamation, Critical, Question };
enum class Buttons { YesNo, YesNoCancel, OkCancel };
enum class Answer { Yes, No, Cancel, Ok };

/// What stands smaller below the text of a message box, as the path of the file that it is about.
struct BoxNotes {
    std::string information; ///< below what informs
    std::string trouble;     ///< below warnings and errors
};

/// Message boxes and questions: every text the system says. Lines are parted by "\n".
class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    /// For the boxes that follow. Questions have no note, nor has an adapter without room for one.
    virtual void SetNotes(const BoxNotes& /*notes*/) {}
    virtual void Show(std::string_view text, Icon icon = Icon::Information, std::string_view title = "Velmora") = 0;
    virtual Answer Ask(std::string_view text, Buttons buttons = Buttons::YesNo, Icon icon = Icon::Question,
                       std::string_view title = "Velmora") = 0;
    virtual void Beep() = 0;
};

/// Notes for the boxes that come while this lives. Not one inside another.
class NotesScope {
public:
    NotesScope(MessageBoxes& boxes, const BoxNotes& notes)
        : m_boxes(boxes)
    {
        m_boxes.SetNotes(notes);
    }
    ~NotesScope() { m_boxes.SetNotes({}); }
    NotesScope(const NotesScope&) = delete;
    NotesScope& operator=(const NotesScope&) = delete;

private:
    MessageBoxes& m_boxes;
};

class InputBox {
public:
    virtual ~InputBox() = default;
    /// The text entered, or nothing on cancel.
    virtual std::optional<std::string> Ask(std::string_view title, std::string_view prompt,
                                           std::string_view suggestion) = 0;
};

struct FileType {
    std::string description;
    /// Patterns parted by ";", as in "*.wav;*.mp3".
    std::string patterns;
};

/// Paths are in the internal form.
class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    virtual std::optional<std::string> Open(std::string_view caption, const std::vector<FileType>& types) = 0;
    virtual std::optional<std::string> Save(std::string_view caption, const std::vector<FileType>& types,
                                            std::string_view suggestion) = 0;
};

enum class FileNotFoundAnswer { Retry = 0, Replace = 1, Ignore = 2 };

/// What to do about an audio file that a project names and that is not there.
class FileNotFoundQuestion {
public:
    virtual ~FileNotFoundQuestion() = default;
    /// On Replace, `replacement` is the file chosen, as an absolute internal path.
    virtual FileNotFoundAnswer Ask(std::string_view path, std::string& replacement) = 0;
};

/// A timer on the interface thread. Destroying it stops it.
class Timer {
public:
    virtual ~Timer() = default;
    virtual void Start() = 0;
    virtual void Stop() = 0;
    virtual bool Running() const = 0;
};

class Timers {
public:
    virtual ~Timers() = default;
    virtual std::unique_ptr<Timer> Create(std::chrono::milliseconds interval, bool oneShot,
                                          std::function<void()> tick) = 0;
};

/// The bus's yield: lets what waits in the interface run. An adapter bounds how often it really does so.
class PendingEvents {
public:
    virtual ~PendingEvents() = default;
    virtual void Run() = 0;
};

enum class ShellFolder { MyDocuments, ApplicationData, CommonApplicationData, LocalApplicationData };

/// Folders in the internal form, without a backslash at the end.
class ShellFolders {
public:
    virtual ~ShellFolders() = default;
    virtual std::string Get(ShellFolder folder) const = 0;
    virtual std::string AppExe() const = 0;
};

/// What the program deletes by itself goes here when it may hold the user's sound.
class Trash {
public:
    virtual ~Trash() = default;
    /// Moves a file or a folder to the desktop's trash. False leaves it where it is.
    virtual bool Move(std::string_view path) = 0;
};

/// The window and the views, as far as the document must reach them.
class Views {
public:
    virtual ~Views() = default;
    /// Each registers its endpoints on the present project's bus, called in this order when a project is made.
    virtual void InitializeMainWindow() {}
    virtual void InitializeMusicFrame() {}
    virtual void InitializeVoiceFrame() {}
    virtual void InitializeEventsEditor() {}
    virtual void InitializeEventsSmallView() {}

    /// The timeline's state as text, for snapshots.
    virtual std::string EditorXML() { return m_editorXML; }
    virtual bool LoadEditorXML(std::string_view xml)
    {
        m_editorXML = xml;
        return true;
    }
    /// The waveform cache as the bytes of its file.
    virtual std::string WaveCache() { return m_waveCache; }
    virtual void LoadWaveCache(std::string_view bytes) { m_waveCache = bytes; }
    virtual void RemoveUnusedWaveCacheItems() {}

    virtual void ShowFXSetupForm(double /*channelID*/, std::string_view /*title*/) {}
    virtual void CloseFXSetupForm(double /*channelID*/) {}
    virtual void EnableFXSetupForms(bool /*enable*/) {}
    /// False refuses input to the main window while long work runs.
    virtual void EnableMainWindow(bool /*enable*/) {}

private:
    std::string m_editorXML;
    std::string m_waveCache;
};

/// All ports in one place; whoever makes the program owns them and outlives it.
struct Ports {
    MessageBoxes& messages;
    InputBox& input;
    FileDialogs& fileDialogs;
    FileNotFoundQuestion& fileNotFound;
    Timers& timers;
    PendingEvents& pendingEvents;
    ShellFolders& shellFolders;
    Trash& trash;
    Views& views;
};

} // namespace velmora::core
