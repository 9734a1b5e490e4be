// Test entry: the BLAS settled as the application settles it, a QApplication on the offscreen platform, so
// window tests need no display, the C numeric locale and the window's resources, as the application has them.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

#include "engine/blas_setup.h"
#include "platform/app.h"
#include "shell/mainwindow.h"

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);
    ::testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    AfxInitPlatform();
    AfxSetResourceTable(VantrelResources());
    return RUN_ALL_TESTS();
}
