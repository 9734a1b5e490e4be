// The three plots of the main window: error against iterations, error against trials or units, and the
// patterns of a two-input classification set over the network's decision regions.
//
// Each plot owns its series and guards them with its own mutex. Feeders and handlers change them only through
// the operations below, each of which takes the lock, and a paint holds it while it reads them, so a paint
// never meets half a series. Others may read the series and ranges only while no run is under way.
//
// The operations on the series live in plotseries.cpp, the refresh operations that fit the ranges to them in
// plotranges.cpp, the pens and the buffered paint in plotbase.cpp. What a paint draws is the window's
// (shell/plots.h): the main dialog hands each plot its painter as it is made.
#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "platform/drawing.h"
#include "platform/window.h"
#include "workspace/doublearray.h"

// Draws a plot's whole picture into dc over its client rectangle rc; called while the paint holds the lock.
using CPlotPainter = std::function<void(CDC* dc, const RECT& rc)>;

// The two ends of an axis, as exponents of ten on a logarithmic axis.
struct CAxisRange {
    double lower;
    double upper;
};

class CPlotBase : public CStatic {
public:
    bool PaintsItself() const override { return true; }
    // Repaints the whole client area. Safe from the worker.
    void Redraw();
    // What the plot's paint draws from now on. Main thread, before the plot is shown.
    void SetPainter(CPlotPainter painter);
    // A memory DC and a bitmap of the client's size, the painter's picture drawn into it under the series
    // lock, one BitBlt to the screen, then bitmap and DC are deleted. Without a painter the picture is blank.
    void OnPaint() override;

protected:
    std::unique_lock<std::mutex> SeriesLock() { return std::unique_lock<std::mutex>(m_seriesMutex); }
    CAxisRange LockedRange(const double& lower, const double& upper);
    void SetLockedRange(double& lower, double& upper, const CAxisRange& range);

    std::mutex m_seriesMutex;

private:
    CPlotPainter m_painter;
};

// What the two curve plots share: a series of (x, y) pairs drawn in a frame over a logarithmic error axis.
class CCurvePlot : public CPlotBase {
public:
    void ClearSeries();
    CAxisRange YRange();
    void SetYRange(const CAxisRange& range);

    RECT m_rcPlot{};
    CDoubleArray m_arrX;
    CDoubleArray m_arrY;
    CPen m_penCurve;
    double m_dYMax = 1.0;
    double m_dYMin;
    int m_nMode = 0;

protected:
    explicit CCurvePlot(double yMin);
};

class CIterationPlot : public CCurvePlot {
public:
    CIterationPlot();
    // Appends the points (xs[i], ys[i]), a curve that starts at x = 1; restart empties the series first (One
    // Curve). Multiple Curves keeps the latest curves up to kMostCurvePoints points in all: later curves lie
    // over earlier ones, and a run of millions of trials would otherwise hold all of them.
    void AppendCurve(const CDoubleArray& xs, const CDoubleArray& ys, bool restart);
    static constexpr int kMostCurvePoints = 1 << 21;
    CAxisRange XRange();
    void SetXRange(const CAxisRange& range);
    // Sets the mode, widens (modes 0, 1) or fits (mode 2) the ranges to the series, repaints.
    void RefreshIterationPlot(int nMode);

    double m_dXMax = 3.0;
    double m_dXMin = 0.0;

private:
    void FitRanges();
};

class CSummaryPlot : public CCurvePlot {
public:
    CSummaryPlot();
    // The series become the points (xs[i], ys[i]).
    void SetPoints(const CDoubleArray& xs, const CDoubleArray& ys);
    int Multiplier();
    void SetMultiplier(int nMultiplier);
    // Sets multiplier and mode, widens the y range to the series, repaints.
    void SetSummaryAxis(int nMultiplier, int nMode);

    CPen m_penMarker;
    CBrush m_brushMarker;
    int m_nMultiplier = 1;
};

class CDataPlot : public CPlotBase {
public:
    // Where the patterns lie and how many data units a pixel holds: what the grid of a run is swept over.
    struct CPatternBounds {
        double minX, maxX, stepX;
        double minY, maxY, stepY;
    };

    CDataPlot();
    // The patterns become (inputs[p * nInputs], inputs[p * nInputs + 1], targets[p]) for each of count
    // patterns of two or more inputs; the grid is emptied until a run sweeps it anew.
    void SetPatterns(const double* inputs, std::size_t nInputs, const double* targets, std::size_t count);
    // The grid becomes the points (xs[i], ys[i]) with the network's outputs values[i].
    void SetGrid(const std::vector<double>& xs, const std::vector<double>& ys, const std::vector<double>& values);
    CPatternBounds PatternBounds();
    // The part of the plane that the control shows, in data units, with two pixels to spare on each side: grid
    // points beyond it fall outside the control and are clipped, never seen. The field grows by a pixel per
    // 1.1 data units however wide the patterns spread, so a sweep of the whole field would grow with their
    // spread; one of this part is bounded by the control's pixels. Without a window, the whole plane. Reads
    // the control's size from the window: not to be called under the series lock.
    struct CSeenRange {
        double minX, maxX, minY, maxY;
    };
    CSeenRange SeenRange();
    // Empties all six series.
    void ClearSeries();
    // true: show the patterns, with bounds and steps computed from them; false: show the notice.
    void RefreshDataPlot(bool bShow);

    // The colours of the marks: class 1, and any other class.
    static constexpr COLORREF kClassOneColour = RGB(0xFF, 0x00, 0x00);
    static constexpr COLORREF kClassTwoColour = RGB(0x00, 0x00, 0xFF);

    int m_bShowData = 0;
    CDoubleArray m_arrPatternX;
    CDoubleArray m_arrPatternY;
    CDoubleArray m_arrPatternClass;
    CPen m_penClassOne;
    CPen m_penClassTwo;
    double m_dMinX = 0.0;
    double m_dMinY = 0.0;
    double m_dMinClass = 0.0;
    double m_dMaxX = 0.0;
    double m_dMaxY = 0.0;
    double m_dMaxClass = 0.0;
    double m_dStepX = 1.0;
    double m_dStepY = 1.0;
    CDoubleArray m_arrGridX;
    CDoubleArray m_arrGridY;
    CDoubleArray m_arrGridValue;

    // Data units per pixel for a range; never hangs, also for a range of 0.
    static double ComputeStep(double range);

private:
    void ComputeBounds();
};
