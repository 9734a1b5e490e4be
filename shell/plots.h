// The three plots of the main window: error against iterations, error against trials or units, and the
// patterns of a two-input classification set over the network's decision regions.
//
// Runs write the series directly and then call a refresh operation. Each plot guards its series with its own
// mutex: a feeder holds it (SeriesLock) while it rebuilds the series, a paint while it reads them, so a paint
// never meets half a series. Refresh operations take the lock themselves; call them after releasing it.
#pragma once

#include <functional>
#include <mutex>

#include "platform/drawing.h"
#include "platform/window.h"
#include "workspace/doublearray.h"

class CPlotBase : public CStatic {
public:
    std::unique_lock<std::mutex> SeriesLock() { return std::unique_lock<std::mutex>(m_seriesMutex); }
    bool PaintsItself() const override { return true; }
    // Repaints the whole client area. Safe from the worker.
    void Redraw();

protected:
    // The paint of every plot: a memory DC and a bitmap of the client's size, draw(dc, client) into it under
    // the series lock, one BitBlt to the screen, then bitmap and DC are deleted.
    void PaintBuffered(const std::function<void(CDC*, const RECT&)>& draw);

    std::mutex m_seriesMutex;
};

class CIterationPlot : public CPlotBase {
public:
    CIterationPlot();
    // Sets the mode, widens (modes 0, 1) or fits (mode 2) the ranges to the series, repaints.
    void RefreshIterationPlot(int nMode);
    void OnPaint() override;
    // Draws the whole picture into dc over the rectangle rc (used by OnPaint and by tests).
    void DrawAll(CDC* dc, const RECT& rc);

    RECT m_rcPlot{};
    CDoubleArray m_arrX;
    CDoubleArray m_arrY;
    CPen m_penCurve;
    double m_dYMax = 1.0;
    double m_dYMin = -3.0;
    double m_dXMax = 3.0;
    double m_dXMin = 0.0;
    int m_nMode = 0;

private:
    void DrawAxes(CDC* dc, const RECT& rc);
    void DrawCurve(CDC* dc);
    void DrawCurves(CDC* dc);
    // The pixel of a point; false when it has none (a coordinate that is not a number).
    bool MapPoint(double x, double y, CPoint* point) const;
    void FitRanges();
};

class CSummaryPlot : public CPlotBase {
public:
    CSummaryPlot();
    // Sets multiplier and mode, widens the y range to the series, repaints.
    void SetSummaryAxis(int nMultiplier, int nMode);
    void OnPaint() override;
    void DrawAll(CDC* dc, const RECT& rc);

    RECT m_rcPlot{};
    CDoubleArray m_arrX;
    CDoubleArray m_arrY;
    CPen m_penCurve;
    CPen m_penMarker;
    CBrush m_brushMarker;
    double m_dYMax = 1.0;
    double m_dYMin = -4.0;
    int m_nMultiplier = 1;
    int m_nMode = 0;

private:
    void DrawAxes(CDC* dc, const RECT& rc);
    void DrawPoints(CDC* dc);
    void DrawMarker(CDC* dc, const CPoint& point);
    bool MapPoint(double x, double y, CPoint* point) const;
};

class CDataPlot : public CPlotBase {
public:
    CDataPlot();
    // true: show the patterns, with bounds and steps computed from them; false: show the notice.
    void RefreshDataPlot(bool bShow);
    void OnPaint() override;
    void DrawAll(CDC* dc, const RECT& rc);

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
    void DrawNotice(CDC* dc, const RECT& rc);
    void DrawBackground(CDC* dc, const RECT& rc);
    void DrawGrid(CDC* dc, const RECT& rc);
    void DrawPatterns(CDC* dc, const RECT& rc);
    bool MapPoint(const RECT& rc, double x, double y, CPoint* point) const;
};
