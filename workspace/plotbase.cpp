// What the three plots share: their pens, the painter the window hands them, the repaint request and the
// buffered paint.
#include "workspace/plots.h"

#include <utility>

namespace {

constexpr COLORREF kCurve = RGB(0x00, 0x00, 0xFF);

}  // namespace

CCurvePlot::CCurvePlot(double yMin) : m_dYMin(yMin) { m_penCurve.CreatePen(PS_SOLID, 1, kCurve); }

CIterationPlot::CIterationPlot() : CCurvePlot(-3.0) {}

CSummaryPlot::CSummaryPlot() : CCurvePlot(-4.0) {
    m_penMarker.CreatePen(PS_SOLID, 1, RGB(0xFF, 0x00, 0x00));
    m_brushMarker.CreateSolidBrush(RGB(0x00, 0xFF, 0x00));
}

CDataPlot::CDataPlot() {
    m_penClassOne.CreatePen(PS_SOLID, 1, kClassOneColour);
    m_penClassTwo.CreatePen(PS_SOLID, 1, kClassTwoColour);
}

// InvalidateRect with no rectangle is the whole client area; it reads no geometry, so the worker may call it.
void CPlotBase::Redraw() { InvalidateRect(nullptr, TRUE); }

void CPlotBase::SetPainter(CPlotPainter painter) { m_painter = std::move(painter); }

void CPlotBase::OnPaint() {
    CPaintDC dc(this);
    RECT rc;
    GetClientRect(&rc);
    const int width = static_cast<int>(rc.right - rc.left);
    const int height = static_cast<int>(rc.bottom - rc.top);
    CDC memDC;
    memDC.CreateCompatibleDC(&dc);
    CBitmap bitmap;
    bitmap.CreateCompatibleBitmap(&dc, width, height);
    CBitmap* oldBitmap = memDC.SelectObject(&bitmap);
    {
        // A feeder rebuilding the series waits until the picture is drawn, and the picture never shows half
        // of a series.
        auto lock = SeriesLock();
        if (m_painter) m_painter(&memDC, rc);
    }
    dc.BitBlt(0, 0, width, height, &memDC, 0, 0, SRCCOPY);
    memDC.SelectObject(oldBitmap);
    bitmap.DeleteObject();
    memDC.DeleteDC();
}
