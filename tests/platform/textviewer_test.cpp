// The written file is always shown: by the desktop's program when it has one, else in a read-only viewer.
#include <gtest/gtest.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <cstdlib>
#include <sys/stat.h>

#include "platform/textviewer.h"
#include "platform/uiqueue.h"
#include "support/tempfolder.h"

namespace {

QPlainTextEdit* ViewerOf(const QString& path) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* viewer = qobject_cast<QPlainTextEdit*>(widget); viewer && viewer->windowTitle() == path)
            return viewer;
    return nullptr;
}

TEST(TextViewer, ShowsTheFileReadOnlyUnderItsFullPath) {
    TempFolder folder;
    const QString path = QString::fromStdString(folder.Write("out.txt", "1.000000\t2.000000\t\r\n"));
    QWidget* window = platform::ShowTextFile(path);
    auto* viewer = qobject_cast<QPlainTextEdit*>(window);
    ASSERT_NE(viewer, nullptr);
    EXPECT_EQ(viewer->windowTitle(), path);
    EXPECT_TRUE(viewer->isReadOnly());
    EXPECT_EQ(viewer->toPlainText(), QStringLiteral("1.000000\t2.000000\t\n"));
    window->close();
}

// The desktop's opener, put first on PATH as a script with an exit code, or none at all.
struct OpenerCase {
    const char* name;
    int exitCode;  // -1: no opener on PATH
    bool viewerShown;
};

class DesktopOpener : public ::testing::TestWithParam<OpenerCase> {};

TEST_P(DesktopOpener, ViewerShowsWhereTheDesktopCannotOpen) {
    const OpenerCase& c = GetParam();
    TempFolder folder;
    const QString path = QString::fromStdString(folder.Write("output.txt", "0.5\t\r\n"));
    if (c.exitCode >= 0) {
        const std::string opener = folder.Write("xdg-open", "#!/bin/sh\nexit " + std::to_string(c.exitCode) + "\n");
        chmod(opener.c_str(), 0755);
    }
    const std::string oldPath = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
    setenv("PATH", folder.Path().c_str(), 1);
    platform::OpenOnDesktop(path);
    setenv("PATH", oldPath.c_str(), 1);
    for (int waited = 0; waited < 3000 && ViewerOf(path) == nullptr; waited += 50) platform::PumpFor(50);
    QPlainTextEdit* viewer = ViewerOf(path);
    EXPECT_EQ(viewer != nullptr, c.viewerShown) << c.name;
    if (viewer != nullptr) viewer->close();
    platform::PumpFor(0);
}

INSTANTIATE_TEST_SUITE_P(Cases, DesktopOpener,
                         ::testing::Values(OpenerCase{"no opener", -1, true}, OpenerCase{"no program", 3, true},
                                           OpenerCase{"opened", 0, false}),
                         [](const auto& info) { return std::to_string(info.index); });

}  // namespace
