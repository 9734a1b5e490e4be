// CDataPlot: the patterns of a two-input classification set as marks over the network's decision regions,
// or a notice for every other data set.
#include <algorithm>
#include <cmath>
#include <limits>

#include "shell/plotaxes.h"
#include "workspace/plots.h"

using plotaxes::ClampPixel;

namespace {

constexpr COLORREF kField = RGB(0xC5, 0xC5, 0xC5);
constexpr COLORREF kClassOne = RGB(0xFF, 0x00, 0x00);
constexpr COLORREF kClassTwo = RGB(0x00, 0x00, 0xFF);
constexpr COLORREF kAbove = RGB(0xFF, 0xFF, 0x00);
constexpr COLORREF kAtOrBelow = RGB(0x00, 0xFF, 0xFF);

// One axis of the field: its size in pixels and the offset of a value from the axis's minimum.
struct FieldAxis {
    FieldAxis(double minimum, double maximum, double step) : min(minimum), extent(maximum - minimum) {
        // A step that is not a positive number cannot come from ComputeStep; should a feeder leave one, the
        // axis maps one unit to one pixel.
        scaleStep = step > 0.0 && std::isfinite(step) ? step : 1.0;
        size = std::isfinite(extent) ? ClampPixel(extent / scaleStep) : 0;
    }

    // The value whose offset is offset: where the pixel column or row offset from the field's start begins.
    double ValueAt(double offset) const {
        if (extent == 0.0 || !std::isfinite(extent) || size == 0) return min + offset * scaleStep;
        return min + offset * extent / static_cast<double>(size);
    }

    // False for a value that is not a finite number: it has no place on the field.
    bool Offset(double value, long* offset) const {
        if (!std::isfinite(value)) return false;
        // An axis of zero extent (one pattern, or an input that never changes) has no divisor: it maps by
        // its step, so the value sits at the middle of the control with the grid's steps around it.
        if (extent == 0.0 || !std::isfinite(extent) || size == 0)
            *offset = ClampPixel((value - min) / scaleStep);
        else
            *offset = ClampPixel((value - min) * size / extent);
        return true;
    }

    double min;
    double extent;
    double scaleStep;
    long size;
};

// The smallest and largest finite element; false when there is none, and the bounds then stay.
bool FiniteExtremes(const CDoubleArray& values, double* smallest, double* largest) {
    bool found = false;
    for (int i = 0; i < values.GetSize(); ++i) {
        const double v = values.GetAt(i);
        if (!std::isfinite(v)) continue;
        if (!found || v < *smallest) *smallest = v;
        if (!found || v > *largest) *largest = v;
        found = true;
    }
    return found;
}

}  // namespace

CDataPlot::CDataPlot() {
    m_penClassOne.CreatePen(PS_SOLID, 1, kClassOne);
    m_penClassTwo.CreatePen(PS_SOLID, 1, kClassTwo);
}

void CDataPlot::RefreshDataPlot(bool bShow) {
    {
        auto lock = SeriesLock();
        m_bShowData = bShow ? 1 : 0;
        if (bShow) {
            ComputeBounds();
            m_dStepX = ComputeStep(m_dMaxX - m_dMinX);
            m_dStepY = ComputeStep(m_dMaxY - m_dMinY);
        }
    }
    Redraw();
}

void CDataPlot::ComputeBounds() {
    if (m_arrPatternX.GetSize() == 0 || m_arrPatternY.GetSize() == 0 || m_arrPatternClass.GetSize() == 0 ||
        m_arrPatternX.GetSize() != m_arrPatternY.GetSize())
        return;
    FiniteExtremes(m_arrPatternX, &m_dMinX, &m_dMaxX);
    FiniteExtremes(m_arrPatternY, &m_dMinY, &m_dMaxY);
    FiniteExtremes(m_arrPatternClass, &m_dMinClass, &m_dMaxClass);
}

double CDataPlot::ComputeStep(double range) {
    // A range of no extent, a negative one or one that is not a number would never leave the loop (or has no
    // meaning): it is taken as a range of 1, so the axis of a single value spans the field around it.
    if (!(range > 0.0) || !std::isfinite(range)) range = 1.0;
    double a = 1.0;
    // Below the smallest normal double a - a / 10 stops shrinking; a range that small stops there.
    while (range / a <= 250.0 && a > std::numeric_limits<double>::min()) a = a - a / 10;
    return a + a / 10;
}

