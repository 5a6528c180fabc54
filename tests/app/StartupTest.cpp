#include "app/Startup.h"

#include "app/MainPanel.h"
#include "controls/LCDDisplay.h"
#include "core/Paths.h"
#include "tests/app/AppFixture.h"

namespace velmora::app {
namespace {

class StartupTest : public MainWindowFixture {
protected:
    void WriteConfig(const std::string& text) { m_disk.WriteTextFile(Path("config\\config.xml"), text); }
    /// An example that is a copy of a saved new project.
    void MakeExample()
    {
        Start();
        m_ports.fileDialogs.Expect(Path("examples\\Welcome (Bar style).audioproj"));
        m_disk.MakeFolderIfMissing(Path("examples"));
        ASSERT_TRUE(m_window->Workspace().SaveAs());
        m_startup->ShutDown();
    }
    void BecomeNewUser()
    {
        core::Configuration fresh;
        fresh.Global_OutputDevice = 0;
        WriteConfig(fresh.GetXMLData());
    }
};

TEST(CommandLine, NamesOneProject)
{
    EXPECT_EQ(Startup::ProjectFromCommandLine({}), "");
    EXPECT_EQ(Startup::ProjectFromCommandLine({"/a/My song.audioproj"}), "Z:\\a\\My song.audioproj");
    EXPECT_EQ(Startup::ProjectFromCommandLine({" \"/a/My", "song.audioproj\" "}), "Z:\\a\\My song.audioproj");
    EXPECT_EQ(Startup::ProjectFromCommandLine({"  ", "\"\""}), "");
}

TEST_F(StartupTest, StartsWithANewProject)
{
    Start();
    EXPECT_TRUE(m_ports.messages.shown.empty());
    EXPECT_EQ(Project().Chn_GetChannelClass_TotalN(), 5);
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_EQ(m_window->windowTitle(), "Velmora ");
    m_startup->Greet();
    EXPECT_TRUE(m_ports.messages.asked.empty()) << "only the first run is greeted";
    for (const char* folder : {"newprojects\\Project 1", "presets\\FxPacks-Voice", "presets\\Fx"}) {
        EXPECT_TRUE(m_disk.FolderExists(Path(folder))) << folder;
    }
}

TEST_F(StartupTest, TheFirstRunOpensTheExampleAndOffersTheGuide)
{
    MakeExample();
    BecomeNewUser();
    Start();
    EXPECT_EQ(Project().ProjectPath(), Path("examples\\Welcome (Bar style).audioproj"));
    m_ports.messages.Expect(core::Answer::No);
    m_startup->Greet();
    EXPECT_EQ(m_ports.messages.asked[0].text,
              "This is the first time you run Velmora.\nWould you like to read the quick guide ?");
    m_startup->ShutDown();
    m_environment->LoadSettings();
    EXPECT_FALSE(m_environment->config.Global_FirstRun);

    // The screen is drawn again, once, when the window has been laid out.
    Start(Path("examples\\Welcome (Bar style).audioproj"));
    m_ports.timers.Advance(std::chrono::milliseconds(600));
    EXPECT_TRUE(m_ports.messages.shown.empty());
}

TEST_F(StartupTest, AMissingExampleGivesANewProject)
{
    BecomeNewUser();
    Start();
    EXPECT_TRUE(Project().IsNewProject());
    EXPECT_TRUE(m_ports.messages.shown.empty());
}

TEST_F(StartupTest, AProjectThatDoesNotLoadGivesANewOne)
{
    m_disk.WriteTextFile(Path("bad.audioproj"), "rubbish");
    m_ports.messages.Expect(core::Answer::Yes); // its folder is made
    Start(Path("bad.audioproj"));
    EXPECT_EQ(m_ports.messages.LastText(), "Error loading project");
    EXPECT_TRUE(Project().IsNewProject());
}

TEST_F(StartupTest, UnreadableSettingsAreDefaults)
{
    WriteConfig(std::string("\0\xff<Config>", 10) + std::string(5000, '<'));
    m_disk.WriteTextFile(Path("config\\lru.xml"), "<LRU><File0>");
    m_disk.WriteTextFile(Path("config\\window.xml"), "<Window");
    Start();
    EXPECT_TRUE(Project().IsNewProject());
    WindowState state;
    state.Load(m_disk, Path("config"));
    EXPECT_FALSE(state.place);
}

TEST_F(StartupTest, WithoutRoomForAProjectTheProgramSaysSoAndEnds)
{
    ASSERT_TRUE(m_startup->StartEngine());
    m_files.FillDisk();
    EXPECT_FALSE(m_startup->OpenFirstProject({}));
    EXPECT_EQ(m_ports.messages.LastText(), "Error creating project, the program will now exit");
    m_startup->ShutDown();
    EXPECT_NE(m_ports.messages.LastText().find("The settings could not be saved"), std::string::npos);
    EXPECT_EQ(m_window->Workspace().Project(), nullptr);
}

TEST_F(StartupTest, AbandonedProjectsGoAtTheNextStart)
{
    Start();
    m_startup->ShutDown();
    ASSERT_TRUE(m_disk.FolderExists(Path("newprojects\\Project 1")));
    ASSERT_TRUE(m_startup->StartEngine());
    EXPECT_FALSE(m_disk.FolderExists(Path("newprojects\\Project 1")));
}

} // namespace
} // namespace velmora::app
