#include "platform/fonts.h"

#include <QStringList>
#include <algorithm>
#include <cstring>

namespace platform {
namespace {

struct StandIn {
    const char* face;
    QStringList families;    // the first one installed is drawn
    QFont::StyleHint hint;
    int sixteenths;          // the stand-in's size, in sixteenths of the named size
};

const StandIn* StandInFor(const char* face) {
    // The dialog face is a bitmap face that Linux lacks. Of the sans faces Debian packages, measured on every
    // caption of the templates, Nimbus Sans at 15/16 of the named size keeps the named face's horizontal
    // dialog unit (6 pixels at 8 points) with captions 5% narrower than the named face's (the widest 2%
    // wider, on a button with room to spare), and the vertical unit nearest its 13 pixels (14); at the full
    // size every sans face runs 3-17% wider and cuts captions. Liberation Sans is the fallback.
    static const StandIn standIns[] = {
        {"MS Sans Serif", {"Nimbus Sans", "Liberation Sans"}, QFont::SansSerif, 15},
        {"Times New Roman", {"Liberation Serif"}, QFont::Serif, 16},
        {"Arial", {"Liberation Sans"}, QFont::SansSerif, 16},
        {"Courier New", {"Liberation Mono"}, QFont::Monospace, 16},
    };
    for (const StandIn& s : standIns)
        if (face != nullptr && std::strcmp(face, s.face) == 0) return &s;
    return nullptr;
}

}  // namespace

QFont StandInFont(const char* face, int pointSizeTenths, bool pixelsAt96) {
    QFont font(QString::fromLatin1(face != nullptr ? face : ""));
    int tenths = pointSizeTenths;
    if (const StandIn* s = StandInFor(face)) {
        font.setFamilies(s->families);
        font.setStyleHint(s->hint);
        tenths = pointSizeTenths * s->sixteenths / 16;
    }
    if (pixelsAt96) font.setPixelSize(std::max(1, tenths * 96 / 720));
    else font.setPointSizeF(std::max(1, tenths) / 10.0);
    return font;
}

}  // namespace platform
