#include "app/MenuModel.h"

#include "tests/app/AppFixture.h"

namespace velmora::app {
namespace {

/// One line for each entry, indented: marks, text and key.
void Write(const std::vector<MenuEntry>& entries, const std::string& indent, std::string& text)
{
    for (const MenuEntry& entry : entries) {
        text += indent + (entry.enabled ? "" : "(off) ");
        if (entry.checked) {
            text += *entry.checked ? "[x] " : "[ ] ";
        }
        text += entry.text + (entry.key.empty() ? "" : " | " + entry.key) + "\n";
        Write(entry.entries, indent + "  ", text);
    }
}

class MenuModelTest : public CommandsFixture {
protected:
    std::string Text(int menu) const
    {
        std::string text(MenuModel::Title(menu));
        text += "\n";
        Write(m_menus.Entries(menu), "  ", text);
        return text;
    }

    MenuModel m_menus{m_commands};
};

TEST_F(MenuModelTest, ShowsEveryEntryWithItsKeyAndState)
{
    std::string all;
    for (int menu = 0; menu < MenuModel::kMenus; ++menu) {
        all += Text(menu);
    }
    EXPECT_EQ(all, R"(&File
  New | Ctrl+N
  Open... | Ctrl+O
  Save | Ctrl+S
  Save as...
  (off) Recent files
  -
  Compress project...
  Export to
    Windows media audio file...
    Wave file...
  -
  Exit
&Edit
  (off) Undo | Ctrl+Z
  (off) Redo
  -
  (off) Cut selected events | Ctrl+X
  (off) Copy selected events | Ctrl+C
  (off) Paste | Ctrl+V
  -
  (off) Add audio file... | Ctrl+A
  (off) Browse project audio... | Ctrl+B
  Clear channel
    Music 1
    -
    Voice 1
    Voice 2
    Voice 3
    Voice 4
&Playback
  [x] Jump back to original position
&Channels
  Change name
    Music 1
    -
    Voice 1
    Voice 2
    Voice 3
    Voice 4
  Add channel
    Music
    Voice
  Delete channel
    Music 1
    -
    Voice 1
    Voice 2
    Voice 3
    Voice 4
&Marks
  Add mark at: 00:00 | Ctrl+M
  Jump to mark
    Start  (00:00)
  Delete mark
    Start  (00:00)
Me&tronome
  [ ] Enabled | Ctrl+T
  Use on
    [ ] Playback
    [x] Recording
  (off) Setup...
&Options
  (off) Setup...
&Help
  Contents... | F1
  Shortcut keys
  -
  About...
)");
}

TEST_F(MenuModelTest, FollowsTheProject)
{
    constexpr int kFile = 0;
    constexpr int kEdit = 1;
    constexpr int kChannels = 3;
    constexpr int kMarks = 4;
    Select(Voice(0), core::Msg_SelectVoiceChannel);
    m_environment.ports.input.Expect("Bass & drums");
    m_commands.ChangeChannelName(Voice(0).ClassID());
    EXPECT_NE(Text(kEdit).find("  Undo change name | Ctrl+Z"), std::string::npos);
    EXPECT_NE(Text(kChannels).find("Bass && drums (selected)"), std::string::npos);
    m_menus.Press("Ctrl+Z");
    EXPECT_EQ(Voice(0).Title, "Voice 1");
    EXPECT_NE(Text(kEdit).find("  Redo change name"), std::string::npos);

    while (Project().Chn_GetChannelClass_TotalN() > 0) {
        m_commands.DeleteChannel(Project().util_GetFirstChannelID());
    }
    EXPECT_EQ(Text(kChannels), "&Channels\n  Change name\n    (off) --\n  Add channel\n    Music\n    Voice\n"
                               "  Delete channel\n    (off) --\n");
    m_commands.DeleteMark(0);
    EXPECT_EQ(Text(kMarks), "&Marks\n  Add mark at: 00:00 | Ctrl+M\n  (off) Jump to mark\n  (off) Delete mark\n");

    for (int i = 1; i <= 9; ++i) {
        m_environment->recent.AddFile("Z:\\songs\\" + std::to_string(i) + ".audioproj");
    }
    const std::string file = Text(kFile);
    EXPECT_NE(file.find("  Recent files\n    /songs/9.audioproj\n"), std::string::npos);
    EXPECT_NE(file.find("/songs/2.audioproj"), std::string::npos);
    EXPECT_EQ(file.find("/songs/1.audioproj"), std::string::npos) << "eight are shown";
}

TEST_F(MenuModelTest, KeysObeyTheStateOfTheMoment)
{
    EXPECT_THAT(m_menus.Keys(),
                ::testing::UnorderedElementsAre("Ctrl+N", "Ctrl+O", "Ctrl+S", "Ctrl+Z", "Ctrl+X", "Ctrl+C", "Ctrl+V",
                                                "Ctrl+A", "Ctrl+B", "Ctrl+M", "Ctrl+T", "F1"));
    const std::string before = Project().GetXMLData();
    for (const char* key : {"Ctrl+Z", "Ctrl+X", "Ctrl+C", "Ctrl+V", "Ctrl+A", "Ctrl+B", "Ctrl+Q"}) {
        m_menus.Press(key);
    }
    EXPECT_EQ(Project().GetXMLData(), before);
    m_menus.Press("F1");
    EXPECT_EQ(m_windows.calls, std::vector<std::string>{"help html\\introduction.html"});
}

} // namespace
} // namespace velmora::app
