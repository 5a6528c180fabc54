#include "render/Renderer.h"

#include <csignal>

int main(int argc, char** argv)
{
    using namespace velmora::render;
    // A file that grows beyond a limit is a failed write, with a message, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    static char name[] = "velmora-render"; // what getopt's messages begin with
    if (argc > 0) {
        argv[0] = name;
    }
    const auto parsed = ParseCommandLine(argc, argv);
    const auto* options = std::get_if<Options>(&parsed);
    return options ? Render(*options) : std::get<int>(parsed);
}
