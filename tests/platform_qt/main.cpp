#include "fakes/CriticalMessages.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    drx9::CriticalMessages::failTests();
    return RUN_ALL_TESTS();
}
