#include "app/WindowState.h"

#include "app/MainLayout.h"
#include "app/ShownText.h"
#include "app/TimeLeft.h"

#include <gtest/gtest.h>

namespace velmora::app {
namespace {

TEST(WindowState, ComesBackAsItWent)
{
    WindowState state;
    state.place = Box{-40, 12, 1100, 600};
    state.maximized = true;
    state.lastFolder = "Z:\\home\\ann & bob\\songs";
    WindowState read;
    read.LoadXMLData(state.GetXMLData());
    EXPECT_EQ(read.place, state.place);
    EXPECT_TRUE(read.maximized);
    EXPECT_EQ(read.lastFolder, state.lastFolder);

    const std::string vast =
        "<Window>\r\n<Left>int: 9</Left>\r\n<Top>int: 9</Top>\r\n<Width>int: 2000000000</Width>\r\n"
        "<Height>int: 9</Height>\r\n</Window>\r\n";
    for (const std::string& text : {std::string(), std::string("rubbish"), vast}) {
        read.LoadXMLData(text);
        EXPECT_FALSE(read.place) << text;
        EXPECT_FALSE(read.maximized);
    }
}

TEST(WindowState, AWindowIsBroughtBackToAScreenThatIsThere)
{
    const Box left{0, 0, 1920, 1080};
    const Box right{1920, 0, 1280, 1024};
    const Box onRight{2000, 100, 1100, 600};
    EXPECT_EQ(BringOnScreen(onRight, {left, right}), onRight);
    EXPECT_EQ(BringOnScreen(onRight, {left}), (Box{820, 100, 1100, 600})) << "its screen has gone";
    EXPECT_EQ(BringOnScreen({0, 1070, 800, 600}, {left}), (Box{0, 480, 800, 600})) << "only a sliver could be seen";
    EXPECT_EQ(BringOnScreen({100, -300, 800, 600}, {left}), (Box{100, 0, 800, 600})) << "no title to grab";
    EXPECT_EQ(BringOnScreen({9000, 9000, 4000, 3000}, {left}), left);
    EXPECT_EQ(BringOnScreen(onRight, {}), onRight);
    // Half outside is where the user put it.
    EXPECT_EQ(BringOnScreen({-900, 50, 1100, 600}, {left}), (Box{-900, 50, 1100, 600}));
}

TEST(MainLayout, DividersStandClearOfTheControlsAtEveryWidth)
{
    for (int width = kMinimumWidth; width < 800; ++width) {
        const MainLayout layout = ArrangeMain(width, 600);
        const auto [voice, master, overview] = layout.dividers;
        EXPECT_GE(voice, layout.musicFrame.Right()) << width;
        EXPECT_LT(voice, layout.voiceFrame.left + 16) << width;
        EXPECT_GE(master, layout.voiceFrame.Right()) << width;
        EXPECT_LT(master, layout.masterPanel.left + 16) << width;
        EXPECT_GE(overview, layout.masterPanel.left + 82) << width;
        EXPECT_LT(overview, layout.overview.left) << width;
    }
    EXPECT_EQ(ArrangeMain(1320, 760).dividers, (std::array{345, 700, 817}));
}

TEST(MainLayout, WidthGoesToTheGapsFirst)
{
    EXPECT_EQ(ArrangeMain(760, 530).voiceFrame.left, 327 + 6);
    const MainLayout narrow = ArrangeMain(751, 530);
    EXPECT_EQ(narrow, MainLayout{});
    EXPECT_EQ(ArrangeMain(751, 600).voiceFrame.left, 328);
    const MainLayout wide = ArrangeMain(1320, 760);
    EXPECT_EQ(wide.voiceFrame.left, 355);
    EXPECT_EQ(wide.masterPanel.left, 710);
    EXPECT_EQ(wide.overview.left, 835);
    EXPECT_EQ(wide.overview.Right(), 1316);
    EXPECT_EQ(wide.overviewLabel.left, 839);
    EXPECT_EQ(wide.editor, (Box{0, 368, 1320, 392}));
    EXPECT_GE(ArrangeMain(756, 530).overview.width, 0);
}

TEST(ShownText, PathsStandAsTheSystemWritesThem)
{
    EXPECT_EQ(ShownText("Invalid sound file: Z:\\home\\a b.wav"), "Invalid sound file: /home/a b.wav");
    EXPECT_EQ(ShownText("Folder doesn't exist:\nZ:\\x\\y\nCreate folder"),
              "Folder doesn't exist:\n/x/y\nCreate folder");
    EXPECT_EQ(ShownText("C:\\music\\a.wav"), "C:\\music\\a.wav");
    EXPECT_EQ(ShownTime(62999), "01:02");
    EXPECT_EQ(ShownWithTime("Chorus", 48000), "Chorus  (00:48)");
}

TEST(TimeLeft, SaysNothingBeforeItKnows)
{
    EXPECT_EQ(TimeLeftText(100, 0.5), "50 %");
    EXPECT_EQ(TimeLeftText(2000, 0), "0 %");
    EXPECT_EQ(TimeLeftText(2000, 0.25), "25 %, 6 s left");
    EXPECT_EQ(TimeLeftText(60000, 0.25), "25 %, 3:00 min left");
    EXPECT_EQ(TimeLeftText(2000, 1.5), "100 %, 0 s left");
}

} // namespace
} // namespace velmora::app
