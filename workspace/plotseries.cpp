// The operations through which feeders and handlers change the plots' series and ranges, each under the plot's
// lock.
#include "workspace/plots.h"

#include <algorithm>

namespace {

void AppendPairs(CDoubleArray& xs, CDoubleArray& ys, const CDoubleArray& newXs, const CDoubleArray& newYs) {
    const int base = xs.GetSize();
    const int n = newXs.GetSize() < newYs.GetSize() ? newXs.GetSize() : newYs.GetSize();
    xs.SetSize(base + n);
    ys.SetSize(base + n);
    for (int i = 0; i < n; ++i) {
        xs.SetAt(base + i, newXs.GetAt(i));
        ys.SetAt(base + i, newYs.GetAt(i));
    }
}

// Drops the oldest curves (each starts at x = 1) until room more points fit in most, the curve under way
// being kept whole.
void MakeRoom(CDoubleArray& xs, CDoubleArray& ys, int room, int most) {
    const int size = xs.GetSize();
    int from = size + room - most;
    if (from <= 0) return;
    while (from < size && xs.GetAt(from) != 1.0) ++from;
    const int kept = size - from;
    std::copy(xs.GetData() + from, xs.GetData() + size, xs.GetData());
    std::copy(ys.GetData() + from, ys.GetData() + size, ys.GetData());
    xs.SetSize(kept);
    ys.SetSize(kept);
}

void EmptyPairs(CDoubleArray& xs, CDoubleArray& ys) {
    xs.SetSize(0);
    ys.SetSize(0);
}

void EmptyAll(CDataPlot& plot) {
    for (CDoubleArray* series : {&plot.m_arrPatternX, &plot.m_arrPatternY, &plot.m_arrPatternClass,
                                 &plot.m_arrGridX, &plot.m_arrGridY, &plot.m_arrGridValue})
        series->SetSize(0);
}

}  // namespace

CAxisRange CPlotBase::LockedRange(const double& lower, const double& upper) {
    auto lock = SeriesLock();
    return CAxisRange{lower, upper};
}

void CPlotBase::SetLockedRange(double& lower, double& upper, const CAxisRange& range) {
    auto lock = SeriesLock();
    lower = range.lower;
    upper = range.upper;
}

// ---- curve plots ------------------------------------------------------------------------------------------

void CCurvePlot::ClearSeries() {
    auto lock = SeriesLock();
    EmptyPairs(m_arrX, m_arrY);
}

CAxisRange CCurvePlot::YRange() { return LockedRange(m_dYMin, m_dYMax); }

void CCurvePlot::SetYRange(const CAxisRange& range) { SetLockedRange(m_dYMin, m_dYMax, range); }

// ---- iteration plot ---------------------------------------------------------------------------------------

void CIterationPlot::AppendCurve(const CDoubleArray& xs, const CDoubleArray& ys, bool restart) {
    auto lock = SeriesLock();
    if (restart) EmptyPairs(m_arrX, m_arrY);
    MakeRoom(m_arrX, m_arrY, xs.GetSize(), kMostCurvePoints);
    AppendPairs(m_arrX, m_arrY, xs, ys);
}

CAxisRange CIterationPlot::XRange() { return LockedRange(m_dXMin, m_dXMax); }

void CIterationPlot::SetXRange(const CAxisRange& range) { SetLockedRange(m_dXMin, m_dXMax, range); }

// ---- summary plot -----------------------------------------------------------------------------------------

void CSummaryPlot::SetPoints(const CDoubleArray& xs, const CDoubleArray& ys) {
    auto lock = SeriesLock();
    EmptyPairs(m_arrX, m_arrY);
    AppendPairs(m_arrX, m_arrY, xs, ys);
}

int CSummaryPlot::Multiplier() {
    auto lock = SeriesLock();
    return m_nMultiplier;
}

void CSummaryPlot::SetMultiplier(int nMultiplier) {
    auto lock = SeriesLock();
    m_nMultiplier = nMultiplier;
}

// ---- data plot --------------------------------------------------------------------------------------------

void CDataPlot::SetPatterns(const double* inputs, std::size_t nInputs, const double* targets, std::size_t count) {
    auto lock = SeriesLock();
    EmptyAll(*this);
    for (std::size_t p = 0; p < count; ++p) {
        m_arrPatternX.Add(inputs[p * nInputs]);
        m_arrPatternY.Add(inputs[p * nInputs + 1]);
        m_arrPatternClass.Add(targets[p]);
    }
}

void CDataPlot::SetGrid(const std::vector<double>& xs, const std::vector<double>& ys,
                        const std::vector<double>& values) {
    auto lock = SeriesLock();
    CopyInto(m_arrGridX, xs);
    CopyInto(m_arrGridY, ys);
    CopyInto(m_arrGridValue, values);
}

CDataPlot::CPatternBounds CDataPlot::PatternBounds() {
    auto lock = SeriesLock();
    return CPatternBounds{m_dMinX, m_dMaxX, m_dStepX, m_dMinY, m_dMaxY, m_dStepY};
}

void CDataPlot::ClearSeries() {
    auto lock = SeriesLock();
    EmptyAll(*this);
}
