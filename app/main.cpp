#include "app/Program.h"
#include "controls/Icons.h"
#include "controls/LookStyle.h"

#include <QApplication>
#include <csignal>

int main(int argc, char** argv)
{
    // A file that grows beyond a limit is a failed write, with a message, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    QApplication application(argc, argv);
    QApplication::setApplicationName("velmora");
    QApplication::setApplicationVersion(VELMORA_VERSION);
    QApplication::setDesktopFileName("velmora");
    // The window decides, by its questions.
    QApplication::setQuitOnLastWindowClosed(false);
    velmora::controls::InstallLook(application);
    QApplication::setWindowIcon(velmora::controls::ProgramIcon());

    std::vector<std::string> arguments;
    for (const QString& argument : QApplication::arguments().sliced(1)) {
        arguments.push_back(argument.toStdString());
    }
    return velmora::app::Program().Run(arguments);
}
