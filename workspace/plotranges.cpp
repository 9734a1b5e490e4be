// The plots' refresh operations: the ranges fitted to the series, each under the plot's lock, then a repaint.
#include <algorithm>
#include <cmath>
#include <limits>

#include "workspace/fieldaxis.h"
#include "workspace/plots.h"

namespace {

// Beyond this many decades a bound is not stepped to one decade at a time.
constexpr double kFarDecades = 1000.0;

// The smallest and largest of the first n elements that are positive finite numbers, the only ones with a
// logarithm to plot; false when there are none.
bool PositiveExtremes(const CDoubleArray& values, int n, double* smallest, double* largest) {
    bool found = false;
    for (int i = 0; i < n; ++i) {
        const double v = values.GetAt(i);
        if (!(v > 0.0) || !std::isfinite(v)) continue;
        if (!found || v < *smallest) *smallest = v;
        if (!found || v > *largest) *largest = v;
        found = true;
    }
    return found;
}

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

// bound + 1.0 as often as needed until it is at least exponent. A bound that is not finite, or too far
// away to step to (a value a user typed), becomes the whole number above exponent at once.
double RaiseBound(double bound, double exponent) {
    if (std::isnan(exponent)) return bound;
    if (std::isnan(bound) || (exponent > bound && (std::isinf(bound) || exponent - bound > kFarDecades)))
        return std::ceil(exponent);
    while (exponent > bound) bound += 1.0;
    return bound;
}

// bound - 1.0 as often as needed until it is at most exponent; the same guards.
double LowerBound(double bound, double exponent) {
    if (std::isnan(exponent)) return bound;
    if (std::isnan(bound) || (exponent < bound && (std::isinf(bound) || bound - exponent > kFarDecades)))
        return std::floor(exponent);
    while (exponent < bound) bound -= 1.0;
    return bound;
}

// The exponent of the x axis's right end: + 1.0 while 10 to its power is below largestX.
double WidenXDecades(double bound, double largestX) {
    if (!(largestX > 0.0) || !std::isfinite(largestX)) return bound;
    const double exponent = std::log10(largestX);
    if (bound == INFINITY) return bound;
    if (std::isnan(bound) || bound == -INFINITY || exponent - bound > kFarDecades) bound = std::floor(exponent);
    while (std::pow(10.0, bound) < largestX) bound += 1.0;
    return bound;
}

// Widens an error axis in whole decades to the positive errors among the first n.
void WidenYDecades(const CDoubleArray& errors, int n, double& yMin, double& yMax) {
    double smallest = 0.0;
    double largest = 0.0;
    if (!PositiveExtremes(errors, n, &smallest, &largest)) return;
    yMax = RaiseBound(yMax, std::log10(largest));
    yMin = LowerBound(yMin, std::log10(smallest));
}

}  // namespace

// ---- iteration plot ---------------------------------------------------------------------------------------

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
    if (m_nMode == 2 && PositiveExtremes(m_arrY, n, &smallestY, &largestY)) {
        m_dYMax = std::log10(largestY);
        m_dYMin = std::log10(smallestY);
        // A flat curve would give an axis of no height: it gets one decade, the curve in the middle.
        if (m_dYMax == m_dYMin) {
            m_dYMax += 0.5;
            m_dYMin -= 0.5;
        }
    } else if (m_nMode != 2) {
        WidenYDecades(m_arrY, n, m_dYMin, m_dYMax);
    }
    double smallestX = 0.0;
    double largestX = 0.0;
    if (PositiveExtremes(m_arrX, n, &smallestX, &largestX)) m_dXMax = WidenXDecades(m_dXMax, largestX);
}

// ---- summary plot -----------------------------------------------------------------------------------------

void CSummaryPlot::SetSummaryAxis(int nMultiplier, int nMode) {
    {
        auto lock = SeriesLock();
        m_nMode = nMode;
        m_nMultiplier = nMultiplier;
        // Both modes widen the error axis alone; errors of 0 or below have no logarithm and are left out.
        WidenYDecades(m_arrY, std::min(m_arrX.GetSize(), m_arrY.GetSize()), m_dYMin, m_dYMax);
    }
    Redraw();
}

// ---- data plot --------------------------------------------------------------------------------------------

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
    // As the paint maps a point: column rc.left + mx + dx, row rc.bottom - my - dy.
    const long mx = (width - ax.size) / 2;
    const long my = (height - ay.size) / 2;
    return CSeenRange{ax.ValueAt(-mx - 2.0), ax.ValueAt(width - mx + 2.0), ay.ValueAt(-my - 2.0),
                      ay.ValueAt(height - my + 2.0)};
}