CDataPlot::CSeenRange CDataPlot::SeenRange() {
    constexpr double kAll = std::numeric_limits<double>::infinity();
    RECT rc{};
    GetClientRect(&rc);
    const long width = rc.right - rc.left;
    const long height = rc.bottom - rc.top;
    if (width <= 0 || height <= 0) return CSeenRange{-kAll, kAll, -kAll, kAll};
    auto lock = SeriesLock();
    const FieldAxis ax(m_dMinX, m_dMaxX, m_dStepX);
    const FieldAxis ay(m_dMinY, m_dMaxY, m_dStepY);
    // As MapPoint: column rc.left + mx + dx, row rc.bottom - my - dy.
    const long mx = (width - ax.size) / 2;
    const long my = (height - ay.size) / 2;
    return CSeenRange{ax.ValueAt(-mx - 2.0), ax.ValueAt(width - mx + 2.0), ay.ValueAt(-my - 2.0),
                      ay.ValueAt(height - my + 2.0)};
}

void CDataPlot::OnPaint() {
    PaintBuffered([this](CDC* dc, const RECT& rc) { DrawAll(dc, rc); });
}

void CDataPlot::DrawAll(CDC* dc, const RECT& rc) {
    dc->FillSolidRect(&rc, kField);
    if (m_bShowData == 0) {
        DrawNotice(dc, rc);
        return;
    }
    DrawBackground(dc, rc);
    DrawGrid(dc, rc);
    DrawPatterns(dc, rc);
}

void CDataPlot::DrawNotice(CDC* dc, const RECT& rc) {
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

void CDataPlot::DrawBackground(CDC* dc, const RECT& rc) {
    dc->SetBkMode(TRANSPARENT);
    dc->FillSolidRect(&rc, RGB(0xFF, 0xFF, 0xFF));
}

bool CDataPlot::MapPoint(const RECT& rc, double x, double y, CPoint* point) const {
    const FieldAxis ax(m_dMinX, m_dMaxX, m_dStepX);
    const FieldAxis ay(m_dMinY, m_dMaxY, m_dStepY);
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

void CDataPlot::DrawGrid(CDC* dc, const RECT& rc) {
    const int n = std::min({m_arrGridX.GetSize(), m_arrGridY.GetSize(), m_arrGridValue.GetSize()});
    const double threshold = (m_dMaxClass + m_dMinClass) * 0.5;
    for (int i = 0; i < n; ++i) {
        const double value = m_arrGridValue.GetAt(i);
        CPoint p;
        // An output that is not a number belongs to neither region: its pixel stays white.
        if (std::isnan(value) || !MapPoint(rc, m_arrGridX.GetAt(i), m_arrGridY.GetAt(i), &p)) continue;
        dc->SetPixel(static_cast<int>(p.x), static_cast<int>(p.y), value > threshold ? kAbove : kAtOrBelow);
    }
}

void CDataPlot::DrawPatterns(CDC* dc, const RECT& rc) {
    const int n = std::min({m_arrPatternX.GetSize(), m_arrPatternY.GetSize(), m_arrPatternClass.GetSize()});
    CBrush brushOne(kClassOne);
    CBrush brushTwo(kClassTwo);
    for (int i = 0; i < n; ++i) {
        CPoint p;
        if (!MapPoint(rc, m_arrPatternX.GetAt(i), m_arrPatternY.GetAt(i), &p)) continue;
        const int x = static_cast<int>(p.x);
        const int y = static_cast<int>(p.y);
        if (m_arrPatternClass.GetAt(i) == 1.0) {
            CPen* oldPen = dc->SelectObject(&m_penClassOne);
            CBrush* oldBrush = dc->SelectObject(&brushOne);
            dc->Ellipse(x - 2, y - 2, x + 2, y + 2);
            dc->SelectObject(oldPen);
            dc->SelectObject(oldBrush);
        } else {
            CPen* oldPen = dc->SelectObject(&m_penClassTwo);
            CBrush* oldBrush = dc->SelectObject(&brushTwo);
            dc->Rectangle(x - 2, y - 2, x + 2, y + 2);
            dc->SelectObject(oldPen);
            dc->SelectObject(oldBrush);
        }
    }
}
