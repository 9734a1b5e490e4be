// Feeding the three plots from a run: each plot's own operations change its series under its lock.
#include <algorithm>
#include <cmath>
#include <vector>

#include "training/training.h"

namespace training {
namespace {

// The coordinates of one side of the grid: from min - 3 steps while at most max + 3 steps, by adding the
// step; of them, those from seenLow to seenHigh, the part of the field that the control shows. Where the
// control shows all of the field the walk is the whole one. A step or bound that isn't a finite positive
// number would never end the walk, so it gives no grid.
std::vector<double> GridLine(double minValue, double maxValue, double step, double seenLow, double seenHigh) {
    std::vector<double> line;
    if (!(step > 0.0) || !std::isfinite(step) || !std::isfinite(minValue) || !std::isfinite(maxValue))
        return line;
    const double first = minValue - 3 * step;
    const double last = std::min(maxValue + 3 * step, seenHigh);
    const double skipped = std::floor((seenLow - first) / step);
    for (double v = skipped > 0.0 ? first + skipped * step : first; v <= last; v += step) {
        line.push_back(v);
        if (v + step == v) break;  // a step below the rounding of v would stand still
    }
    return line;
}

// The kept points of a curve as a plot's two series.
void FillSeries(const engine::CErrorCurve& errors, CDoubleArray& xs, CDoubleArray& ys) {
    const std::vector<engine::CCurvePoint> points = errors.Points();
    xs.SetSize(static_cast<int>(points.size()));
    ys.SetSize(static_cast<int>(points.size()));
    for (size_t k = 0; k < points.size(); ++k) {
        xs.SetAt(static_cast<int>(k), static_cast<double>(points[k].index) + 1.0);
        ys.SetAt(static_cast<int>(k), points[k].error);
    }
}

}  // namespace

void FeedIterationPlot(CVantrelDlg& dlg, const engine::CErrorCurve& errors, bool restart, int refreshMode) {
    CDoubleArray xs, ys;
    FillSeries(errors, xs, ys);
    dlg.m_iterationPlot.AppendCurve(xs, ys, restart);
    dlg.m_iterationPlot.RefreshIterationPlot(refreshMode);
}

void FeedSummaryPlot(CVantrelDlg& dlg, const engine::CErrorCurve& errors, int multiplier, int mode) {
    CDoubleArray xs, ys;
    FillSeries(errors, xs, ys);
    dlg.m_summaryPlot.SetPoints(xs, ys);
    dlg.m_summaryPlot.SetSummaryAxis(multiplier, mode);
}

void FeedDataPlot(CVantrelDlg& dlg) {
    const CDataPlot::CSeenRange seen = dlg.m_dataPlot.SeenRange();
    const CDataPlot::CPatternBounds bounds = dlg.m_dataPlot.PatternBounds();
    const std::vector<double> xs = GridLine(bounds.minX, bounds.maxX, bounds.stepX, seen.minX, seen.maxX);
    const std::vector<double> ys = GridLine(bounds.minY, bounds.maxY, bounds.stepY, seen.minY, seen.maxY);
    // The network is evaluated outside the plot's lock, so that a paint never waits for the whole sweep.
    std::vector<double> gridX, gridY, values;
    gridX.reserve(xs.size() * ys.size());
    gridY.reserve(xs.size() * ys.size());
    values.reserve(xs.size() * ys.size());
    for (double x : xs) {
        dlg.m_cancel.ThrowIfAbandoned();
        for (double y : ys) {
            gridX.push_back(x);
            gridY.push_back(y);
            values.push_back(dlg.EvaluatePoint(x, y));
        }
    }
    dlg.m_dataPlot.SetGrid(gridX, gridY, values);
    dlg.m_dataPlot.Redraw();
}

}  // namespace training
