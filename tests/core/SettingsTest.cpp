#include "persistence/UTIL_XMLWrite.h"
#include "tests/support/TestEnvironment.h"

#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view kDefaultConfig = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
                                            "<Config>\r\n"
                                            "  <BassDevice_Freq>int: 44100</BassDevice_Freq>\r\n"
                                            "  <BassRecDevice_Freq>int: 44100</BassRecDevice_Freq>\r\n"
                                            "  <BassBuffer_LengthMS>int: -1</BassBuffer_LengthMS>\r\n"
                                            "  <Global_FirstRun>bool: True</Global_FirstRun>\r\n"
                                            "  <Global_InputDevice>int: 0</Global_InputDevice>\r\n"
                                            "  <Global_OutputDevice>int: -1</Global_OutputDevice>\r\n"
                                            "  <Global_Rec_RecordAsMono>bool: False</Global_Rec_RecordAsMono>\r\n"
                                            "  <Playback_Jumpback>int: 1</Playback_Jumpback>\r\n"
                                            "  <EncWaveFormat.freq>int: 44100</EncWaveFormat.freq>\r\n"
                                            "  <EncWaveFormat.nChannels>int: 2</EncWaveFormat.nChannels>\r\n"
                                            "  <EncWMAFormat.freq>int: 44100</EncWMAFormat.freq>\r\n"
                                            "  <EncWMAFormat.nChannels>int: 2</EncWMAFormat.nChannels>\r\n"
                                            "  <EncWMAFormat.bitrate>int: 128000</EncWMAFormat.bitrate>\r\n"
                                            "</Config>\r\n";

std::vector<std::string> ListOf(const LRU_Class& recent)
{
    std::vector<std::string> list;
    for (std::int32_t i = 0; i < recent.TotalItems(); ++i) {
        list.push_back(recent.GetFile_ByIndex(i));
    }
    return list;
}

TEST(Configuration, IsWrittenToTheByteAndComesBack)
{
    EXPECT_EQ(Configuration{}.GetXMLData(), kDefaultConfig);

    testing::TestEnvironment environment;
    environment->config.BassDevice_Freq = 48000;
    environment->config.Global_FirstRun = false;
    environment->config.Global_OutputDevice = 3;
    environment->config.EncWMAFormat = {22050, 1, 64000};
    environment->config.Recording_OffsetMS = -12;
    environment->recent.AddFile("Z:\\a & b.audioproj");
    ASSERT_TRUE(environment->SaveSettings());
    environment->config = {};
    environment->recent = {};
    environment->LoadSettings();
    EXPECT_EQ(environment->config.BassDevice_Freq, 44100) << "always reset";
    EXPECT_FALSE(environment->config.Global_FirstRun);
    EXPECT_EQ(environment->config.Global_OutputDevice, 3);
    EXPECT_EQ(environment->config.EncWMAFormat.freq, 22050);
    EXPECT_EQ(environment->config.EncWMAFormat.bitrate, 64000);
    EXPECT_EQ(environment->config.Recording_OffsetMS, -12);
    EXPECT_THAT(ListOf(environment->recent), ElementsAre("Z:\\a & b.audioproj"));

    environment.files.FillDisk();
    environment->config.Global_OutputDevice = 4;
    EXPECT_FALSE(environment->SaveSettings());
    environment->LoadSettings();
    EXPECT_EQ(environment->config.Global_OutputDevice, 3);
}

TEST(Configuration, TakesDefaultsForWhatIsMissingOrDamaged)
{
    Configuration config;
    config.LoadXMLData("");
    EXPECT_EQ(config.GetXMLData(), kDefaultConfig);
    config.Playback_Jumpback = 0;
    config.LoadXMLData("<config><BassBuffer_LengthMS>int: 99999</BassBuffer_LengthMS>"
                       "<EncWMAFormat.freq >int: 8000</EncWMAFormat.freq></config>");
    EXPECT_EQ(config.BassBuffer_LengthMS, -1) << "does not fit 16 bits";
    EXPECT_EQ(config.EncWMAFormat.freq, 8000);
    EXPECT_EQ(config.Playback_Jumpback, 1);
}

