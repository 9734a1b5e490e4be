// Pixel geometry of the drawing layer (layer internals): which pixels a line, a rectangle or an ellipse
// covers. Kept apart from the device context so that the rules (last pixel of a line left out, right and
// bottom edge of a shape left out) live in one place, free of any painter.
#pragma once

#include <functional>
#include <vector>

namespace platform::raster {

// A pixel rectangle, right and bottom exclusive.
struct Bounds {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool Contains(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
};

// Calls plot(x, y, index) for each pixel of the line from (x0, y0) towards (x1, y1), the last pixel left
// out, that lies inside clip. index counts pixels from the start of the line (for dash patterns), also
// those clipped away. A line of length 0 has no pixel.
void LinePixels(int x0, int y0, int x1, int y1, const Bounds& clip, const std::function<void(int, int, int)>& plot);

// One row of a shape: the pixels left <= x < right of row y (empty when left >= right).
struct Span {
    int y = 0;
    int left = 0;
    int right = 0;
};

// The rows of a shape between rows firstRow and lastRow (exclusive) only, so that a shape far larger than
// the surface costs no more than the surface.
std::vector<Span> RectangleRows(int x1, int y1, int x2, int y2, int firstRow, int lastRow);
std::vector<Span> EllipseRows(int x1, int y1, int x2, int y2, int firstRow, int lastRow);

// The shape without a border of the given width: a pixel stays when its four neighbours stay, repeated
// width times. Works row by row, since the shapes are convex.
std::vector<Span> Erode(const std::vector<Span>& rows, int width);

// The pixels of outer that inner lacks, as up to two spans per row (inner lies within outer, row by row).
std::vector<Span> Subtract(const std::vector<Span>& outer, const std::vector<Span>& inner);

}  // namespace platform::raster
