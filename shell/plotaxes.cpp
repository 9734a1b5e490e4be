#include "shell/plotaxes.h"

#include "workspace/fieldaxis.h"

#include <cmath>

namespace plotaxes {

CString SummaryTitle(int mode, int multiplier) {
    CString title;
    if (mode == 2)
        title.Format("Average Sum Square Errors vs. Number of RBF Units (x%d)", multiplier);
    else
        title.Format("Average Sum Square Errors vs. Number of Trials (x%d)", multiplier);
    return title;
}

void NamePlot(CWnd& plot, const CString& title) {
    if (platform::DialogControls* window = plot.Window()) window->SetAccessibleName(plot.GetDlgCtrlID(), title.str());
}

namespace {

void Line(CDC* dc, long x0, long y0, long x1, long y1) {
    dc->MoveTo(static_cast<int>(x0), static_cast<int>(y0));
    dc->LineTo(static_cast<int>(x1), static_cast<int>(y1));
}

// The plotting area within the client rectangle c.
RECT PlotFrame(const RECT& c) {
    RECT frame;
    frame.left = c.left + 45;
    frame.top = c.top + 20;
    frame.right = c.right - 13;
    frame.bottom = c.bottom - 20;
    return frame;
}

// Transparent text background, and c filled with white.
void ClearClient(CDC* dc, const RECT& c) {
    dc->SetBkMode(TRANSPARENT);
    dc->FillSolidRect(&c, kWhite);
}

// The horizontal grid of a logarithmic axis over the given number of decades of h pixels each, from the
// bottom: per decade its bottom line and the lines of 1 to 10 times its power of ten.
void DrawDecadeRows(CDC* dc, const RECT& frame, int h, int decades) {
    for (int i = 0; i < decades; ++i) {
        const long y0 = frame.bottom - i * h;
        Line(dc, frame.left, y0, frame.right, y0);
        for (int k = 1; k <= 10; ++k) {
            const long y = static_cast<long>(y0 - std::log10(static_cast<double>(k)) * h);
            Line(dc, frame.left, y, frame.right, y);
        }
    }
}

// "10" at the left of each decade line, decades + 1 of them.
void WriteDecadeTens(CDC* dc, const RECT& c, const RECT& frame, int h, int decades) {
    for (int i = 0; i <= decades; ++i)
        dc->TextOut(static_cast<int>(c.left + 5), static_cast<int>(frame.top - 5 + i * h), "10");
}

// The exponents beside the "10"s: yMax - (yMax - yMin) * i * fraction with "%.2f", top down.
void WriteYExponents(CDC* dc, const RECT& c, const RECT& frame, int h, int decades, double yMax, double yMin,
                     double fraction) {
    for (int i = 0; i <= decades; ++i) {
        CString text;
        text.Format("%.2f", yMax - (yMax - yMin) * i * fraction);
        dc->TextOut(static_cast<int>(c.left + 18), static_cast<int>(frame.top + i * h - 9), text);
    }
}

// The frame, with the pen that is selected: (L, T), (L, B), (R, B), (R, T), (L, T).
void DrawFrame(CDC* dc, const RECT& frame) {
    dc->MoveTo(static_cast<int>(frame.left), static_cast<int>(frame.top));
    dc->LineTo(static_cast<int>(frame.left), static_cast<int>(frame.bottom));
    dc->LineTo(static_cast<int>(frame.right), static_cast<int>(frame.bottom));
    dc->LineTo(static_cast<int>(frame.right), static_cast<int>(frame.top));
    dc->LineTo(static_cast<int>(frame.left), static_cast<int>(frame.top));
}

}  // namespace

RECT DrawCurveAxes(CDC* dc, const RECT& c, const CString& title, int decades, double yMax, double yMin,
                   double fraction, const CXAxisDrawing& x) {
    ClearClient(dc, c);
    CFont titleFont;
    titleFont.CreatePointFont(110, kAxisFace);
    CFont* oldFont = dc->SelectObject(&titleFont);
    dc->SetTextColor(kBlack);
    RECT titleRect{c.left + 40, c.top, c.right, c.top + 20};
    dc->DrawText(title, &titleRect, DT_CENTER);

    CPen framePen(PS_SOLID, 2, kBlack);
    CPen* oldPen = dc->SelectObject(&framePen);
    const RECT f = PlotFrame(c);
    const int h = static_cast<int>((f.bottom - f.top) / decades);
    const int w = static_cast<int>((f.right - f.left) / x.steps);

    CPen gridPen(PS_DOT, 1, kGrid);
    dc->SelectObject(&gridPen);
    DrawDecadeRows(dc, f, h, decades);
    x.grid(dc, f, w);

    CFont labelFont;
    labelFont.CreatePointFont(100, kAxisFace);
    dc->SelectObject(&labelFont);
    WriteDecadeTens(dc, c, f, h, decades);
    x.labels(dc, f, w);

    CFont exponentFont;
    exponentFont.CreatePointFont(70, kAxisFace);
    dc->SelectObject(&exponentFont);
    if (x.exponents) x.exponents(dc, f, w);
    WriteYExponents(dc, c, f, h, decades, yMax, yMin, fraction);

    dc->SelectObject(&framePen);
    DrawFrame(dc, f);
    dc->SelectObject(oldFont);
    dc->SelectObject(oldPen);
    return f;
}

void VerticalLine(CDC* dc, const RECT& frame, long x) { Line(dc, x, frame.top, x, frame.bottom); }

bool AxisPixel(double origin, double length, double value, double low, double high, long* pixel) {
    double span = high - low;
    if (span == 0.0 || !std::isfinite(span)) {
        low -= 0.5;
        span = 1.0;
    }
    const double at = origin + length * (value - low) / span;
    if (std::isnan(at)) return false;
    *pixel = ClampPixel(at);
    return true;
}

bool LogAxisPixel(double origin, double length, double value, double low, double high, long* pixel) {
    if (std::isnan(value)) return false;
    if (value <= 0.0) return AxisPixel(origin, length, low, low, high, pixel);
    if (std::isinf(value)) return AxisPixel(origin, length, high, low, high, pixel);
    return AxisPixel(origin, length, std::log10(value), low, high, pixel);
}

}  // namespace plotaxes
