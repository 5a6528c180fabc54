#pragma once

#include "app/Commands.h"

namespace velmora::project {
class Channel_Class;
}

namespace velmora::app {

struct KeyPress {
    /// A capital letter, a digit, or one of + - * /; 0 for any other key.
    char key = 0;
    bool numpad = false;
    bool shift = false;
    bool ctrl = false;
    bool alt = false;
    /// The key is held down; then nothing is switched to and fro.
    bool repeated = false;
    /// The layout writes another script; `key` is told by its place.
    bool otherScript = false;
};

/// The keys of the main window, beside those of its menus: transport, the selected channels' strips, and which
/// channels are selected.
class KeyCommands {
public:
    /// `commands` outlives this.
    explicit KeyCommands(Commands& commands);

    /// True when the key is one of the window's and was obeyed, also when there was nothing to do for it.
    bool Press(const KeyPress& press);

private:
    bool Transport(const KeyPress& press);
    bool Channel(const KeyPress& press);
    bool Select(const KeyPress& press);
    project::Channel_Class* Selected(bool music) const;
    void ChangeProperty(const project::Channel_Class& channel, std::int32_t msgID, std::int32_t value);
    void Toggle(const project::Channel_Class& channel, std::int32_t msgID, bool now);

    Commands& m_commands;
};

} // namespace velmora::app
