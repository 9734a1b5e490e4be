#include "platform/qtaccess.h"

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <cstring>

#include "platform/templates.h"

namespace platform {

QImage IconImage(int iconId) {
    const IconTemplate* icon = AfxFindIconTemplate(iconId);
    if (icon == nullptr) return QImage();
    QImage image(icon->size, icon->size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    const size_t colours = std::strlen(icon->paletteKeys);
    for (int y = 0; y < icon->size; ++y) {
        const char* row = icon->rows[y];
        for (int x = 0; x < icon->size && row[x] != '\0'; ++x) {
            const char* key = std::strchr(icon->paletteKeys, row[x]);
            if (row[x] == ' ' || key == nullptr) continue;
            const COLORREF c = icon->paletteColors[static_cast<size_t>(key - icon->paletteKeys) % colours];
            image.setPixel(x, y, qRgb(GetRValue(c), GetGValue(c), GetBValue(c)));
        }
    }
    return image;
}

QIcon IconOf(int iconId) { return QIcon(QPixmap::fromImage(IconImage(iconId))); }

}  // namespace platform
