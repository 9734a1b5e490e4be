// What the three plots share: the repaint request and the buffered paint.
#include "workspace/plots.h"

// InvalidateRect with no rectangle is the whole client area; it reads no geometry, so the worker may call it.
void CPlotBase::Redraw() { InvalidateRect(nullptr, TRUE); }

void CPlotBase::PaintBuffered(const std::function<void(CDC*, const RECT&)>& draw) {
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
        draw(&memDC, rc);
    }
    dc.BitBlt(0, 0, width, height, &memDC, 0, 0, SRCCOPY);
    memDC.SelectObject(oldBitmap);
    bitmap.DeleteObject();
    memDC.DeleteDC();
}
