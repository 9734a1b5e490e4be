// CIterationPlot: the error of every iteration against the iteration number, both axes logarithmic.
#include <algorithm>
#include <cmath>

#include "shell/plotaxes.h"
#include "workspace/plots.h"

using namespace plotaxes;

CIterationPlot::CIterationPlot() { m_penCurve.CreatePen(PS_SOLID, 1, kCurve); }

void CIterationPlot::RefreshIterationPlot(int nMode) {
    {
        auto lock = SeriesLock();
        m_nMode = nMode;
        FitRanges();
    }
    Redraw();
}

void CIterationPlot::FitRanges() {
    const int n = std::min(m_arrX.GetSize(), m_arrY.GetSize());
    if (n == 0) return;
    // Errors of 0 or below have no logarithm and take no part in the ranges (they are drawn on the floor).
    double smallestY = 0.0;
    double largestY = 0.0;
    if (PositiveExtremes(m_arrY, n, &smallestY, &largestY)) {
        if (m_nMode == 2) {
            m_dYMax = std::log10(largestY);
            m_dYMin = std::log10(smallestY);
            // A flat curve would give an axis of no height: it gets one decade, the curve in the middle.
            if (m_dYMax == m_dYMin) {
                m_dYMax += 0.5;
                m_dYMin -= 0.5;
            }
        } else {
            m_dYMax = RaiseBound(m_dYMax, std::log10(largestY));
            m_dYMin = LowerBound(m_dYMin, std::log10(smallestY));
        }
    }
    double smallestX = 0.0;
    double largestX = 0.0;
    if (PositiveExtremes(m_arrX, n, &smallestX, &largestX)) m_dXMax = WidenXDecades(m_dXMax, largestX);
}

void CIterationPlot::OnPaint() {
    PaintBuffered([this](CDC* dc, const RECT& rc) { DrawAll(dc, rc); });
}

void CIterationPlot::DrawAll(CDC* dc, const RECT& rc) {
    DrawAxes(dc, rc);
    if (m_nMode == 1)
        DrawCurves(dc);
    else
        DrawCurve(dc);
}

void CIterationPlot::DrawAxes(CDC* dc, const RECT& rc) {
    ClearClient(dc, rc);
    CFont titleFont;
    titleFont.CreatePointFont(110, kAxisFace);
    CFont* oldFont = dc->SelectObject(&titleFont);
    dc->SetTextColor(kBlack);
    RECT title{rc.left + 40, rc.top, rc.right, rc.top + 20};
    dc->DrawText(kIterationTitle, &title, DT_CENTER);

    CPen framePen(PS_SOLID, 2, kBlack);
    CPen* oldPen = dc->SelectObject(&framePen);
    m_rcPlot = PlotFrame(rc);
    const RECT& f = m_rcPlot;
    const int h = static_cast<int>((f.bottom - f.top) / 4);
    const int w = static_cast<int>((f.right - f.left) / 3);

    CPen gridPen(PS_DOT, 1, kGrid);
    dc->SelectObject(&gridPen);
    DrawDecadeRows(dc, f, h, 4);
    // Four passes over three decades: the lines of the fourth lie beyond the frame and are clipped there.
    for (int i = 0; i <= 3; ++i) {
        const long x0 = f.left + i * w;
        dc->MoveTo(static_cast<int>(x0), static_cast<int>(f.top));
        dc->LineTo(static_cast<int>(x0), static_cast<int>(f.bottom));
        for (int k = 1; k <= 10; ++k) {
            const int x = static_cast<int>(x0 + std::log10(static_cast<double>(k)) * w);
            dc->MoveTo(x, static_cast<int>(f.top));
            dc->LineTo(x, static_cast<int>(f.bottom));
        }
    }

    CFont labelFont;
    labelFont.CreatePointFont(100, kAxisFace);
    dc->SelectObject(&labelFont);
    WriteDecadeTens(dc, rc, f, h, 4);
    for (int i = 0; i <= 3; ++i)
        dc->TextOut(static_cast<int>(f.left - 11 + i * w), static_cast<int>(f.bottom + 4), "10");

    CFont exponentFont;
    exponentFont.CreatePointFont(70, kAxisFace);
    dc->SelectObject(&exponentFont);
    for (int i = 0; i <= 3; ++i) {
        CString text;
        text.Format("%.1f", (m_dXMax - m_dXMin) * i * (1.0 / 3) + m_dXMin);
        dc->TextOut(static_cast<int>(f.left + i * w + 1), static_cast<int>(f.bottom), text);
    }
    WriteYExponents(dc, rc, f, h, 4, m_dYMax, m_dYMin, 0.25);

    dc->SelectObject(&framePen);
    DrawFrame(dc, f);
    dc->SelectObject(oldFont);
    dc->SelectObject(oldPen);
}

bool CIterationPlot::MapPoint(double x, double y, CPoint* point) const {
    const RECT& f = m_rcPlot;
    return LogAxisPixel(f.left, f.right - f.left, x, m_dXMin, m_dXMax, &point->x) &&
           LogAxisPixel(f.bottom, -(f.bottom - f.top), y, m_dYMin, m_dYMax, &point->y);
}

void CIterationPlot::DrawCurve(CDC* dc) {
    const int n = std::min(m_arrX.GetSize(), m_arrY.GetSize());
    CPen* oldPen = dc->SelectObject(&m_penCurve);
    CPoint from;
    bool haveFrom = n > 0 && MapPoint(m_arrX.GetAt(0), m_arrY.GetAt(0), &from);
    for (int i = 1; i < n; ++i) {
        CPoint to;
        const bool haveTo = MapPoint(m_arrX.GetAt(i), m_arrY.GetAt(i), &to);
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

void CIterationPlot::DrawCurves(CDC* dc) {
    const int n = std::min(m_arrX.GetSize(), m_arrY.GetSize());
    CPen* oldPen = dc->SelectObject(&m_penCurve);
    CPoint remembered;
    bool haveRemembered = false;
    for (int i = 0; i < n; ++i) {
        CPoint point;
        const bool havePoint = MapPoint(m_arrX.GetAt(i), m_arrY.GetAt(i), &point);
        // x of exactly 1.0 starts a new curve.
        if (m_arrX.GetAt(i) != 1.0 && haveRemembered && havePoint) {
            dc->MoveTo(static_cast<int>(remembered.x), static_cast<int>(remembered.y));
            dc->LineTo(static_cast<int>(point.x), static_cast<int>(point.y));
        }
        remembered = point;
        haveRemembered = havePoint;
    }
    dc->SelectObject(oldPen);
}
