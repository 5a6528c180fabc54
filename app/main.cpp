#include "app/Program.h"

#include <QApplication>
#include <csignal>

int main(int argc, char** argv)
{
    // A file that grows beyond a limit is a failed write, with a message, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    QApplication application(argc, argv);
    return velmora::app::RunProgram(application);
}
