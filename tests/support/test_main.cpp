// Test entry: a QApplication on the offscreen platform, so window tests need no display, and the C numeric
// locale, as the application has it.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

#include "platform/app.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    AfxInitPlatform();
    return RUN_ALL_TESTS();
}
