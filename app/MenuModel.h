#pragma once

#include "app/Commands.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::app {

/// One line of a menu. "&" stands before the letter that chooses it.
struct MenuEntry {
    std::string text;
    /// As in "Ctrl+N"; works whatever has the focus.
    std::string key;
    bool enabled = true;
    std::optional<bool> checked;
    std::function<void()> run;
    std::vector<MenuEntry> entries;

    bool IsSeparator() const { return text == "-" && enabled && !run && entries.empty(); }
};

/// The menu bar, made afresh from the project each time it is asked for: so each menu shows the state of the moment in
/// which it opens.
class MenuModel {
public:
    /// `commands` outlives this.
    explicit MenuModel(Commands& commands);

    static constexpr int kMenus = 8;
    static std::string_view Title(int menu);
    std::vector<MenuEntry> Entries(int menu) const;
    /// Every key of the menus; they do not depend on the project.
    std::vector<std::string> Keys() const;
    /// Does what the entry with this key would; nothing while that is disabled. False when no entry has it.
    bool Press(std::string_view key) const;

private:
    std::vector<MenuEntry> File() const;
    std::vector<MenuEntry> Edit() const;
    std::vector<MenuEntry> Playback() const;
    std::vector<MenuEntry> Channels() const;
    std::vector<MenuEntry> Marks() const;
    std::vector<MenuEntry> Metronome() const;
    std::vector<MenuEntry> Options() const;
    std::vector<MenuEntry> Help() const;

    MenuEntry RecentFiles() const;
    /// A submenu of the channels; without any, one disabled line.
    MenuEntry ForEachChannel(std::string text, void (Commands::*command)(core::ClassID)) const;
    MenuEntry ForEachMark(std::string text, void (Commands::*command)(std::int32_t)) const;

    Commands& m_commands;
};

} // namespace velmora::app
