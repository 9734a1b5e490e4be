// The summary plot's picture: the error reached by each trial, or after each added unit, on a logarithmic
// error axis and a linear x axis of 0 to 10 times the multiplier.
#include <algorithm>
#include <cmath>

#include "shell/plotaxes.h"
#include "shell/plots.h"

using namespace plotaxes;

namespace {

// The x axis: linear, in ten steps, with a grid line at each step between the edges.
void DrawStepLines(CDC* dc, const RECT& f, int w) {
    for (int j = 1; j <= 9; ++j) VerticalLine(dc, f, f.left + j * w);
}

// The numbers below always read 0 to 10; the title's multiplier says what they count.
void WriteStepNumbers(CDC* dc, const RECT& f, int w) {
    for (int j = 0; j <= 10; ++j) {
        CString text;
        text.Format("%d", j);
        const int shift = j == 10 ? 4 : 3;
        dc->TextOut(static_cast<int>(f.left + j * w - shift), static_cast<int>(f.bottom + 4), text);
    }
}

void DrawAxes(CSummaryPlot& plot, CDC* dc, const RECT& rc) {
    const CString title = SummaryTitle(plot.m_nMode, plot.m_nMultiplier);
    NamePlot(plot, title);
    const CXAxisDrawing xAxis{10, DrawStepLines, WriteStepNumbers, nullptr};
    plot.m_rcPlot = DrawCurveAxes(dc, rc, title, 5, plot.m_dYMax, plot.m_dYMin, 0.2, xAxis);
}

bool MapPoint(const CSummaryPlot& plot, double x, double y, CPoint* point) {
    const RECT& f = plot.m_rcPlot;
    // A multiplier below 1 (one a user typed) would leave the x axis without a length: it maps as 1.
    const int multiplier = std::max(1, plot.m_nMultiplier);
    return AxisPixel(f.left, f.right - f.left, x, 0.0, multiplier * 10.0, &point->x) &&
           LogAxisPixel(f.bottom, -(f.bottom - f.top), y, plot.m_dYMin, plot.m_dYMax, &point->y);
}

void DrawMarker(CDC* dc, const CPoint& p) {
    dc->Ellipse(static_cast<int>(p.x - 3), static_cast<int>(p.y - 3), static_cast<int>(p.x + 3),
                static_cast<int>(p.y + 3));
}

void DrawPoints(CSummaryPlot& plot, CDC* dc) {
    const int n = std::min(plot.m_arrX.GetSize(), plot.m_arrY.GetSize());
    CBrush* oldBrush = dc->SelectObject(&plot.m_brushMarker);
    CPen* oldPen = nullptr;
    CPoint from;
    bool haveFrom = n > 0 && MapPoint(plot, plot.m_arrX.GetAt(0), plot.m_arrY.GetAt(0), &from);
    // The first marker has the pen that happens to be selected; the loop draws it again in red once a second
    // point follows.
    if (haveFrom) DrawMarker(dc, from);
    for (int i = 1; i < n; ++i) {
        CPoint to;
        const bool haveTo = MapPoint(plot, plot.m_arrX.GetAt(i), plot.m_arrY.GetAt(i), &to);
        CPen* previous = dc->SelectObject(&plot.m_penCurve);
        if (!oldPen) oldPen = previous;
        if (haveFrom && haveTo) {
            dc->MoveTo(static_cast<int>(from.x), static_cast<int>(from.y));
            dc->LineTo(static_cast<int>(to.x), static_cast<int>(to.y));
        }
        dc->SelectObject(&plot.m_penMarker);
        if (haveFrom) DrawMarker(dc, from);
        if (haveTo) DrawMarker(dc, to);
        from = to;
        haveFrom = haveTo;
    }
    if (oldPen) dc->SelectObject(oldPen);
    dc->SelectObject(oldBrush);
}

}  // namespace

void DrawAll(CSummaryPlot& plot, CDC* dc, const RECT& rc) {
    DrawAxes(plot, dc, rc);
    DrawPoints(plot, dc);
}
