// Feeding the three plots from a run. A paint on the window's thread reads the series under the plot's lock,
// so a series is rebuilt under that lock; the refresh operations take it themselves and are called after it
// is released.
#include <cmath>
#include <vector>

#include "training/runframe.h"

namespace training {
namespace {

// Appends (index + 1, errors[index]) for every element: the curves start at x = 1.
void AppendCurve(CDoubleArray& xs, CDoubleArray& ys, const CDoubleArray& errors) {
    const int base = xs.GetSize();
    const int n = errors.GetSize();
    xs.SetSize(base + n);
    ys.SetSize(base + n);
    for (int i = 0; i < n; ++i) {
        xs.m_pData[base + i] = i + 1;
        ys.m_pData[base + i] = errors.GetAt(i);
    }
}

void CopyInto(CDoubleArray& target, const std::vector<double>& values) {
    target.SetSize(static_cast<int>(values.size()));
    for (size_t i = 0; i < values.size(); ++i) target.m_pData[i] = values[i];
}

// The coordinates of one side of the grid: from min - 3 steps while at most max + 3 steps, by adding the
// step. A step or bound that isn't a finite positive number would never end the walk, so it gives no grid.
std::vector<double> GridLine(double minValue, double maxValue, double step) {
    std::vector<double> line;
    if (!(step > 0.0) || !std::isfinite(step) || !std::isfinite(minValue) || !std::isfinite(maxValue))
        return line;
    const double last = maxValue + 3 * step;
    for (double v = minValue - 3 * step; v <= last; v += step) {
        line.push_back(v);
        if (v + step == v) break;  // a step below the rounding of v would stand still
    }
    return line;
}

}  // namespace

void FeedIterationPlot(CVantrelDlg& dlg, const CDoubleArray& errors, bool restart, int refreshMode) {
    CIterationPlot& plot = dlg.m_iterationPlot;
    {
        auto lock = plot.SeriesLock();
        if (restart) {
            plot.m_arrX.SetSize(0);
            plot.m_arrY.SetSize(0);
        }
        AppendCurve(plot.m_arrX, plot.m_arrY, errors);
    }
    plot.RefreshIterationPlot(refreshMode);
}

void FeedSummaryPlot(CVantrelDlg& dlg, const CDoubleArray& errors, int multiplier, int mode) {
    CSummaryPlot& plot = dlg.m_summaryPlot;
    {
        auto lock = plot.SeriesLock();
        plot.m_arrX.SetSize(0);
        plot.m_arrY.SetSize(0);
        AppendCurve(plot.m_arrX, plot.m_arrY, errors);
    }
    plot.SetSummaryAxis(multiplier, mode);
}

void FeedDataPlot(CVantrelDlg& dlg) {
    CDataPlot& plot = dlg.m_dataPlot;
    std::vector<double> xs, ys;
    {
        auto lock = plot.SeriesLock();
        xs = GridLine(plot.m_dMinX, plot.m_dMaxX, plot.m_dStepX);
        ys = GridLine(plot.m_dMinY, plot.m_dMaxY, plot.m_dStepY);
    }
    // The network is evaluated without the lock, so that a paint never waits for the whole sweep.
    std::vector<double> gridX, gridY, values;
    gridX.reserve(xs.size() * ys.size());
    gridY.reserve(xs.size() * ys.size());
    values.reserve(xs.size() * ys.size());
    for (double x : xs)
        for (double y : ys) {
            gridX.push_back(x);
            gridY.push_back(y);
            values.push_back(dlg.EvaluatePoint(x, y));
        }
    {
        auto lock = plot.SeriesLock();
        CopyInto(plot.m_arrGridX, gridX);
        CopyInto(plot.m_arrGridY, gridY);
        CopyInto(plot.m_arrGridValue, values);
    }
    plot.Redraw();
}

}  // namespace training
