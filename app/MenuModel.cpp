#include "app/MenuModel.h"

#include "app/ShownText.h"
#include "app/UTIL_GenChannelsSubMenu.h"
#include "audio/AudioExport.h"
#include "audio/Metronome_Class.h"
#include "core/Units.h"
#include "project/MarkList_Class.h"
#include "project/Undo_Class.h"

#include <array>
#include <utility>

namespace velmora::app {
namespace {

constexpr std::int32_t kShownRecentFiles = 8;
constexpr std::array<std::string_view, MenuModel::kMenus> kTitles{"&File",  "&Edit",      "&Playback", "&Channels",
                                                                  "&Marks", "Me&tronome", "&Options",  "&Help"};

/// What the user wrote, with no letter marked.
std::string Plain(std::string_view text)
{
    std::string plain;
    for (const char c : text) {
        plain += c == '&' ? "&&" : std::string(1, c);
    }
    return plain;
}

MenuEntry Entry(std::string text, std::function<void()> run, std::string key = {})
{
    MenuEntry entry;
    entry.text = std::move(text);
    entry.key = std::move(key);
    entry.run = std::move(run);
    return entry;
}

MenuEntry Separator()
{
    return Entry("-", {});
}

MenuEntry Disabled(std::string text, std::string key = {})
{
    MenuEntry entry = Entry(std::move(text), {}, std::move(key));
    entry.enabled = false;
    return entry;
}

MenuEntry Checked(std::string text, bool checked, std::function<void()> run, std::string key = {})
{
    MenuEntry entry = Entry(std::move(text), std::move(run), std::move(key));
    entry.checked = checked;
    return entry;
}

MenuEntry SubMenu(std::string text, std::vector<MenuEntry> entries)
{
    MenuEntry entry = Entry(std::move(text), {});
    entry.entries = std::move(entries);
    return entry;
}

/// An undo or redo entry: its bare name, disabled, while there is no step.
MenuEntry Step(const std::string& title, const char* bare, std::function<void()> run, std::string key = {})
{
    return title.empty() ? Disabled(bare, std::move(key)) : Entry(Plain(title), std::move(run), std::move(key));
}

bool PressIn(const std::vector<MenuEntry>& entries, std::string_view key)
{
    for (const MenuEntry& entry : entries) {
        if (entry.key == key) {
            if (entry.enabled && entry.run) {
                entry.run();
            }
            return true;
        }
        if (PressIn(entry.entries, key)) {
            return true;
        }
    }
    return false;
}

void CollectKeys(const std::vector<MenuEntry>& entries, std::vector<std::string>& keys)
{
    for (const MenuEntry& entry : entries) {
        if (!entry.key.empty()) {
            keys.push_back(entry.key);
        }
        CollectKeys(entry.entries, keys);
    }
}

} // namespace

MenuModel::MenuModel(Commands& commands)
    : m_commands(commands)
{
}

std::string_view MenuModel::Title(int menu)
{
    return kTitles.at(static_cast<std::size_t>(menu));
}

std::vector<MenuEntry> MenuModel::Entries(int menu) const
{
    using Maker = std::vector<MenuEntry> (MenuModel::*)() const;
    static constexpr std::array<Maker, kMenus> kMakers{&MenuModel::File,     &MenuModel::Edit,  &MenuModel::Playback,
                                                       &MenuModel::Channels, &MenuModel::Marks, &MenuModel::Metronome,
                                                       &MenuModel::Options,  &MenuModel::Help};
    if (m_commands.Workspace().Project() == nullptr) {
        return {};
    }
    return (this->*kMakers.at(static_cast<std::size_t>(menu)))();
}

std::vector<std::string> MenuModel::Keys() const
{
    std::vector<std::string> keys;
    for (int menu = 0; menu < kMenus; ++menu) {
        CollectKeys(Entries(menu), keys);
    }
    return keys;
}

bool MenuModel::Press(std::string_view key) const
{
    for (int menu = 0; menu < kMenus; ++menu) {
        if (PressIn(Entries(menu), key)) {
            return true;
        }
    }
    return false;
}

std::vector<MenuEntry> MenuModel::File() const
{
    Workspace& workspace = m_commands.Workspace();
    return {
        Entry(
            "New", [&workspace] { workspace.New(); }, "Ctrl+N"),
        Entry(
            "Open...", [&workspace] { workspace.Open(); }, "Ctrl+O"),
        Entry(
            "Save", [&workspace] { workspace.Save(); }, "Ctrl+S"),
        Entry("Save as...", [&workspace] { workspace.SaveAs(); }),
        RecentFiles(),
        Separator(),
        Entry("Compress project...", [this] { m_commands.Compress(); }),
        SubMenu("Export to",
                {Entry("Windows media audio file...", [this] { m_commands.Export(audio::AudioExport::kWma); }),
                 Entry("Wave file...", [this] { m_commands.Export(audio::AudioExport::kWav); })}),
        Separator(),
        Entry("Exit", [this] { m_commands.Windows().CloseMainWindow(); }),
    };
}

MenuEntry MenuModel::RecentFiles() const
{
    std::vector<MenuEntry> files;
    for (std::int32_t i = 0; i < kShownRecentFiles; ++i) {
        const std::string path = m_commands.Environment().recent.GetFile_ByIndex(i);
        if (!path.empty()) {
            files.push_back(Entry(Plain(ShownPath(path)), [this, i] { m_commands.Workspace().OpenRecent(i); }));
        }
    }
    MenuEntry menu = SubMenu("Recent files", std::move(files));
    menu.enabled = !menu.entries.empty();
    return menu;
}

std::vector<MenuEntry> MenuModel::Edit() const
{
    const project::Undo_Class& undo = *m_commands.Project().Undo;
    return {
        Step(
            undo.CurUndo_Title(), "Undo", [this] { m_commands.Undo(); }, "Ctrl+Z"),
        Step(undo.CurRedo_Title(), "Redo", [this] { m_commands.Redo(); }),
        Separator(),
        Disabled("Cut selected events", "Ctrl+X"),
        Disabled("Copy selected events", "Ctrl+C"),
        Disabled("Paste", "Ctrl+V"),
        Separator(),
        Disabled("Add audio file...", "Ctrl+A"),
        Disabled("Browse project audio...", "Ctrl+B"),
        ForEachChannel("Clear channel", &Commands::ClearChannel),
    };
}

std::vector<MenuEntry> MenuModel::Playback() const
{
    const bool jumpsBack = m_commands.Environment().config.Playback_Jumpback != 0;
    return {Checked("Jump back to original position", jumpsBack, [this] { m_commands.ToggleJumpBack(); })};
}

std::vector<MenuEntry> MenuModel::Channels() const
{
    return {
        ForEachChannel("Change name", &Commands::ChangeChannelName),
        SubMenu("Add channel", {Entry("Music", [this] { m_commands.AddMusicChannel(); }),
                                Entry("Voice", [this] { m_commands.AddVoiceChannel(); })}),
        ForEachChannel("Delete channel", &Commands::DeleteChannel),
    };
}

std::vector<MenuEntry> MenuModel::Marks() const
{
    return {
        Entry(
            "Add mark at: " + ShownTime(m_commands.Project().Player_LTimePos()),
            [this] { m_commands.AddMark("Add mark"); }, "Ctrl+M"),
        ForEachMark("Jump to mark", &Commands::JumpToMark),
        ForEachMark("Delete mark", &Commands::DeleteMark),
    };
}

std::vector<MenuEntry> MenuModel::Metronome() const
{
    const audio::Metronome_Class& metronome = *m_commands.Project().Metronome;
    return {
        Checked(
            "Enabled", metronome.Metronome_Enabled(), [this] { m_commands.ToggleMetronome(); }, "Ctrl+T"),
        SubMenu("Use on", {Checked("Playback", metronome.Metronome_PlayerEnabled(),
                                   [this] { m_commands.ToggleMetronomeOnPlayback(); }),
                           Checked("Recording", metronome.Metronome_RecorderEnabled(),
                                   [this] { m_commands.ToggleMetronomeOnRecording(); })}),
        Disabled("Setup..."),
    };
}

std::vector<MenuEntry> MenuModel::Options() const
{
    return {Disabled("Setup...")};
}

std::vector<MenuEntry> MenuModel::Help() const
{
    ChildWindows& windows = m_commands.Windows();
    return {
        Entry(
            "Contents...", [&windows] { windows.ShowHelpTopic("html\\introduction.html"); }, "F1"),
        Entry("Shortcut keys", [&windows] { windows.ShowHelpTopic("html\\shortcut keys.html"); }),
        Separator(),
        Entry("About...", [this] { m_commands.About(); }),
    };
}

MenuEntry MenuModel::ForEachChannel(std::string text, void (Commands::*command)(core::ClassID)) const
{
    std::vector<MenuEntry> entries;
    UTIL_GenChannelsSubMenu channels(m_commands.Project());
    while (const auto item = channels.GetNextItem()) {
        const core::ClassID id = item->itemChannelClassID;
        entries.push_back(item->title == "-" && id == 0 ? Separator() : Entry(Plain(item->title), [this, command, id] {
            (m_commands.*command)(id);
        }));
    }
    if (entries.empty()) {
        entries.push_back(Disabled("--"));
    }
    return SubMenu(std::move(text), std::move(entries));
}

MenuEntry MenuModel::ForEachMark(std::string text, void (Commands::*command)(std::int32_t)) const
{
    const project::MarkList_Class& marks = *m_commands.Project().Marks;
    std::vector<MenuEntry> entries;
    for (std::int32_t i = 0; i <= marks.GetTotalMarks(); ++i) {
        std::int32_t id = 0;
        double timePos = 0;
        std::string title;
        marks.GetMark_by_Index(i, id, timePos, title);
        entries.push_back(Entry(Plain(ShownWithTime(title, core::RoundToInt(timePos))),
                                [this, command, i] { (m_commands.*command)(i); }));
    }
    MenuEntry menu = SubMenu(std::move(text), std::move(entries));
    menu.enabled = !menu.entries.empty();
    return menu;
}

} // namespace velmora::app
