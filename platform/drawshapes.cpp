// Pixel operations of CDC: fills, lines, rectangles, ellipses, single pixels, icons and the copy of one DC
// into another.
#include <QImage>
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/dcstate.h"
#include "platform/drawing.h"
#include "platform/raster.h"
#include "platform/templates.h"

using platform::DcState;
namespace raster = platform::raster;

namespace {

// On and off runs of the one-pixel styled pens, in pixels.
const std::vector<int>* DashPattern(int style) {
    static const std::vector<int> dot{3, 3};
    static const std::vector<int> dash{18, 6};
    if (style == PS_DOT) return &dot;
    if (style == PS_DASH) return &dash;
    return nullptr;
}

bool IsOn(const std::vector<int>* pattern, int index) {
    if (!pattern) return true;
    int period = 0;
    for (int run : *pattern) period += run;
    int at = index % period;
    for (size_t i = 0; i < pattern->size(); ++i) {
        if (at < (*pattern)[i]) return i % 2 == 0;
        at -= (*pattern)[i];
    }
    return true;
}

raster::Bounds Grown(const raster::Bounds& b, int by) {
    return {b.left - by, b.top - by, b.right + by, b.bottom + by};
}

// A wide pen puts a square of its width on every pixel of the line, the pixel at its middle.
void Stamp(DcState& state, int x, int y, int width, COLORREF color) {
    const int left = x - width / 2;
    const int top = y - width / 2;
    for (int row = top; row < top + width; ++row) state.FillSpan(row, left, left + width, color);
}

// Outline with the selected pen, inside with the selected brush.
void DrawShape(DcState& state, const std::vector<raster::Span>& rows) {
    const bool outlined = state.pen.m_style != PS_NULL;
    const int width = state.pen.m_width;
    const std::vector<raster::Span> inside = outlined ? raster::Erode(rows, width) : rows;
    state.FillSpans(inside, state.brush.m_color);
    if (outlined) state.FillSpans(raster::Subtract(rows, inside), state.pen.m_color);
}

// The rows from firstRow to lastRow of an ellipse or a rectangle with the corners (x1, y1) and (x2, y2).
std::vector<raster::Span> ShapeRows(bool ellipse, int x1, int y1, int x2, int y2, int firstRow, int lastRow) {
    return ellipse ? raster::EllipseRows(x1, y1, x2, y2, firstRow, lastRow)
                   : raster::RectangleRows(x1, y1, x2, y2, firstRow, lastRow);
}

// A shape of a memory DC whose image has more device pixels than logical ones, rasterized in device pixels:
// its corner falls where the logical corner does and its size is the logical size times the ratio, so that
// marks of one size stay of one size and round at any ratio, wherever they stand.
void DrawDeviceShape(DcState& state, bool ellipse, int x1, int y1, int x2, int y2) {
    const qreal r = state.ratio;
    const int left = state.DeviceEdge(x1), top = state.DeviceEdge(y1);
    const int right = left + qRound((x2 - x1) * r), bottom = top + qRound((y2 - y1) * r);
    const int rows = state.image->height();
    const std::vector<raster::Span> shape = ShapeRows(ellipse, left, top, right, bottom, 0, rows);
    const bool outlined = state.pen.m_style != PS_NULL;
    const std::vector<raster::Span> inside =
        outlined ? raster::Erode(shape, std::max(1, qRound(state.pen.m_width * r))) : shape;
    state.FillDeviceSpans(inside, state.brush.m_color);
    if (outlined) state.FillDeviceSpans(raster::Subtract(shape, inside), state.pen.m_color);
}

bool DrawsInDevicePixels(const DcState& state) {
    return state.kind == DcState::Kind::Memory && state.image && state.image->devicePixelRatio() != 1.0;
}

// An ellipse or a rectangle, outlined and filled; rows far outside the surface are not rasterized.
void DrawOutlinedShape(DcState& state, bool ellipse, int x1, int y1, int x2, int y2) {
    if (DrawsInDevicePixels(state)) {
        DrawDeviceShape(state, ellipse, x1, y1, x2, y2);
        return;
    }
    const raster::Bounds surface = state.Surface();
    const int margin = state.pen.m_width + 1;
    DrawShape(state, ShapeRows(ellipse, x1, y1, x2, y2, surface.top - margin, surface.bottom + margin));
}

}  // namespace

void CDC::FillSolidRect(const RECT* rect, COLORREF color) {
    if (!rect) return;
    const raster::Bounds surface = m_state->Surface();
    m_state->FillSpans(raster::RectangleRows(rect->left, rect->top, rect->right, rect->bottom, surface.top,
                                             surface.bottom),
                       color);
}

CPoint CDC::MoveTo(int x, int y) {
    const CPoint old = m_state->position;
    m_state->position = CPoint(x, y);
    return old;
}

