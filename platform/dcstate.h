// The state behind a CDC (layer internals): its surface, the objects selected into it, and the pixel writes
// that every drawing operation ends in.
//
// A memory DC writes pixels straight into the QImage of its bitmap; it opens a QPainter on that image only
// for text, and closes it again before the next direct write. A paint DC draws on a widget through the
// QPainter of the widget's paint event. Nothing is antialiased: these are pixel drawings.
#pragma once

#include <QImage>
#include <QPainter>
#include <memory>

#include "platform/gdiobjects.h"
#include "platform/raster.h"

class QWidget;

struct CBitmap::Impl {
    // Shared with the DCs that have the bitmap selected, so that deleting a bitmap that is still selected
    // leaves no DC drawing into freed memory.
    std::shared_ptr<QImage> image;
};

namespace platform {

inline QRgb ToQRgb(COLORREF color) { return qRgb(GetRValue(color), GetGValue(color), GetBValue(color)); }
inline COLORREF FromQRgb(QRgb rgb) { return RGB(qRed(rgb), qGreen(rgb), qBlue(rgb)); }

struct DcState {
    enum class Kind { None, Memory, Paint };

    DcState();
    ~DcState();

    // The pixels the DC may write, right and bottom exclusive; empty without a surface.
    raster::Bounds Surface() const;
    // The painter for text and images, opened on demand on a memory DC's image; null without a surface.
    QPainter* ActivePainter();
    // Closes a memory DC's painter, so that direct pixel writes follow everything painted before.
    void ReleaseImagePainter();
    // Pixels left <= x < right of row y, clipped to the surface.
    void FillSpan(int y, int left, int right, COLORREF color);
    void FillSpans(const std::vector<raster::Span>& spans, COLORREF color);
    // A memory DC's spans in device pixels of its image, clipped to the image.
    void FillDeviceSpans(const std::vector<raster::Span>& spans, COLORREF color);
    // The device pixel of a memory DC's image where the logical pixel edge `edge` falls.
    int DeviceEdge(int edge) const;
    // Drops the surface and goes back to the stock objects.
    void Reset();

    // Device pixels per logical pixel of the surface the DC paints for: a memory DC draws in logical pixels
    // into an image of this ratio, so that a 1.5x or 2x screen gets a sharp picture of the same drawing.
    qreal ratio = 1.0;
    Kind kind = Kind::None;
    std::shared_ptr<QImage> image;  // memory DC: the selected bitmap's image, null for the stock bitmap
    QWidget* widget = nullptr;      // paint DC
    QSize clientSize;               // paint DC: the client area, inside the widget's frame
    std::unique_ptr<QPainter> painter;

    // What is selected: a copy of each object's values, taken at selection, and the object to hand back
    // when the next one is selected.
    CPen pen;
    CPen* penObject = nullptr;
    CBrush brush;
    CBrush* brushObject = nullptr;
    CFont font;
    CFont* fontObject = nullptr;
    CBitmap* bitmapObject = nullptr;

    // What a new DC has selected: black pen, white brush, the system font, and for a memory DC an empty
    // bitmap, on which nothing shows.
    CPen stockPen;
    CBrush stockBrush;
    CFont stockFont;
    CBitmap stockBitmap;

    CPoint position;
    int bkMode = OPAQUE;
    COLORREF textColor = RGB(0, 0, 0);
    COLORREF bkColor = RGB(255, 255, 255);
};

// The Qt font for a CFont: named faces this system lacks map to their stand-ins (fonts.h), sizes are pixels
// at 96 dots per inch, and glyphs are drawn without antialiasing.
QFont QtFontOf(const CFont& font);

}  // namespace platform
