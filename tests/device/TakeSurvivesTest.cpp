#include "audio/AudioPlayer_Class.h"
#include "audio/Recorder_Class.h"
#include "core/BassHelpers.h"
#include "core/Paths.h"
#include "core/ProgramFolders.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"
#include "tests/device/AudioServer.h"
#include "tests/project/ProjectFixture.h"
#include "tests/support/FileSizeLimit.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <random>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::project {
namespace {

using ::testing::HasSubstr;
using namespace std::chrono_literals;

/// The helper program, recording into `folder`.
class OtherProgram {
public:
    /// In a new project, or in one that it saves under that path first.
    explicit OtherProgram(const testing::TemporaryFolder& folder, std::string project = {})
        : m_output(folder.Posix() / "take-recorder.txt")
    {
        std::string program = VELMORA_TAKE_RECORDER;
        std::string argument = folder.Posix().native();
        const std::array<char*, 4> arguments{program.data(), argument.data(),
                                             project.empty() ? nullptr : project.data(), nullptr};
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, m_output.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        EXPECT_EQ(posix_spawn(&m_process, program.c_str(), &files, nullptr, arguments.data(), environ), 0);
        posix_spawn_file_actions_destroy(&files);
    }
    ~OtherProgram() { Kill(); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    void Kill()
    {
        if (m_process != 0) {
            ::kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
            m_process = 0;
        }
    }

    struct Report {
        std::string path;
        std::int64_t ms = -1;
        std::int64_t bytes = 0;
    };
    /// The last that it has told in whole.
    Report Told() const
    {
        std::ifstream file(m_output);
        Report report;
        std::getline(file, report.path);
        for (std::string line; std::getline(file, line) && !file.eof();) {
            report.ms = std::stoll(line);
            report.bytes = std::stoll(line.substr(line.find(' ')));
        }
        return report;
    }

private:
    std::filesystem::path m_output;
    pid_t m_process = 0;
};

int Kills()
{
    const char* wanted = std::getenv("VELMORA_KILLS");
    return wanted ? std::atoi(wanted) : 3;
}

/// The start of the program, without ears.
std::unique_ptr<audio::SoundSession> Begin(testing::TestEnvironment& environment)
{
    environment->config.Global_OutputDevice = 0;
    core::ClearAbandonedProjects(*environment);
    return audio::SoundSession::Start(*environment);
}

TEST(TakeSurvives, AnotherStartOfTheProgram)
{
    testing::AudioServer server;
    server.Start();
    testing::TestEnvironment environment;
    const OtherProgram other(environment.folder);
    ASSERT_TRUE(testing::Becomes([&] { return other.Told().ms >= 0; })) << "it does not record";
    const auto session = Begin(environment);
    ProjectFile_Class project(*environment);
    project.InitializeClass();
    ASSERT_TRUE(project.CreateNewProject());
    project.util_OfferAbandonedTakes();
    EXPECT_TRUE(environment.ports.messages.asked.empty());
    const std::int64_t bytes = other.Told().bytes;
    EXPECT_TRUE(testing::Becomes([&] { return other.Told().bytes > bytes; })) << "it goes on recording";
}

TEST(TakeSurvives, AnotherStartOfTheProgramOnItsProject)
{
    testing::AudioServer server;
    server.Start();
    testing::TestEnvironment environment;
    testing::ScriptedMessageBoxes& messages = environment.ports.messages;
    const std::string song = environment.Path("Song.audioproj");
    OtherProgram other(environment.folder, core::PosixPath(song));
    ASSERT_TRUE(testing::Becomes([&] { return other.Told().ms >= 500; })) << "it does not record";
    const auto session = Begin(environment);
    ProjectFile_Class project(*environment);
    project.InitializeClass();
    messages.Expect(core::Answer::Yes);
    EXPECT_FALSE(project.LoadProject(song));
    EXPECT_THAT(messages.asked.back().text, HasSubstr("Project already open. Force load ?"));
    EXPECT_EQ(messages.LastText(), "Error opening project");
    const std::int64_t bytes = other.Told().bytes;
    EXPECT_TRUE(testing::Becomes([&] { return other.Told().bytes > bytes; })) << "it goes on recording";

    other.Kill();
    messages.Expect(core::Answer::Yes);
    ASSERT_TRUE(project.LoadProject(song));
    ASSERT_TRUE(messages.AllAsked());
    EXPECT_THAT(messages.asked.back().text, HasSubstr("The project has recordings that were not saved with it:"));
    const auto rows = project.Chn_GetVoiceChannelObj_by_Index(1)->ChannelData->InTimeOrder();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]->TimePos, 1500);
    EXPECT_GE(rows[0]->EventOBJ->EndMS, 500);
}