BOOL CDC::LineTo(int x, int y) {
    DcState& state = *m_state;
    const CPoint from = state.position;
    state.position = CPoint(x, y);
    const CPen& pen = state.pen;
    if (pen.m_style == PS_NULL) return TRUE;
    const int x0 = static_cast<int>(from.x);
    const int y0 = static_cast<int>(from.y);
    if (pen.m_width <= 1) {
        // The dash pattern starts anew with each line.
        const std::vector<int>* pattern = DashPattern(pen.m_style);
        raster::LinePixels(x0, y0, x, y, state.Surface(), [&](int px, int py, int index) {
            if (IsOn(pattern, index)) state.FillSpan(py, px, px + 1, pen.m_color);
        });
        return TRUE;
    }
    // A wide pen's line has round ends in the API this stands in for: its last pixel is drawn too.
    const raster::Bounds reach = Grown(state.Surface(), pen.m_width);
    raster::LinePixels(x0, y0, x, y, reach,
                       [&](int px, int py, int) { Stamp(state, px, py, pen.m_width, pen.m_color); });
    if (reach.Contains(x, y)) Stamp(state, x, y, pen.m_width, pen.m_color);
    return TRUE;
}

BOOL CDC::Ellipse(int x1, int y1, int x2, int y2) {
    DrawOutlinedShape(*m_state, true, x1, y1, x2, y2);
    return TRUE;
}

BOOL CDC::Rectangle(int x1, int y1, int x2, int y2) {
    DrawOutlinedShape(*m_state, false, x1, y1, x2, y2);
    return TRUE;
}

COLORREF CDC::SetPixel(int x, int y, COLORREF color) {
    if (!m_state->Surface().Contains(x, y)) return static_cast<COLORREF>(-1);
    m_state->FillSpan(y, x, x + 1, color);
    return color & 0x00FFFFFF;
}

BOOL CDC::DrawIcon(int x, int y, HICON icon) {
    const IconTemplate* tpl = AfxFindIconTemplate(icon);
    if (!tpl || !tpl->rows) return FALSE;
    const int colors = tpl->paletteKeys ? static_cast<int>(std::strlen(tpl->paletteKeys)) : 0;
    for (int row = 0; row < tpl->size; ++row) {
        const char* text = tpl->rows[row];
        if (!text) break;
        for (int col = 0; col < tpl->size && text[col]; ++col) {
            // A blank, or a key the palette lacks, leaves the pixel as it is.
            for (int k = 0; k < colors && text[col] != ' '; ++k)
                if (tpl->paletteKeys[k] == text[col]) {
                    m_state->FillSpan(y + row, x + col, x + col + 1, tpl->paletteColors[k]);
                    break;
                }
        }
    }
    return TRUE;
}

BOOL CDC::BitBlt(int x, int y, int width, int height, CDC* source, int xSource, int ySource, DWORD rop) {
    if (rop != SRCCOPY || !source || width <= 0 || height <= 0) return FALSE;
    DcState& from = *source->m_state;
    if (from.kind != DcState::Kind::Memory) return FALSE;
    if (!from.image) return TRUE;
    from.ReleaseImagePainter();
    // The part of the source that exists, in logical pixels; a copy of its device pixels, so that a DC may
    // copy within itself.
    const raster::Bounds s = from.Surface();
    const QRect part = QRect(xSource, ySource, width, height).intersected(QRect(s.left, s.top, s.right, s.bottom));
    if (part.isEmpty()) return TRUE;
    QImage piece = from.image->copy(QRect(QPoint(from.DeviceEdge(part.left()), from.DeviceEdge(part.top())),
                                          QPoint(from.DeviceEdge(part.right() + 1) - 1,
                                                 from.DeviceEdge(part.bottom() + 1) - 1)));
    piece.setDevicePixelRatio(from.image->devicePixelRatio());
    const int toX = x + (part.left() - xSource);
    const int toY = y + (part.top() - ySource);
    DcState& to = *m_state;
    if (to.kind == DcState::Kind::Memory) {
        if (!to.image) return TRUE;
        to.ReleaseImagePainter();
        if (to.image->devicePixelRatio() != piece.devicePixelRatio()) {
            QPainter(to.image.get()).drawImage(QPoint(toX, toY), piece);
            return TRUE;
        }
        const QPoint at(to.DeviceEdge(toX), to.DeviceEdge(toY));
        const QRect target = QRect(at, piece.size()).intersected(to.image->rect());
        for (int row = target.top(); row <= target.bottom(); ++row) {
            const QRgb* in = reinterpret_cast<const QRgb*>(piece.constScanLine(row - at.y())) + (target.left() - at.x());
            QRgb* out = reinterpret_cast<QRgb*>(to.image->scanLine(row)) + target.left();
            std::memcpy(out, in, sizeof(QRgb) * static_cast<size_t>(target.width()));
        }
    } else if (to.painter) {
        to.painter->drawImage(QPoint(toX, toY), piece);
    }
    return TRUE;
}
