// The iteration plot's picture: the error of every iteration against the iteration number, both axes
// logarithmic.
#include <algorithm>
#include <cmath>

#include "shell/plotaxes.h"
#include "shell/plots.h"

using namespace plotaxes;

namespace {

// The x axis: three decades of iterations, each with its lines of 1 to 10 times its power of ten. Four passes
// over three decades: the lines of the fourth lie beyond the frame and are clipped there.
void DrawDecadeLines(CDC* dc, const RECT& f, int w) {
    for (int i = 0; i <= 3; ++i) {
        const long x0 = f.left + i * w;
        VerticalLine(dc, f, x0);
        for (int k = 1; k <= 10; ++k)
            VerticalLine(dc, f, static_cast<int>(x0 + std::log10(static_cast<double>(k)) * w));
    }
}

// A "10" below each decade line.
void WriteDecadeLabels(CDC* dc, const RECT& f, int w) {
    for (int i = 0; i <= 3; ++i)
        dc->TextOut(static_cast<int>(f.left - 11 + i * w), static_cast<int>(f.bottom + 4), "10");
}

void DrawAxes(CIterationPlot& plot, CDC* dc, const RECT& rc) {
    // The exponent beside each "10", from the plot's x range.
    auto writeExponents = [&plot](CDC* to, const RECT& f, int w) {
        for (int i = 0; i <= 3; ++i) {
            CString text;
            text.Format("%.1f", (plot.m_dXMax - plot.m_dXMin) * i * (1.0 / 3) + plot.m_dXMin);
            to->TextOut(static_cast<int>(f.left + i * w + 1), static_cast<int>(f.bottom), text);
        }
    };
    const CXAxisDrawing xAxis{3, DrawDecadeLines, WriteDecadeLabels, writeExponents};
    plot.m_rcPlot = DrawCurveAxes(dc, rc, kIterationTitle, 4, plot.m_dYMax, plot.m_dYMin, 0.25, xAxis);
}

// The pixel of a point; false when it has none (a coordinate that is not a number).
bool MapPoint(const CIterationPlot& plot, double x, double y, CPoint* point) {
    const RECT& f = plot.m_rcPlot;
    return LogAxisPixel(f.left, f.right - f.left, x, plot.m_dXMin, plot.m_dXMax, &point->x) &&
           LogAxisPixel(f.bottom, -(f.bottom - f.top), y, plot.m_dYMin, plot.m_dYMax, &point->y);
}

void DrawCurve(CIterationPlot& plot, CDC* dc) {
    const int n = std::min(plot.m_arrX.GetSize(), plot.m_arrY.GetSize());
    CPen* oldPen = dc->SelectObject(&plot.m_penCurve);
    CPoint from;
    bool haveFrom = n > 0 && MapPoint(plot, plot.m_arrX.GetAt(0), plot.m_arrY.GetAt(0), &from);
    for (int i = 1; i < n; ++i) {
        CPoint to;
        const bool haveTo = MapPoint(plot, plot.m_arrX.GetAt(i), plot.m_arrY.GetAt(i), &to);
        // A point that is not a number breaks the curve rather than joining its neighbours.
        if (haveFrom && haveTo) {
            dc->MoveTo(static_cast<int>(from.x), static_cast<int>(from.y));
            dc->LineTo(static_cast<int>(to.x), static_cast<int>(to.y));
        }
        from = to;
        haveFrom = haveTo;
    }
    dc->SelectObject(oldPen);
}

void DrawCurves(CIterationPlot& plot, CDC* dc) {
    const int n = std::min(plot.m_arrX.GetSize(), plot.m_arrY.GetSize());
    CPen* oldPen = dc->SelectObject(&plot.m_penCurve);
    CPoint remembered;
    bool haveRemembered = false;
    for (int i = 0; i < n; ++i) {
        CPoint point;
        const bool havePoint = MapPoint(plot, plot.m_arrX.GetAt(i), plot.m_arrY.GetAt(i), &point);
        // x of exactly 1.0 starts a new curve.
        if (plot.m_arrX.GetAt(i) != 1.0 && haveRemembered && havePoint) {
            dc->MoveTo(static_cast<int>(remembered.x), static_cast<int>(remembered.y));
            dc->LineTo(static_cast<int>(point.x), static_cast<int>(point.y));
        }
        remembered = point;
        haveRemembered = havePoint;
    }
    dc->SelectObject(oldPen);
}

}  // namespace

void DrawAll(CIterationPlot& plot, CDC* dc, const RECT& rc) {
    DrawAxes(plot, dc, rc);
    if (plot.m_nMode == 1)
        DrawCurves(plot, dc);
    else
        DrawCurve(plot, dc);
}