/// Whatever moment a kill comes at, what was written is offered by the next start.
TEST(TakeSurvives, AKillAtAnyMoment)
{
    testing::AudioServer server;
    server.Start();
    std::mt19937 random(7);
    for (int i = 0; i < Kills(); ++i) {
        testing::TestEnvironment environment;
        OtherProgram::Report told;
        {
            OtherProgram other(environment.folder);
            const auto wait = static_cast<std::int64_t>(random() % 4000);
            ASSERT_TRUE(testing::Becomes([&] { return other.Told().ms >= wait; })) << "it does not record";
            other.Kill();
            told = other.Told();
        }
        const std::string wav = core::InternalPath(told.path);
        const auto session = Begin(environment);
        ProjectFile_Class project(*environment);
        project.InitializeClass();
        ASSERT_TRUE(project.CreateNewProject());
        bool failed = true;
        const std::int64_t lengthMS = core::GetAudioFileLengthMS(wav, &failed);
        const auto bytes = static_cast<std::int64_t>(4 * audio::ReadWav(wav).Frames());
        EXPECT_FALSE(failed);
        EXPECT_GE(bytes, told.bytes) << "after " << told.ms << " ms";
        EXPECT_GE(lengthMS, told.ms - 1000);
        RecordProperty("missing_ms_" + std::to_string(i), std::to_string(told.ms - lengthMS));

        environment.ports.messages.Expect(core::Answer::Yes);
        project.util_OfferAbandonedTakes();
        ASSERT_TRUE(environment.ports.messages.AllAsked());
        const auto rows = project.Chn_GetVoiceChannelObj_by_Index(1)->ChannelData->InTimeOrder();
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0]->TimePos, 1500);
        EXPECT_EQ(rows[0]->EventOBJ->EndMS, lengthMS);
        EXPECT_LE(rows[0]->EventOBJ->StartMS, lengthMS);
        std::printf("killed after %lld ms: %lld ms kept, start at %d ms\n", static_cast<long long>(told.ms),
                    static_cast<long long>(lengthMS), rows[0]->EventOBJ->StartMS);
    }
}

struct RunningServer {
    RunningServer() { server.Start(); }
    testing::AudioServer server;
};

/// A new project on the server's default devices.
class TakeOnServer : private RunningServer, public ProjectTest {
protected:
    TakeOnServer()
    {
        m_session.reset();
        m_environment->config.Global_OutputDevice = -1;
        m_environment->config.Global_InputDevice = 0;
        m_session = audio::SoundSession::Start(*m_environment);
        StartNew();
        core::MsgParametersClass params;
        params.SelectChannelID = Voice(0).ClassID();
        Send(core::Msg_SelectVoiceChannel, params);
    }

    testing::AudioServer& Server() { return server; }

    /// Starts a take, and returns when a second of it has passed.
    void Record()
    {
        Send(core::Msg_Recorder_Start);
        ASSERT_TRUE(m_project->Recorder->isRecording()) << Messages().LastText();
        Hear(1000);
    }

    void Hear(std::int32_t ms)
    {
        EXPECT_TRUE(testing::Becomes([&] { return m_project->Player->GetTimePos() >= ms; }));
    }

    bool EndsByItself()
    {
        return testing::Becomes([this] {
            m_environment.ports.timers.Advance(200ms);
            return !m_project->Recorder->isRecording();
        });
    }

    std::int32_t LengthOfTake(std::size_t number)
    {
        const auto rows = Voice(0).ChannelData->InTimeOrder();
        return rows.size() > number ? rows[number]->EventOBJ->EndMS : -1;
    }
};

TEST_F(TakeOnServer, EndsWithTheServerAndTheNextOneNeedsOnlyANewServer)
{
    Record();
    Server().Kill();
    ASSERT_TRUE(EndsByItself());
    EXPECT_GE(LengthOfTake(0), 500);
    EXPECT_THAT(Messages().LastText(), HasSubstr("the input device is gone"));

    Server().Start();
    ASSERT_TRUE(testing::Becomes([this] {
        Send(core::Msg_Recorder_Start);
        return m_project->Recorder->isRecording();
    }));
    Hear(1000);
    Send(core::Msg_Recorder_Stop);
    EXPECT_EQ(Voice(0).ChannelData->InTimeOrder().size(), 2U);
    EXPECT_GE(LengthOfTake(1), 500);
}

TEST_F(TakeOnServer, EndsWithAFullDisk)
{
    {
        const testing::FileSizeLimit limit(150'000);
        Record();
        ASSERT_TRUE(EndsByItself());
    }
    EXPECT_GE(LengthOfTake(0), 500);
    EXPECT_THAT(Messages().LastText(), HasSubstr("its file could not be written"));
}

TEST_F(TakeOnServer, IsAccompaniedByTheMetronomeAsSet)
{
    core::MsgParametersClass click;
    click.Text = m_environment.Path("click.wav");
    audio::WriteWav(click.Text, {44'100, 1, std::vector<std::int16_t>(2000, 9000)});
    Send(core::Msg_Metronome_SetFile, click);
    SendToChannel(core::Msg_Metronome_Enable, 0, core::kTrue);
    const testing::Recording ear(Server());
    Send(core::Msg_Player_Play);
    Hear(1000);
    Send(core::Msg_Player_Stop);
    std::vector<std::int16_t> heard = ear.Samples();
    EXPECT_EQ(std::ranges::count(heard, 0), std::ssize(heard)) << "not beside takes";

    Send(core::Msg_Recorder_Start);
    EXPECT_TRUE(ear.HasHeard(2000));
    SendToChannel(core::Msg_Metronome_SetOnRecording, 0, core::kFalse);
    Hear(player_GetTimePos() + 3500);
    heard = ear.Samples();
    const auto last = heard.end() - std::ptrdiff_t{2} * 2 * 44'100;
    EXPECT_EQ(std::count(last, heard.end(), 0), heard.end() - last);
    Send(core::Msg_Recorder_Stop);
}

} // namespace
} // namespace velmora::project
