// The icon files of the desktop entry: the window's own icon, drawn by tools/render-icon at the theme's sizes.
#include <gtest/gtest.h>

#include <QImage>
#include <string>

#include "platform/qtaccess.h"
#include "support/tempfolder.h"
#include "workspace/controls.h"

namespace {

#ifdef VANTREL_RENDER_ICON_EXE
QImage Rendered(const TempFolder& folder, int size) {
    return QImage(QString::fromStdString(folder.Path() + "/" + std::to_string(size) + "x" + std::to_string(size) +
                                         "/apps/vantrel.png"));
}

TEST(RenderIcon, DrawsTheWindowsIconSharpAtItsMultiplesAndWholeAtOtherSizes) {
    const TempFolder folder;
    const std::string command = std::string("'") + VANTREL_RENDER_ICON_EXE + "' '" + folder.Path() + "' 16 32 48 256";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const QImage tile = platform::IconImage(IDI_PROGRAM).convertToFormat(QImage::Format_ARGB32);
    const QImage same = Rendered(folder, 32).convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(same, tile) << "at its own size the file is the window's icon, pixel for pixel";
    const QImage large = Rendered(folder, 256).convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(large.size(), QSize(256, 256));
    int differing = 0;
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) differing += large.pixel(x, y) != tile.pixel(x / 8, y / 8);
    EXPECT_EQ(differing, 0) << "each pixel of the icon becomes an 8 x 8 square";
    for (int size : {16, 48}) {
        const QImage image = Rendered(folder, size);
        ASSERT_EQ(image.size(), QSize(size, size)) << size;
        EXPECT_LT(qAlpha(image.pixel(0, 0)), 255) << size << ": the tile's cut corner shows through";
        EXPECT_EQ(qAlpha(image.pixel(size / 2, size / 2)), 255) << size;
    }
    EXPECT_NE(std::system(("'" + std::string(VANTREL_RENDER_ICON_EXE) + "' '" + folder.Path() + "' 0").c_str()), 0)
        << "a size of 0 is refused";
}
#endif

}  // namespace
