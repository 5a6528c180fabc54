/// The main window, looked at from within. Prints what bench/window.py makes tables of.
///   velmora-window-bench start PROJECT     the clock in s when the window was ready
///   velmora-window-bench use SMALL BIG     a session with a big project: how long each step held the interface
///   velmora-window-bench write SMALL BIG   exports and compresses it: how long requests for painting waited

#include "app/Program.h"
#include "bench/WindowSession.h"
#include "bench/WindowWatch.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    using namespace velmora::bench;
    const std::string mode = argc > 1 ? argv[1] : "";
    const bool starts = mode == "start";
    if (argc != (starts ? 3 : 4)) {
        std::fputs("usage: velmora-window-bench start PROJECT | use SMALL BIG | write SMALL BIG\n", stderr);
        return 2;
    }
    const std::string big = starts ? "" : argv[3];
    // What follows the mode is the program's command line.
    argv[1] = argv[2];
    argv[2] = nullptr;
    int count = 2;
    WatchedApplication application(count, argv);
    if (starts) {
        application.onReady = PrintTimeAndLeave;
        return velmora::app::RunProgram(application);
    }
    WindowSession session(application, mode == "use", big);
    application.onReady = [&session] { session.Start(); };
    return velmora::app::RunProgram(application);
}
