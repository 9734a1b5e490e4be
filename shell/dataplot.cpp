// The data plot's picture: the patterns of a two-input classification set as marks over the network's
// decision regions, or a notice for every other data set.
#include <algorithm>
#include <cmath>

#include "shell/plotaxes.h"
#include "shell/plots.h"
#include "workspace/fieldaxis.h"

namespace {

constexpr COLORREF kField = RGB(0xC5, 0xC5, 0xC5);
constexpr COLORREF kAbove = RGB(0xFF, 0xFF, 0x00);
constexpr COLORREF kAtOrBelow = RGB(0x00, 0xFF, 0xFF);

void DrawNotice(CDC* dc, const RECT& rc) {
    dc->SetBkMode(TRANSPARENT);
    dc->FillSolidRect(&rc, kField);
    CFont font;
    font.CreatePointFont(100, "Times New Roman");
    CFont* oldFont = dc->SelectObject(&font);
    dc->SetTextColor(RGB(0, 0, 0));
    // A third of the width, not of the height; without DT_SINGLELINE the text stands at the rectangle's top.
    RECT text = rc;
    text.top += (rc.right - rc.left) / 3;
    dc->DrawText("Only for Two-Dimensional Classification", &text, DT_CENTER | DT_VCENTER);
    dc->SelectObject(oldFont);
}

void DrawBackground(CDC* dc, const RECT& rc) {
    dc->SetBkMode(TRANSPARENT);
    dc->FillSolidRect(&rc, RGB(0xFF, 0xFF, 0xFF));
}

bool MapPoint(const CDataPlot& plot, const RECT& rc, double x, double y, CPoint* point) {
    const FieldAxis ax(plot.m_dMinX, plot.m_dMaxX, plot.m_dStepX);
    const FieldAxis ay(plot.m_dMinY, plot.m_dMaxY, plot.m_dStepY);
    long dx = 0;
    long dy = 0;
    if (!ax.Offset(x, &dx) || !ay.Offset(y, &dy)) return false;
    // The field stands in the middle of the control; the margins turn negative when it is the larger.
    const long mx = (rc.right - ax.size - rc.left) / 2;
    const long my = (rc.bottom - rc.top - ay.size) / 2;
    point->x = rc.left + mx + dx;
    point->y = rc.bottom - my - dy;
    return true;
}

void DrawGrid(const CDataPlot& plot, CDC* dc, const RECT& rc) {
    const int n = std::min({plot.m_arrGridX.GetSize(), plot.m_arrGridY.GetSize(), plot.m_arrGridValue.GetSize()});
    const double threshold = (plot.m_dMaxClass + plot.m_dMinClass) * 0.5;
    for (int i = 0; i < n; ++i) {
        const double value = plot.m_arrGridValue.GetAt(i);
        CPoint p;
        // An output that is not a number belongs to neither region: its pixel stays white.
        if (std::isnan(value) || !MapPoint(plot, rc, plot.m_arrGridX.GetAt(i), plot.m_arrGridY.GetAt(i), &p))
            continue;
        dc->SetPixel(static_cast<int>(p.x), static_cast<int>(p.y), value > threshold ? kAbove : kAtOrBelow);
    }
}

void DrawPatterns(CDataPlot& plot, CDC* dc, const RECT& rc) {
    const int n = std::min({plot.m_arrPatternX.GetSize(), plot.m_arrPatternY.GetSize(),
                            plot.m_arrPatternClass.GetSize()});
    CBrush brushOne(CDataPlot::kClassOneColour);
    CBrush brushTwo(CDataPlot::kClassTwoColour);
    for (int i = 0; i < n; ++i) {
        CPoint p;
        if (!MapPoint(plot, rc, plot.m_arrPatternX.GetAt(i), plot.m_arrPatternY.GetAt(i), &p)) continue;
        const int x = static_cast<int>(p.x);
        const int y = static_cast<int>(p.y);
        if (plot.m_arrPatternClass.GetAt(i) == 1.0) {
            CPen* oldPen = dc->SelectObject(&plot.m_penClassOne);
            CBrush* oldBrush = dc->SelectObject(&brushOne);
            dc->Ellipse(x - 2, y - 2, x + 2, y + 2);
            dc->SelectObject(oldPen);
            dc->SelectObject(oldBrush);
        } else {
            CPen* oldPen = dc->SelectObject(&plot.m_penClassTwo);
            CBrush* oldBrush = dc->SelectObject(&brushTwo);
            dc->Rectangle(x - 2, y - 2, x + 2, y + 2);
            dc->SelectObject(oldPen);
            dc->SelectObject(oldBrush);
        }
    }
}

}  // namespace

void DrawAll(CDataPlot& plot, CDC* dc, const RECT& rc) {
    dc->FillSolidRect(&rc, kField);
    if (plot.m_bShowData == 0) {
        DrawNotice(dc, rc);
        return;
    }
    DrawBackground(dc, rc);
    DrawGrid(plot, dc, rc);
    DrawPatterns(plot, dc, rc);
}