/// Truncated, mutated and random files load without a crash, a box or a list that holds more than it may.
TEST(Settings, SurviveAnyBytes)
{
    testing::TestEnvironment environment;
    for (int i = 0; i < 9; ++i) {
        environment->recent.AddFile("Z:\\p" + std::to_string(i) + ".audioproj");
    }
    const std::string list = environment->recent.GetXMLData();
    std::mt19937 random(3);
    const auto load = [&](std::string_view text) {
        environment->config.LoadXMLData(text);
        environment->recent.LoadXMLData(text);
        EXPECT_LE(environment->recent.TotalItems(), LRU_Class::kSlots);
        EXPECT_EQ(environment->config.BassDevice_Freq, 44100);
    };
    for (const std::string& whole : {std::string(kDefaultConfig), list}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            load(std::string_view(whole).substr(0, length));
        }
        for (int i = 0; i < 2000; ++i) {
            std::string text = whole;
            for (int k = 0; k < 5; ++k) {
                text[random() % text.size()] = static_cast<char>(random());
            }
            load(text);
        }
    }
    EXPECT_THAT(environment.ports.messages.shown, IsEmpty());
}

TEST(LRU_Class, KeepsNineNewestFirst)
{
    LRU_Class recent;
    for (int i = 0; i < 10; ++i) {
        recent.AddFile(" Z:\\" + std::to_string(i) + ' ');
    }
    recent.AddFile("  ");
    EXPECT_EQ(recent.TotalItems(), 9);
    EXPECT_EQ(recent.GetFile_ByIndex(0), "Z:\\9");
    EXPECT_EQ(recent.GetFile_ByIndex(8), "Z:\\1");
    recent.AddFile("Z:\\4");
    recent.AddFile("Z:\\1");
    EXPECT_THAT(ListOf(recent),
                ElementsAre("Z:\\1", "Z:\\4", "Z:\\9", "Z:\\8", "Z:\\7", "Z:\\6", "Z:\\5", "Z:\\3", "Z:\\2"));
    EXPECT_EQ(recent.GetFile_ByIndex(9), "");
    EXPECT_EQ(recent.GetFile_ByIndex(-1), "");

    testing::TestEnvironment environment;
    ASSERT_TRUE(environment.disk.WriteTextFile(environment.Path("here"), ""));
    LRU_Class gaps;
    gaps.LoadXMLData("<LRU><File1>str: Z:\\gone</File1><File4>str: " + environment.Path("here") + "</File4></LRU>");
    EXPECT_EQ(gaps.GetXMLData(), "<LRU>\r\n  <File0>str: Z:\\gone</File0>\r\n  <File1>str: " +
                                     environment.Path("here") + "</File1>\r\n</LRU>\r\n");
    gaps.CheckRemovedItems(environment.disk);
    EXPECT_THAT(ListOf(gaps), ElementsAre(environment.Path("here")));
}

TEST(AppPaths, ExpandPlaceholdersAndSkipOtherLines)
{
    testing::TestEnvironment environment;
    auto& shell = environment.ports.shellFolders;
    shell.appExe = "Z:\\opt";
    shell.folders = {{ShellFolder::MyDocuments, "Z:\\docs"},
                     {ShellFolder::ApplicationData, "Z:\\{appexe}{mydocuments}"}};
    ASSERT_TRUE(environment.disk.WriteTextFile(environment.Path("other.cfg"),
                                               " Config = {appexe}\\c{APPEXE} \r\n"
                                               "a=b=c\rno line\n=empty key\n"
                                               "presets={MyDocuments}\\{ApplicationData}{else}\n"
                                               "examples=/usr/share/x\nempty=\n"
                                               "gone={CommonApplicationData}\\x"));
    environment->paths.LoadPaths(environment.Path("other.cfg"));
    EXPECT_EQ(environment->paths.GetPath("CONFIG"), "Z:\\opt\\cZ:\\opt");
    EXPECT_EQ(environment->paths.GetPath("presets"), "Z:\\docs\\Z:\\{appexe}{mydocuments}{else}")
        << "what was put in is not expanded";
    EXPECT_EQ(environment->paths.GetPath("examples"), "Z:\\usr\\share\\x");
    EXPECT_EQ(environment->paths.GetPath("empty"), "");
    EXPECT_EQ(environment->paths.GetPath("newprojects"), "Z:\\opt\\newprojects") << "another file adds to the table";
    EXPECT_THAT(environment.ports.messages.shown, IsEmpty());
    EXPECT_EQ(environment->paths.GetPath("a"), "");
    EXPECT_EQ(environment.ports.messages.LastText(), "Error retrieving path: a");
}

TEST(Environment, ShowsFaultsOfTheTagLanguage)
{
    testing::TestEnvironment environment;
    persistence::UTIL_XMLWrite writer;
    writer.Add_Element("a", 1);
    writer.SetAttributes("late");
    EXPECT_THAT(environment.ports.messages.Texts(),
                ElementsAre("Can't set Attributes after an element was added\nUTIL_XMLWrite::Attributes (Property)"));
}

} // namespace
} // namespace velmora::core
