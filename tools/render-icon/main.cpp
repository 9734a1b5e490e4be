// render-icon DIR SIZE...: the window's own icon (resource 128) as DIR/NxN/apps/vantrel.png for each SIZE, the
// layout of the desktop's hicolor icon theme, so that the menu entry shows what the window's title bar shows.
// The build runs it; nothing at run time reads these files.
#include <QDir>
#include <QImage>
#include <cstdlib>
#include <iostream>
#include <string>

#include "platform/files.h"
#include "platform/qtaccess.h"
#include "shell/mainwindow.h"
#include "workspace/controls.h"

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: render-icon DIR SIZE..." << std::endl;
        return 2;
    }
    AfxSetResourceTable(VantrelResources());
    const QImage tile = platform::IconImage(IDI_PROGRAM);
    if (tile.isNull()) {
        std::cerr << "render-icon: the program has no icon " << IDI_PROGRAM << std::endl;
        return 1;
    }
    // The icon is pixel art: whole multiples of it keep every pixel square and sharp, and other sizes are
    // averaged down from a large sharp copy rather than blurred up from the small one.
    const QImage sharp = tile.scaled(tile.width() * 8, tile.height() * 8, Qt::IgnoreAspectRatio,
                                     Qt::FastTransformation);
    for (int i = 2; i < argc; ++i) {
        const int size = std::atoi(argv[i]);
        if (size <= 0 || size > sharp.width()) {
            std::cerr << "render-icon: no size " << argv[i] << std::endl;
            return 2;
        }
        const QImage image = size % tile.width() == 0
                                 ? tile.scaled(size, size, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                                 : sharp.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const QString folder = QString("%1/%2x%2/apps").arg(QString::fromLocal8Bit(argv[1])).arg(size);
        const QString path = folder + "/" + kProgramName + ".png";
        if (!QDir().mkpath(folder) || !image.save(path, "PNG")) {
            std::cerr << "render-icon: cannot write " << path.toStdString() << std::endl;
            return 1;
        }
    }
    return 0;
}
