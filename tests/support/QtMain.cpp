#include "controls/LookStyle.h"

#include <QApplication>

#include <gtest/gtest.h>

/// Entry of tests of widgets: they need an application object, and no display.
int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    velmora::controls::InstallLook(application);
    return RUN_ALL_TESTS();
}
