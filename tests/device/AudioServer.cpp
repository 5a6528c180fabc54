#include "tests/device/AudioServer.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::testing {
namespace {

/// Starts a program; its output goes to `output`, if told.
pid_t Run(std::vector<std::string> command, const std::filesystem::path& output = {})
{
    std::vector<char*> arguments;
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    if (!output.empty()) {
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    }
    pid_t process = 0;
    const int error = posix_spawnp(&process, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) {
        throw std::runtime_error(command[0] + ": " + std::strerror(error));
    }
    return process;
}

void RunToEnd(const std::vector<std::string>& command, const std::filesystem::path& output = {})
{
    int status = 0;
    waitpid(Run(command, output), &status, 0);
    if (status != 0) {
        throw std::runtime_error(command[0] + " failed");
    }
}

} // namespace

AudioServer::AudioServer()
{
    const std::string folder = Folder().native();
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    setenv("HOME", (folder + "/home").c_str(), 1);
    setenv("PULSE_SERVER", ("unix:" + folder + "/pulse.sock").c_str(), 1);
    setenv("ALSA_CONFIG_PATH", "/dev/null", 1);
}

AudioServer::~AudioServer()
{
    if (m_process != 0) {
        Kill();
    }
}

void AudioServer::Start(const std::vector<std::string>& sinks)
{
    std::vector<std::string> command{VELMORA_AUDIO_SERVER, "start", Folder().native()};
    command.insert(command.end(), sinks.begin(), sinks.end());
    RunToEnd(command, Folder() / "started");
    std::ifstream(Folder() / "pid") >> m_process;
}

void AudioServer::Kill()
{
    ::kill(m_process, SIGKILL);
    m_process = 0;
}

void AudioServer::Hang()
{
    ::kill(m_process, SIGSTOP);
}

void AudioServer::GoOn()
{
    ::kill(m_process, SIGCONT);
}

void AudioServer::Control(const std::vector<std::string>& command) const
{
    std::vector<std::string> whole{"pactl"};
    whole.insert(whole.end(), command.begin(), command.end());
    RunToEnd(whole, Folder() / "pactl");
}

Recording::Recording(const AudioServer& server, const std::string& sink)
    : m_file(server.Folder() / ("recorded-" + sink))
    , m_process(Run({"parec", "--device=" + sink + ".monitor", "--format=s16le", "--rate=44100", "--channels=2",
                     "--latency-msec=20", "--raw"},
                    m_file))
{
    if (!Becomes([this] { return !Samples().empty(); })) {
        throw std::runtime_error("nothing is recorded");
    }
}

Recording::~Recording()
{
    ::kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
}

bool Recording::HasHeard(std::size_t frames) const
{
    return Becomes([&] {
        const auto samples = Samples();
        std::size_t heard = 0;
        for (std::size_t i = 0; i < samples.size(); i += 2) {
            heard += samples[i] != 0 || samples[i + 1] != 0;
        }
        return heard >= frames;
    });
}

std::vector<std::int16_t> Recording::Samples() const
{
    std::ifstream file(m_file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::vector<std::int16_t> samples(bytes.size() / 4 * 2);
    std::memcpy(samples.data(), bytes.data(), 2 * samples.size());
    return samples;
}

} // namespace velmora::testing
