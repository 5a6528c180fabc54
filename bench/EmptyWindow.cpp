/// An empty window, to compare the program's start with: prints the clock in s when it was ready, and ends.

#include "bench/WindowWatch.h"

int main(int argc, char** argv)
{
    velmora::bench::WatchedApplication application(argc, argv);
    application.onReady = velmora::bench::PrintTimeAndLeave;
    QWidget window;
    // As large as the main window is at first.
    window.resize(1087, 556);
    window.show();
    return QApplication::exec();
}
