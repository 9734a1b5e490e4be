// Test entry: the BLAS settled as the application settles it, a QApplication on the offscreen platform, so
// window tests need no display, and the C numeric locale, as the application has it.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

#include "engine/blas_setup.h"
#include "platform/app.h"

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);
    ::testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    AfxInitPlatform();
    return RUN_ALL_TESTS();
}
