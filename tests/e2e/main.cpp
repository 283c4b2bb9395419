// The tests run inside the application's event loop, as the program does.
#include "controls/Theme.h"
#include "fakes/CriticalMessages.h"
#include "platform/qt/EventLoopChoice.h"

#include <QApplication>
#include <QTimer>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    testing::InitGoogleTest(&argc, argv);
    const drx9::EventLoopChoice choice; // as the program does
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    drx9::applyDesktopTheme(app);
    drx9::CriticalMessages::failTests();
    QTimer::singleShot(0, &app, [] { QApplication::exit(RUN_ALL_TESTS()); });
    return QApplication::exec();
}
