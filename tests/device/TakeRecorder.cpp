/// Records a take in a new project until it is killed: TakeRecorder FOLDER [PROJECT]. The folder has a path table; the
/// project is saved as PROJECT, if told, before the take begins. Writes a line with the file's path once the take runs,
/// and then lines with the ms since and the bytes of sound that the file's header tells.
#include "audio/Recorder_Class.h"
#include "audio/SoundSession.h"
#include "core/MsgIds.h"
#include "core/Paths.h"
#include "core/PosixFiles.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "tests/support/ScriptedPorts.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>

using namespace velmora;
using namespace std::chrono_literals;

namespace {

std::uint32_t SoundBytes(const std::string& path)
{
    constexpr std::size_t kHeader = 256;
    std::ifstream file(path, std::ios::binary);
    std::string head(kHeader, '\0');
    file.read(head.data(), kHeader);
    const std::size_t data = head.find("data");
    std::uint32_t bytes = 0;
    if (data != std::string::npos && data + 8 <= head.size()) {
        for (std::size_t i = 8; i > 4; --i) {
            bytes = bytes << 8 | static_cast<std::uint8_t>(head[data + i - 1]);
        }
    }
    return bytes;
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 2) {
        return 2;
    }
    const std::string folder = core::InternalPath(arguments[1]);
    velmora::testing::ScriptedPorts ports;
    ports.shellFolders.appExe = folder;
    core::PosixFiles files;
    core::Environment environment(ports.All(), files);
    environment.paths.LoadPaths(folder + "\\paths.cfg");
    environment.config.Global_InputDevice = 0;
    const auto session = audio::SoundSession::Start(environment);
    project::ProjectFile_Class project(environment);
    project.InitializeClass();
    if (!session || !project.CreateNewProject()) {
        return 1;
    }
    if (count > 2 && !project.SaveProject(core::InternalPath(arguments[2]))) {
        return 1;
    }
    core::MsgParametersClass params;
    params.SelectChannelID = project.Chn_GetVoiceChannelObj_by_Index(1)->ClassID();
    project.MsgSender->SendMsg(-1, core::Msg_SelectVoiceChannel, params);
    core::MsgParametersClass seek;
    seek.PlayFromMS = core::kUnset;
    seek.PlayToMS = 1500;
    project.MsgSender->SendMsg(-1, core::Msg_Player_SetRange, seek);
    const std::string path = core::PosixPath(project.Recorder->RecordFileName());
    core::MsgParametersClass start;
    project.MsgSender->SendMsg(-1, core::Msg_Recorder_Start, start);
    if (!project.Recorder->isRecording()) {
        std::cerr << ports.messages.LastText() << '\n';
        return 1;
    }
    const auto began = std::chrono::steady_clock::now();
    std::cout << path << std::endl;
    while (project.Recorder->isRecording()) {
        // The time first: what the header tells is never of an earlier moment.
        const auto since = std::chrono::steady_clock::now() - began;
        const std::uint32_t bytes = SoundBytes(path);
        std::cout << std::chrono::duration_cast<std::chrono::milliseconds>(since).count() << ' ' << bytes << std::endl;
        std::this_thread::sleep_for(20ms);
        ports.timers.Advance(20ms);
    }
    return 1;
}
