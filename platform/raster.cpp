#include "platform/raster.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace platform::raster {

namespace {

// numerator / denominator rounded to the nearest integer (halves upward), denominator > 0.
std::int64_t RoundedDiv(std::int64_t numerator, std::int64_t denominator) {
    const std::int64_t twice = 2 * numerator + denominator;
    const std::int64_t d = 2 * denominator;
    return twice >= 0 ? twice / d : -((-twice + d - 1) / d);
}

// The steps i of 0 <= i < n at which start + sign * i lies in [low, high).
void StepRange(int start, int sign, int n, int low, int high, int* first, int* last) {
    if (sign > 0) {
        *first = std::max(0, low - start);
        *last = std::min(n, high - start);
    } else {
        *first = std::max(0, start - high + 1);
        *last = std::min(n, start - low + 1);
    }
}

}  // namespace

void LinePixels(int x0, int y0, int x1, int y1, const Bounds& clip, const std::function<void(int, int, int)>& plot) {
    const std::int64_t dx = static_cast<std::int64_t>(x1) - x0;
    const std::int64_t dy = static_cast<std::int64_t>(y1) - y0;
    const std::int64_t n = std::max(std::llabs(dx), std::llabs(dy));
    if (n == 0) return;
    // Only the steps whose major coordinate falls inside the clip are walked, so a line that reaches far
    // beyond the surface costs no more than the surface's width or height.
    const bool xMajor = std::llabs(dx) >= std::llabs(dy);
    int first = 0;
    int last = 0;
    if (xMajor)
        StepRange(x0, dx > 0 ? 1 : -1, static_cast<int>(n), clip.left, clip.right, &first, &last);
    else
        StepRange(y0, dy > 0 ? 1 : -1, static_cast<int>(n), clip.top, clip.bottom, &first, &last);
    for (int i = first; i < last; ++i) {
        const int x = x0 + static_cast<int>(RoundedDiv(i * dx, n));
        const int y = y0 + static_cast<int>(RoundedDiv(i * dy, n));
        if (clip.Contains(x, y)) plot(x, y, i);
    }
}

std::vector<Span> RectangleRows(int x1, int y1, int x2, int y2, int firstRow, int lastRow) {
    if (x1 > x2) std::swap(x1, x2);
    if (y1 > y2) std::swap(y1, y2);
    std::vector<Span> rows;
    for (int y = std::max(y1, firstRow); y < std::min(y2, lastRow); ++y) rows.push_back({y, x1, x2});
    return rows;
}

std::vector<Span> EllipseRows(int x1, int y1, int x2, int y2, int firstRow, int lastRow) {
    if (x1 > x2) std::swap(x1, x2);
    if (y1 > y2) std::swap(y1, y2);
    std::vector<Span> rows;
    if (x1 == x2 || y1 == y2) return rows;
    // The pixels whose centres lie in the ellipse inscribed in the box, the box's right and bottom edge
    // left out: a 4 by 4 box gives a round dot, not a square.
    const double cx = (static_cast<double>(x1) + x2 - 1) / 2.0;
    const double cy = (static_cast<double>(y1) + y2 - 1) / 2.0;
    const double ra = (static_cast<double>(x2) - x1) / 2.0;
    const double rb = (static_cast<double>(y2) - y1) / 2.0;
    for (int y = std::max(y1, firstRow); y < std::min(y2, lastRow); ++y) {
        const double t = (y - cy) / rb;
        const double rest = 1.0 - t * t;
        Span span{y, 0, 0};
        if (rest >= 0.0) {
            const double half = ra * std::sqrt(rest) + 1e-9;
            span.left = static_cast<int>(std::ceil(cx - half));
            span.right = static_cast<int>(std::floor(cx + half)) + 1;
        }
        rows.push_back(span);
    }
    return rows;
}

std::vector<Span> Erode(const std::vector<Span>& rows, int width) {
    std::vector<Span> current = rows;
    for (int pass = 0; pass < width; ++pass) {
        std::vector<Span> next = current;
        for (size_t i = 0; i < current.size(); ++i) {
            Span& span = next[i];
            span.left = current[i].left + 1;
            span.right = current[i].right - 1;
            // A row beyond the computed ones counts as empty: shapes are computed with a margin of at least
            // the pen's width beyond the surface, so this edge never shows.
            if (i == 0 || i + 1 == current.size()) {
                span.right = span.left;
                continue;
            }
            for (const Span* neighbour : {&current[i - 1], &current[i + 1]}) {
                if (neighbour->left >= neighbour->right) {
                    span.right = span.left;
                    break;
                }
                span.left = std::max(span.left, neighbour->left);
                span.right = std::min(span.right, neighbour->right);
            }
        }
        current = std::move(next);
    }
    return current;
}

std::vector<Span> Subtract(const std::vector<Span>& outer, const std::vector<Span>& inner) {
    std::vector<Span> result;
    for (size_t i = 0; i < outer.size(); ++i) {
        const Span& o = outer[i];
        if (o.left >= o.right) continue;
        const Span& in = inner[i];
        if (in.left >= in.right) {
            result.push_back(o);
            continue;
        }
        if (o.left < in.left) result.push_back({o.y, o.left, in.left});
        if (in.right < o.right) result.push_back({o.y, in.right, o.right});
    }
    return result;
}

}  // namespace platform::raster
