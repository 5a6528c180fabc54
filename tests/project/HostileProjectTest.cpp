#include "tests/project/ProjectFixture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <random>

namespace velmora::project {
namespace {

class HostileProject : public ProjectTest {
protected:
    HostileProject()
        : m_path(SaveSong())
        , m_text(Read(m_path))
    {
    }

    /// The song's text with the first `from` replaced.
    std::string With(const std::string& from, const std::string& to) const
    {
        std::string text = m_text;
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return at == std::string::npos ? text : text.replace(at, from.size(), to);
    }

    std::string m_path;
    std::string m_text;
};

TEST_F(HostileProject, AFileThatDoesNotPassLeavesThePresentProjectAlone)
{
    ASSERT_TRUE(Load(m_path));
    const std::string bad = m_environment.Path("Bad.audioproj");
    m_environment.disk.MakeFolderIfMissing(m_environment.Path("Bad - Audio files"));
    const std::string present = m_project->GetXMLData();
    const auto opens = [&](const std::string& text) {
        m_environment.disk.WriteTextFile(bad, text);
        return OpenedProject::Open(*m_environment, bad, OpenMode::Edit, m_project->GetAudioPath()).has_value();
    };
    const std::string newer = "Format version is newer than the one supported by this version\nof the software";
    const std::array<std::pair<std::string, std::string>, 14> cases{{
        {"", "File is empty"},
        {"no tags at all", "Error loading file"},
        {std::string(5000, '\0'), "Error loading file"},
        {"<AudioProjects></AudioProjects>", "Error loading file"},
        {"<AudioProject></AudioProject>", "Invalid format version"},
        {With("str: 1.0", "str: 0.9"), "Invalid format version"},
        {With("str: 1.0", "str: nan"), "Invalid format version"},
        {With("str: 1.0", "str: 1.0001"), newer},
        {With("str: 1.0", "int: 2"), newer},
        {With("<Data>", "<Date>"), "File data is missing"},
        {m_text.substr(0, m_text.size() / 2), "File data is missing"},
        {With("<FileVersion>", "<br/><FileVersion>"), "Invalid format version"},
        {"<AudioProject><FileVersion>str: 1.0</FileVersion><Data>x</Data></AudioProject>", "Error loading file"},
        {With("<ProjectFile_Class>", "<ProjectFile>"), "Error loading file"},
    }};
    for (const auto& [text, message] : cases) {
        EXPECT_FALSE(opens(text)) << text.substr(0, 200);
        EXPECT_EQ(Messages().LastText(), message) << text.substr(0, 200);
    }
    m_environment.disk.DeleteFile(bad);
    EXPECT_FALSE(OpenedProject::Open(*m_environment, bad));
    EXPECT_EQ(Messages().LastText(), "Error loading file");
    EXPECT_EQ(m_project->GetXMLData(), present);
    EXPECT_TRUE(m_environment.disk.FileCanBeOpened(m_environment.Path("Bad - Audio files\\accheck.dat")));
}

TEST_F(HostileProject, WhatIsDamagedIsToldAndTheRestComes)
{
    const auto load = [&](const std::string& text) {
        Messages().shown.clear();
        m_environment.disk.WriteTextFile(m_path, text);
        WriteSound("unused.wav");
        EXPECT_TRUE(Load(m_path));
        EXPECT_TRUE(m_project->Modified);
        EXPECT_TRUE(m_environment.ports.trash.moved.empty());
        return Messages().LastText();
    };
    EXPECT_EQ(load(With("<MarkList_Class>", "<Marklist>")), "Error loading marks");
    EXPECT_EQ(m_project->Chn_GetChannelClass_TotalN(), 5);
    EXPECT_EQ(load(With("<ChannelMode>int: 1", "<ChannelMode>int: 0")), "Error loading 1 of 5 channel(s)");
    EXPECT_EQ(m_project->Chn_GetVoiceChannel_TotalN(), 3);
    EXPECT_EQ(load(With("<VoiceChannelArray_C>int: 4", "<VoiceChannelArray_C>int: 2147483647")),
              "Error loading 2147483643 of 2147483648 channel(s)");
    // Fewer than there are, and none at all: no message, but no clean-up either.
    EXPECT_EQ(load(With("<VoiceChannelArray_C>int: 4", "<VoiceChannelArray_C>int: 3")), "");
    EXPECT_EQ(m_project->Chn_GetVoiceChannel_TotalN(), 3);
    EXPECT_EQ(load(With("<VoiceChannelArray_C>int: 4", "<VoiceChannelArray_C>int: -5")), "");
    EXPECT_EQ(load(With("<TimePos>float: 500<", "<TimePos>float: 1e10<")), "");
    EXPECT_EQ(load(With("<Event_Wave_Class>", "<Event_Midi_Class>")), "");
}

TEST_F(HostileProject, ChannelsBeyondAllReasonAreLeftOut)
{
    std::string channels;
    for (int i = 0; i < 3000; ++i) {
        channels += "<MusicChannel item=\"" + std::to_string(i) + "\"><Channel_Class></Channel_Class></MusicChannel>";
    }
    const std::string text = "<AudioProject><FileVersion>str: 1.0</FileVersion><Data><ProjectFile_Class>"
                             "<MusicChannelArray_C>int: 3000</MusicChannelArray_C>" +
                             channels + "</ProjectFile_Class></Data></AudioProject>";
    m_environment.disk.WriteTextFile(m_path, text);
    EXPECT_TRUE(Load(m_path));
    EXPECT_EQ(Messages().LastText(), "Error loading 3000 of 3000 channel(s)");
}

/// Changes a text at one to four places, mostly so that it still looks like a project.
std::string Mutated(std::string text, std::mt19937& random)
{
    static constexpr std::array<std::string_view, 16> kPieces{"float: nan",
                                                              "float: 1e999",
                                                              "float: -1e308",
                                                              "int: 2147483647",
                                                              "int: -2147483648",
                                                              "int: 1e30",
                                                              "str: ..\\..\\x",
                                                              "bool: maybe",
                                                              "<",
                                                              ">",
                                                              "</",
                                                              "<Data><Data><Data>",
                                                              "/>",
                                                              "<?xml",
                                                              "\xFF\xC0\x80",
                                                              "<EventData item=\"1999999999\">"};
    for (unsigned edit = random() % 4 + 1; edit > 0; --edit) {
        const std::size_t at = random() % (text.size() + 1);
        const std::size_t length = std::min<std::size_t>(random() % 60, text.size() - at);
        switch (random() % 6) {
        case 0:
            text.resize(at);
            break;
        case 1:
            text.erase(at, length);
            break;
        case 2:
            text.insert(random() % (text.size() + 1), text.substr(at, 40 * length));
            break;
        case 3:
            text.insert(at, kPieces[random() % kPieces.size()]);
            break;
        case 4: {
            const std::size_t value = std::min(text.find(": ", at), text.size());
            const std::size_t begin = std::min(text.rfind('>', value), text.size());
            const std::size_t end = std::min(text.find('<', value), text.size());
            text.replace(begin, end - begin, begin < text.size() ? ">" : "")
                .insert(std::min(begin + 1, text.size()), kPieces[random() % kPieces.size()]);
            break;
        }
        default:
            if (at < text.size()) {
                text[at] = static_cast<char>(random());
            }
        }
    }
    return text;
}

TEST_F(HostileProject, AnyTextIsRefusedOrBecomesAProjectThatSavesAndLoads)
{
    using Clock = std::chrono::steady_clock;
    const char* seconds = std::getenv("VELMORA_FUZZ_SECONDS");
    const auto end = Clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
    const auto folder = Folder(m_environment.Path("Song - Audio files"));
    std::mt19937 random(3);
    int loaded = 0;
    for (int i = 0; i < 250 || Clock::now() < end; ++i) {
        m_environment.disk.WriteTextFile(m_path, Mutated(m_text, random));
        if (!Load(m_path, OpenMode::ReadOnly, true)) {
            EXPECT_FALSE(Messages().shown.empty());
            continue;
        }
        ++loaded;
        const std::string text = m_project->GetXMLData();
        Restart();
        ASSERT_TRUE(m_project->LoadXMLData(text, true, true, false));
        if (m_environment->ids.Draw() < core::kGreatestAdoptedID) {
            ASSERT_EQ(m_project->GetXMLData(), text) << "mutation " << i;
        }
        Messages().shown.clear();
    }
    EXPECT_GT(loaded, 50);
    EXPECT_EQ(Folder(m_environment.Path("Song - Audio files")), folder);
}

} // namespace
} // namespace velmora::project
