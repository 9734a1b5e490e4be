// CSummaryPlot: the error reached by each trial, or after each added unit, on a logarithmic error axis and a
// linear x axis of 0 to 10 times the multiplier.
#include <algorithm>
#include <cmath>

#include "shell/plotaxes.h"
#include "workspace/plots.h"

using namespace plotaxes;

CSummaryPlot::CSummaryPlot() {
    m_penCurve.CreatePen(PS_SOLID, 1, kCurve);
    m_penMarker.CreatePen(PS_SOLID, 1, RGB(0xFF, 0x00, 0x00));
    m_brushMarker.CreateSolidBrush(RGB(0x00, 0xFF, 0x00));
}

void CSummaryPlot::SetSummaryAxis(int nMultiplier, int nMode) {
    {
        auto lock = SeriesLock();
        m_nMode = nMode;
        m_nMultiplier = nMultiplier;
        const int n = std::min(m_arrX.GetSize(), m_arrY.GetSize());
        double smallest = 0.0;
        double largest = 0.0;
        // Both modes widen the error axis alone; errors of 0 or below have no logarithm and are left out.
        if (n > 0 && PositiveExtremes(m_arrY, n, &smallest, &largest)) {
            m_dYMax = RaiseBound(m_dYMax, std::log10(largest));
            m_dYMin = LowerBound(m_dYMin, std::log10(smallest));
        }
    }
    Redraw();
}

void CSummaryPlot::OnPaint() {
    PaintBuffered([this](CDC* dc, const RECT& rc) { DrawAll(dc, rc); });
}

void CSummaryPlot::DrawAll(CDC* dc, const RECT& rc) {
    DrawAxes(dc, rc);
    DrawPoints(dc);
}

void CSummaryPlot::DrawAxes(CDC* dc, const RECT& rc) {
    ClearClient(dc, rc);
    CFont titleFont;
    titleFont.CreatePointFont(110, kAxisFace);
    CFont* oldFont = dc->SelectObject(&titleFont);
    dc->SetTextColor(kBlack);
    const CString titleText = SummaryTitle(m_nMode, m_nMultiplier);
    NamePlot(*this, titleText);
    RECT title{rc.left + 40, rc.top, rc.right, rc.top + 20};
    dc->DrawText(titleText, &title, DT_CENTER);

    CPen framePen(PS_SOLID, 2, kBlack);
    CPen* oldPen = dc->SelectObject(&framePen);
    m_rcPlot = PlotFrame(rc);
    const RECT& f = m_rcPlot;
    const int h = static_cast<int>((f.bottom - f.top) / 5);
    const int w = static_cast<int>((f.right - f.left) / 10);

    CPen gridPen(PS_DOT, 1, kGrid);
    dc->SelectObject(&gridPen);
    DrawDecadeRows(dc, f, h, 5);
    for (int j = 1; j <= 9; ++j) {
        dc->MoveTo(static_cast<int>(f.left + j * w), static_cast<int>(f.top));
        dc->LineTo(static_cast<int>(f.left + j * w), static_cast<int>(f.bottom));
    }

    CFont labelFont;
    labelFont.CreatePointFont(100, kAxisFace);
    dc->SelectObject(&labelFont);
    WriteDecadeTens(dc, rc, f, h, 5);
    // The numbers always read 0 to 10; the title's multiplier says what they count.
    for (int j = 0; j <= 10; ++j) {
        CString text;
        text.Format("%d", j);
        const int shift = j == 10 ? 4 : 3;
        dc->TextOut(static_cast<int>(f.left + j * w - shift), static_cast<int>(f.bottom + 4), text);
    }

    CFont exponentFont;
    exponentFont.CreatePointFont(70, kAxisFace);
    dc->SelectObject(&exponentFont);
    WriteYExponents(dc, rc, f, h, 5, m_dYMax, m_dYMin, 0.2);

    dc->SelectObject(&framePen);
    DrawFrame(dc, f);
    dc->SelectObject(oldFont);
    dc->SelectObject(oldPen);
}

bool CSummaryPlot::MapPoint(double x, double y, CPoint* point) const {
    const RECT& f = m_rcPlot;
    // A multiplier below 1 (one a user typed) would leave the x axis without a length: it maps as 1.
    const int multiplier = std::max(1, m_nMultiplier);
    return AxisPixel(f.left, f.right - f.left, x, 0.0, multiplier * 10.0, &point->x) &&
           LogAxisPixel(f.bottom, -(f.bottom - f.top), y, m_dYMin, m_dYMax, &point->y);
}

void CSummaryPlot::DrawMarker(CDC* dc, const CPoint& p) {
    dc->Ellipse(static_cast<int>(p.x - 3), static_cast<int>(p.y - 3), static_cast<int>(p.x + 3),
                static_cast<int>(p.y + 3));
}

void CSummaryPlot::DrawPoints(CDC* dc) {
    const int n = std::min(m_arrX.GetSize(), m_arrY.GetSize());
    CBrush* oldBrush = dc->SelectObject(&m_brushMarker);
    CPen* oldPen = nullptr;
    CPoint from;
    bool haveFrom = n > 0 && MapPoint(m_arrX.GetAt(0), m_arrY.GetAt(0), &from);
    // The first marker has the pen that happens to be selected; the loop draws it again in red once a second
    // point follows.
    if (haveFrom) DrawMarker(dc, from);
    for (int i = 1; i < n; ++i) {
        CPoint to;
        const bool haveTo = MapPoint(m_arrX.GetAt(i), m_arrY.GetAt(i), &to);
        CPen* previous = dc->SelectObject(&m_penCurve);
        if (!oldPen) oldPen = previous;
        if (haveFrom && haveTo) {
            dc->MoveTo(static_cast<int>(from.x), static_cast<int>(from.y));
            dc->LineTo(static_cast<int>(to.x), static_cast<int>(to.y));
        }
        dc->SelectObject(&m_penMarker);
        if (haveFrom) DrawMarker(dc, from);
        if (haveTo) DrawMarker(dc, to);
        from = to;
        haveFrom = haveTo;
    }
    if (oldPen) dc->SelectObject(oldPen);
    dc->SelectObject(oldBrush);
}
