/// Opens a project read-only, several times over, and prints the milliseconds of each load.
/// Usage: velmora-load-bench PROJECT [TIMES]

#include "audio/SoundSession.h"
#include "core/Environment.h"
#include "core/Paths.h"
#include "core/PosixFiles.h"
#include "project/ProjectFile_Class.h"
#include "render/ConsolePorts.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    using namespace velmora;
    if (argc < 2) {
        return 2;
    }
    render::ConsolePorts ports;
    core::PosixFiles files;
    core::Environment environment(ports.Ports(), files);
    environment.config.Global_OutputDevice = 0;
    const auto session = audio::SoundSession::Start(environment);
    const int times = argc > 2 ? std::atoi(argv[2]) : 1;
    for (int i = 0; i < times && session != nullptr; ++i) {
        const auto begun = std::chrono::steady_clock::now();
        environment.ids.Reset();
        project::ProjectFile_Class project(environment);
        project.InitializeClass();
        if (!project.LoadProject(core::InternalPath(argv[1]), project::OpenMode::ReadOnly)) {
            return 1;
        }
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
        std::printf("%.3f\n", took.count());
    }
    return session != nullptr ? 0 : 1;
}
