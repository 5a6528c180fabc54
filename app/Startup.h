#pragma once

#include "app/ChildWindows.h"
#include "app/Workspace.h"
#include "audio/SoundSession.h"
#include "core/Environment.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::app {

/// The start of the program behind its window, in the given order, and the way down. Failures that end the program
/// have been shown when a step answers false. Interface thread only.
class Startup {
public:
    /// All outlive this.
    Startup(core::Environment& environment, Workspace& workspace, ChildWindows& windows);
    ~Startup();
    Startup(const Startup&) = delete;
    Startup& operator=(const Startup&) = delete;

    /// The project that a command line names, in the internal form: all of it, with blanks around and double quotes
    /// taken away. "" for none.
    static std::string ProjectFromCommandLine(const std::vector<std::string>& arguments);

    /// Settings, the program's folders, sound.
    bool StartEngine();
    /// The project of the command line, the example on the first run, else a new one.
    bool OpenFirstProject(const std::string& fromCommandLine);
    /// On the first run, offers the quick guide.
    void Greet();
    /// What a crash left of recordings in projects that were never saved.
    void OfferAbandonedTakes();
    /// Saves the settings, drops the project, ends the sound. Twice does nothing.
    void ShutDown();

private:
    core::Environment& m_environment;
    Workspace& m_workspace;
    ChildWindows& m_windows;
    std::unique_ptr<audio::SoundSession> m_session;
};

} // namespace velmora::app
