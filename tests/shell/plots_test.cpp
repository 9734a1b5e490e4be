// The three plots rendered with DrawAll into a bitmap of a plot control's size, and their range rules.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

#include "support/picture.h"
#include "workspace/plots.h"

namespace {

constexpr int kWidth = 416;
constexpr int kHeight = 278;
// The frame of the plotting area for that size: L, T, R, B.
constexpr int L = 45, T = 20, R = kWidth - 13, B = kHeight - 20;

constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);
constexpr COLORREF kBlack = RGB(0, 0, 0);
constexpr COLORREF kGrid = RGB(0xD2, 0xD2, 0xD2);
constexpr COLORREF kBlue = RGB(0, 0, 0xFF);
constexpr COLORREF kRed = RGB(0xFF, 0, 0);
constexpr COLORREF kGreen = RGB(0, 0xFF, 0);
constexpr COLORREF kField = RGB(0xC5, 0xC5, 0xC5);
constexpr COLORREF kYellow = RGB(0xFF, 0xFF, 0);
constexpr COLORREF kCyan = RGB(0, 0xFF, 0xFF);

template <class Plot>
Picture Draw(Plot& plot) {
    return Picture::Of(plot, kWidth, kHeight);
}

void Fill(CDoubleArray& xs, CDoubleArray& ys, const std::vector<std::pair<double, double>>& points) {
    xs.SetSize(0);
    ys.SetSize(0);
    for (const auto& [x, y] : points) {
        xs.Add(x);
        ys.Add(y);
    }
}

// Errors of one trial: e[i] at iteration i + 1.
void FillCurve(CIterationPlot& plot, int n, double (*error)(int)) {
    plot.m_arrX.SetSize(0);
    plot.m_arrY.SetSize(0);
    for (int i = 0; i < n; ++i) {
        plot.m_arrX.Add(i + 1);
        plot.m_arrY.Add(error(i));
    }
}

}  // namespace

// ---- curve plots: pictures ----------------------------------------------------------------------------------

TEST(IterationPlotPicture, EmptyPlotShowsFrameDottedDecadeGridTitleAndLabels) {
    CIterationPlot plot;
    const Picture p = Draw(plot);
    p.Save("iteration_empty");
    EXPECT_EQ(plot.m_rcPlot.left, L);
    EXPECT_EQ(plot.m_rcPlot.bottom, B);
    for (int y : {T + 10, (T + B) / 2, B - 10}) {
        EXPECT_EQ(p.At(L, y), kBlack) << "left frame at row " << y;
        EXPECT_EQ(p.At(L - 1, y), kBlack) << "the frame pen is two pixels wide";
        EXPECT_EQ(p.At(R, y), kBlack) << "right frame at row " << y;
    }
    EXPECT_EQ(p.At((L + R) / 2, B), kBlack) << "bottom frame";
    EXPECT_EQ(p.At((L + R) / 2, T), kBlack) << "top frame";
    const int h = (B - T) / 4;
    const int w = (R - L) / 3;
    // A decade line is dotted: about half of its pixels grey, none of another colour.
    const int onRow = p.Count(kGrid, L + 2, B - h, R - 2, B - h + 1);
    EXPECT_GT(onRow, (R - L) / 3) << "decade line 10^-2 is missing";
    EXPECT_LT(onRow, R - L - 10) << "decade line must be dotted, not solid";
    EXPECT_GT(p.Count(kGrid, L + w, T + 2, L + w + 1, B - 2), (B - T) / 3) << "vertical decade line 10^1";
    const int twoTimes = static_cast<int>(B - std::log10(2.0) * h);
    EXPECT_GT(p.Count(kGrid, L + 2, twoTimes, R - 2, twoTimes + 1), 150) << "the line of 2 x 10^-3";
    EXPECT_LT(p.Count(kGrid, L + 2, twoTimes + 2, R - 2, twoTimes + 3), 40)
        << "between the lines of 1 and 2 only the vertical lines cross";
    EXPECT_GT(p.Count(kBlack, L + 40, 0, R, T - 2), 100) << "title text";
    EXPECT_GT(p.Count(kBlack, 0, T, L - 2, B), 40) << "y labels";
    EXPECT_GT(p.Count(kBlack, L, B + 3, R, kHeight), 40) << "x labels";
    EXPECT_EQ(p.At(2, 2), kWhite);
}

TEST(IterationPlotPicture, CurveRunsThroughItsPointsInBlue) {
    CIterationPlot plot;
    // error = 1 / iteration: a straight line from 10^0 at x = 1 down to 10^-3 at x = 1000.
    FillCurve(plot, 1000, [](int i) { return 1.0 / (i + 1); });
    plot.RefreshIterationPlot(0);
    const Picture p = Draw(plot);
    p.Save("iteration_curve");
    EXPECT_EQ(p.At(L, static_cast<int>(B - (B - T) * 0.75)), kBlue) << "curve starts at (1, 1)";
    EXPECT_EQ(p.At(L + (R - L) / 3, B - (B - T) / 2), kBlue) << "curve passes (10, 0.1)";
    EXPECT_EQ(p.At(L + 2 * (R - L) / 3, static_cast<int>(B - (B - T) * 0.25)), kBlue) << "curve passes (100, 0.01)";
    EXPECT_EQ(p.Count(kBlue, L + (R - L) / 3 + 5, T + 2, R - 2, 120), 0) << "nothing blue above the curve";
}

TEST(IterationPlotPicture, MultipleCurvesStartAnewAtXOne) {
    CIterationPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 1}, {10, 1}, {100, 1}, {1, 0.01}, {10, 0.01}, {100, 0.01}});
    plot.RefreshIterationPlot(1);
    const Picture separate = Draw(plot);
    separate.Save("iteration_multiple");
    const int upper = static_cast<int>(B - (B - T) * 0.75);
    const int lower = static_cast<int>(B - (B - T) * 0.25);
    EXPECT_GT(separate.Count(kBlue, L, upper, R, upper + 1), 200) << "first curve";
    EXPECT_GT(separate.Count(kBlue, L, lower, R, lower + 1), 200) << "second curve";
    EXPECT_EQ(separate.Count(kBlue, 0, upper + 2, kWidth, lower - 1), 0)
        << "the end of one curve must not be joined to the start of the next";
    plot.RefreshIterationPlot(0);
    const Picture joined = Draw(plot);
    EXPECT_GT(joined.Count(kBlue, 0, upper + 2, kWidth, lower - 1), 50) << "mode 0 draws one joined curve";
}

// Multiple Curves over a run of many trials: the oldest curves go once the series would pass their bound, so
// that what stays is whole curves, the latest of them.
TEST(IterationPlotSeries, MultipleCurvesKeepTheLatestWholeCurvesWithinTheirBound) {
    CIterationPlot plot;
    CDoubleArray xs, ys;
    const int points = 100000;
    for (int i = 0; i < points; ++i) xs.Add(i + 1), ys.Add(1.0);
    for (int curve = 0; curve < 25; ++curve) {
        ys.SetAt(0, curve);  // each curve known by its first error
        plot.AppendCurve(xs, ys, false);
    }
    const int size = plot.m_arrX.GetSize();
    EXPECT_LE(size, CIterationPlot::kMostCurvePoints);
    EXPECT_EQ(size % points, 0) << "only whole curves are kept";
    EXPECT_EQ(plot.m_arrX.GetAt(0), 1.0);
    EXPECT_EQ(plot.m_arrY.GetAt(0), 25 - size / points) << "the oldest curves go first";
    EXPECT_EQ(plot.m_arrY.GetAt(size - points), 24.0) << "the latest curve is kept";
    plot.AppendCurve(xs, ys, true);
    EXPECT_EQ(plot.m_arrX.GetSize(), points) << "One Curve starts afresh";
}

TEST(IterationPlotPicture, ASinglePointDrawsNothing) {
    CIterationPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{5, 0.1}});
    const Picture p = Draw(plot);
    EXPECT_EQ(p.Count(kBlue, 0, 0, kWidth, kHeight), 0);
}

TEST(SummaryPlotPicture, PointsHaveGreenMarkersWithRedOutlineJoinedInBlue) {
    CSummaryPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.1}, {2, 0.01}, {3, 0.001}});
    plot.SetSummaryAxis(1, 0);
    const Picture p = Draw(plot);
    p.Save("summary_points");
    // x = 1 of 0..10 and 10^-1 on an axis of 10^-4 .. 10^1.
    const int x1 = static_cast<int>(L + (R - L) * 1 / 10.0);
    const int y1 = static_cast<int>(B - (B - T) * 3 / 5.0);
    EXPECT_EQ(p.At(x1, y1), kGreen) << "marker fill at the point";
    EXPECT_EQ(p.At(x1 - 3, y1), kRed) << "marker outline";
    EXPECT_EQ(p.At(x1 + 4, y1), kWhite) << "marker ends within its box";
    const int x2 = static_cast<int>(L + (R - L) * 2 / 10.0);
    const int y2 = static_cast<int>(B - (B - T) * 2 / 5.0);
    EXPECT_EQ(p.At(x2, y2), kGreen);
    EXPECT_EQ(p.At((x1 + x2) / 2, (y1 + y2) / 2), kBlue) << "segment between the markers";
    const int w = (R - L) / 10;
    EXPECT_GT(p.Count(kGrid, L + 5 * w, T + 2, L + 5 * w + 1, B - 2), 60) << "linear x grid line at 5";
}

TEST(SummaryPlotPicture, SinglePointShowsOneMarkerAndTitleFollowsMode) {
    CSummaryPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.1}});
    plot.SetSummaryAxis(1, 0);
    const Picture trials = Draw(plot);
    const int x1 = static_cast<int>(L + (R - L) / 10.0);
    const int y1 = static_cast<int>(B - (B - T) * 3 / 5.0);
    EXPECT_EQ(trials.At(x1, y1), kGreen) << "a single point shows as a marker";
    EXPECT_EQ(trials.Count(kBlue, 0, 0, kWidth, kHeight), 0) << "and no segment";
    plot.SetSummaryAxis(2, 2);
    const Picture units = Draw(plot);
    units.Save("summary_units_x2");
    EXPECT_NE(trials.Count(kBlack, 0, 0, kWidth, T - 2), units.Count(kBlack, 0, 0, kWidth, T - 2))
        << "the title must change with the mode and the multiplier";
    const int x1Doubled = static_cast<int>(L + (R - L) / 20.0);
    EXPECT_EQ(units.At(x1Doubled, y1), kGreen) << "multiplier 2: the x axis spans 0 to 20";
}

// ---- curve plots: range rules -------------------------------------------------------------------------------

TEST(IterationPlotRanges, FifteenHundredIterationsWidenTheXAxisToFourDecades) {
    CIterationPlot plot;
    FillCurve(plot, 1500, [](int i) { return 0.5 / (1 + i); });
    plot.RefreshIterationPlot(0);
    EXPECT_EQ(plot.m_dXMax, 4.0);
    EXPECT_EQ(plot.m_dXMin, 0.0);
    EXPECT_EQ(plot.m_dYMax, 1.0) << "y range is already wide enough";
    EXPECT_EQ(plot.m_dYMin, -4.0) << "0.5 / 1500 lies below 10^-3";
    FillCurve(plot, 1000, [](int) { return 0.1; });
    plot.RefreshIterationPlot(0);
    EXPECT_EQ(plot.m_dXMax, 4.0) << "the x range never narrows";
}

TEST(IterationPlotRanges, ModesZeroAndOneOnlyWidenInWholeDecades) {
    for (int mode : {0, 1}) {
        CIterationPlot plot;
        Fill(plot.m_arrX, plot.m_arrY, {{1, 0.5}, {2, 0.00005}});
        plot.RefreshIterationPlot(mode);
        EXPECT_EQ(plot.m_dYMin, -5.0) << "mode " << mode << ": 0.00005 needs 10^-5";
        EXPECT_EQ(plot.m_dYMax, 1.0) << "mode " << mode;
        Fill(plot.m_arrX, plot.m_arrY, {{1, 0.2}, {2, 0.1}});
        plot.RefreshIterationPlot(mode);
        EXPECT_EQ(plot.m_dYMin, -5.0) << "mode " << mode << ": a range never narrows";
        Fill(plot.m_arrX, plot.m_arrY, {{1, 500.0}, {2, 0.1}});
        plot.RefreshIterationPlot(mode);
        EXPECT_EQ(plot.m_dYMax, 3.0) << "mode " << mode << ": 500 needs 10^3";
        EXPECT_EQ(plot.m_nMode, mode);
    }
}

TEST(IterationPlotRanges, ModeTwoFitsTheCurveAndLaterWidensFromTheFittedBounds) {
    CIterationPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.3}, {2, 0.02}, {3, 0.05}});
    plot.RefreshIterationPlot(2);
    EXPECT_DOUBLE_EQ(plot.m_dYMax, std::log10(0.3));
    EXPECT_DOUBLE_EQ(plot.m_dYMin, std::log10(0.02));
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.3}, {2, 0.001}});
    plot.RefreshIterationPlot(0);
    EXPECT_DOUBLE_EQ(plot.m_dYMin, std::log10(0.02) - 2.0) << "widened from the fractional bound by 1.0 steps";
    EXPECT_DOUBLE_EQ(plot.m_dYMax, std::log10(0.3));
}

TEST(IterationPlotRanges, ModeTwoGivesAFlatCurveOneDecade) {
    CIterationPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.01}, {2, 0.01}});
    plot.RefreshIterationPlot(2);
    EXPECT_DOUBLE_EQ(plot.m_dYMax - plot.m_dYMin, 1.0) << "an axis of no height would have no divisor";
    EXPECT_DOUBLE_EQ((plot.m_dYMax + plot.m_dYMin) / 2, -2.0) << "the flat curve lies in the middle";
}

TEST(IterationPlotRanges, ErrorsWithoutALogarithmAreLeftOutOfTheRangesAndDrawnOnTheFloor) {
    CIterationPlot plot;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.1}, {2, 0.0}, {3, -1.0}, {4, nan}, {5, inf}, {6, 0.01}});
    plot.RefreshIterationPlot(0);
    EXPECT_EQ(plot.m_dYMin, -3.0) << "0, negative, NaN and inf take no part in the y range";
    EXPECT_EQ(plot.m_dYMax, 1.0);
    plot.RefreshIterationPlot(2);
    EXPECT_DOUBLE_EQ(plot.m_dYMax, -1.0);
    EXPECT_DOUBLE_EQ(plot.m_dYMin, -2.0);
    CIterationPlot floor;
    Fill(floor.m_arrX, floor.m_arrY, {{1, 0.1}, {10, 0.0}});
    floor.RefreshIterationPlot(0);
    const Picture p = Draw(floor);
    EXPECT_EQ(p.At(L + (R - L) / 3 - 1, B - 1), kBlue) << "an error of 0 drops to the floor of the frame";
}

TEST(IterationPlotRanges, DegenerateRangesStillDrawAndNeverHang) {
    CIterationPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.1}, {100, 0.01}});
    plot.m_dXMin = plot.m_dXMax = 1.0;
    plot.m_dYMin = plot.m_dYMax = -1.0;
    const Picture equal = Draw(plot);
    equal.Save("iteration_degenerate");
    EXPECT_GT(equal.Count(kBlue, 0, 0, kWidth, kHeight), 10) << "equal bounds map as one decade around them";
    // Bounds a user might type: the widening must end at once.
    plot.m_dYMin = -1e300;
    plot.m_dYMax = -std::numeric_limits<double>::infinity();
    plot.m_dXMax = std::numeric_limits<double>::quiet_NaN();
    plot.RefreshIterationPlot(0);
    EXPECT_EQ(plot.m_dYMax, -1.0);
    EXPECT_EQ(plot.m_dYMin, -1e300) << "a range only widens";
    EXPECT_EQ(plot.m_dXMax, 2.0);
    const Picture wild = Draw(plot);
    SUCCEED();
}

TEST(SummaryPlotRanges, SetSummaryAxisWidensTheErrorAxisInBothModes) {
    for (int mode : {0, 2}) {
        CSummaryPlot plot;
        Fill(plot.m_arrX, plot.m_arrY, {{1, 20.0}, {2, 0.00005}});
        plot.SetSummaryAxis(3, mode);
        EXPECT_EQ(plot.m_dYMax, 2.0) << "mode " << mode;
        EXPECT_EQ(plot.m_dYMin, -5.0) << "mode " << mode;
        EXPECT_EQ(plot.m_nMultiplier, 3);
        EXPECT_EQ(plot.m_nMode, mode);
    }
    CSummaryPlot empty;
    empty.SetSummaryAxis(2, 2);
    EXPECT_EQ(empty.m_dYMin, -4.0) << "empty series leave the range";
}

TEST(SummaryPlotRanges, MultiplierZeroDrawsAsOne) {
    CSummaryPlot plot;
    Fill(plot.m_arrX, plot.m_arrY, {{1, 0.1}, {2, 0.01}});
    plot.m_nMultiplier = 0;
    const Picture zero = Draw(plot);
    plot.m_nMultiplier = 1;
    const Picture one = Draw(plot);
    const int x1 = static_cast<int>(L + (R - L) / 10.0);
    const int y1 = static_cast<int>(B - (B - T) * 3 / 5.0);
    EXPECT_EQ(zero.At(x1, y1), kGreen) << "multiplier 0 has no divisor: points map as for 1";
    EXPECT_EQ(one.At(x1, y1), kGreen);
}

// ---- data plot -----------------------------------------------------------------------------------------

TEST(DataPlotPicture, WithoutDataItShowsTheGreyFieldAndTheNotice) {
    CDataPlot plot;
    const Picture p = Draw(plot);
    p.Save("data_notice");
    EXPECT_EQ(p.At(0, 0), kField);
    EXPECT_EQ(p.At(kWidth - 1, kHeight - 1), kField);
    const int top = kWidth / 3;
    EXPECT_GT(p.Count(kBlack, 0, top, kWidth, top + 16), 100) << "notice a third of the width down";
    EXPECT_EQ(p.Count(kBlack, 0, 0, kWidth, top), 0) << "nothing above the notice";
    EXPECT_EQ(p.Count(kBlack, 0, top + 20, kWidth, kHeight), 0) << "nothing below the notice";
}

TEST(DataPlotPicture, PatternsOverTheDecisionGrid) {
    CDataPlot plot;
    Fill(plot.m_arrPatternX, plot.m_arrPatternY, {{0, 0}, {1, 1}, {0, 1}});
    for (double c : {1.0, 0.0, -1.0}) plot.m_arrPatternClass.Add(c);
    plot.RefreshDataPlot(true);
    EXPECT_EQ(plot.m_dMinClass, -1.0);
    // The grid as a sweep leaves it: one point per step, three steps beyond the bounds on each side.
    const double threshold = (plot.m_dMaxClass + plot.m_dMinClass) * 0.5;
    for (double x = plot.m_dMinX - 3 * plot.m_dStepX; x <= plot.m_dMaxX + 3 * plot.m_dStepX; x += plot.m_dStepX)
        for (double y = plot.m_dMinY - 3 * plot.m_dStepY; y <= plot.m_dMaxY + 3 * plot.m_dStepY;
             y += plot.m_dStepY) {
            plot.m_arrGridX.Add(x);
            plot.m_arrGridY.Add(y);
            plot.m_arrGridValue.Add(x + y < 1.0 ? 1.0 : (x + y < 1.5 ? threshold : -1.0));
        }
    const Picture p = Draw(plot);
    p.Save("data_patterns");
    const int field = static_cast<int>(1.0 / plot.m_dStepX);
    const int mx = (kWidth - field) / 2;
    const int my = (kHeight - field) / 2;
    const int x0 = mx, y0 = kHeight - my;               // pattern (0, 0)
    const int x1 = mx + field, y1 = kHeight - my - field;  // pattern (1, 1)
    EXPECT_EQ(p.At(x0, y0), kRed) << "class 1 is a red circle";
    EXPECT_EQ(p.At(x0 - 2, y0 - 2), kYellow) << "the circle's corner is left to the field";
    EXPECT_EQ(p.At(x1, y1), kBlue) << "class 0 is a blue square";
    EXPECT_EQ(p.At(x1 - 2, y1 - 2), kBlue) << "the square has its corner";
    EXPECT_EQ(p.At(x0, y1), kBlue) << "class -1 is a blue square too";
    EXPECT_EQ(p.At(x0 + 40, y0 - 40), kYellow) << "output above the threshold";
    EXPECT_EQ(p.At(x0 + field * 5 / 8, y0 - field * 5 / 8), kCyan) << "output exactly at the threshold";
    EXPECT_EQ(p.At(x1 - 10, y1 + 10), kCyan) << "output below the threshold";
    EXPECT_EQ(p.At(x0 - 2, y0 + 2), kYellow) << "the grid reaches beyond the bounds";
    EXPECT_EQ(p.At(x0 - 6, y0), kWhite) << "beyond the grid the field is white";
    EXPECT_EQ(p.At(2, 2), kWhite) << "no grey once data is shown";
}

TEST(DataPlotPicture, HidingKeepsSeriesBoundsAndSteps) {
    CDataPlot plot;
    Fill(plot.m_arrPatternX, plot.m_arrPatternY, {{0, 0}, {10, 20}});
    plot.m_arrPatternClass.Add(1.0);
    plot.m_arrPatternClass.Add(0.0);
    plot.RefreshDataPlot(true);
    const double step = plot.m_dStepY;
    plot.RefreshDataPlot(false);
    EXPECT_EQ(plot.m_bShowData, 0);
    EXPECT_EQ(plot.m_dMaxY, 20.0);
    EXPECT_EQ(plot.m_dStepY, step);
    EXPECT_EQ(plot.m_arrPatternX.GetSize(), 2);
    const Picture p = Draw(plot);
    EXPECT_EQ(p.At(0, 0), kField);
}

TEST(DataPlotSteps, ComputeStepFollowsTheShrinkingRule) {
    EXPECT_DOUBLE_EQ(CDataPlot::ComputeStep(251.0), 1.1);
    EXPECT_DOUBLE_EQ(CDataPlot::ComputeStep(1000.0), 1.1);
    EXPECT_DOUBLE_EQ(CDataPlot::ComputeStep(250.0), 0.9 * 1.1) << "a range of exactly 250 enters the loop once";
    for (double range : {1.0, 7.3, 100.0, 249.0, 0.01, 1e-6}) {
        const int field = static_cast<int>(range / CDataPlot::ComputeStep(range));
        EXPECT_GE(field, 227) << "range " << range;
        EXPECT_LE(field, 252) << "range " << range;
    }
}

TEST(DataPlotSteps, RangesWithoutExtentEndAtOnceWithAPositiveStep) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double one = CDataPlot::ComputeStep(1.0);
    for (double range : {0.0, -5.0, nan, inf, -inf}) {
        EXPECT_DOUBLE_EQ(CDataPlot::ComputeStep(range), one) << "range " << range << " is taken as 1";
    }
    const double tiny = CDataPlot::ComputeStep(std::numeric_limits<double>::denorm_min());
    EXPECT_GT(tiny, 0.0) << "the smallest positive range must end the loop";
}

TEST(DataPlotPicture, ARangeOfAThousandGivesAFieldOf909PixelsCentredAndClipped) {
    CDataPlot plot;
    Fill(plot.m_arrPatternX, plot.m_arrPatternY, {{0, 0}, {1000, 100}, {500, 50}});
    for (double c : {1.0, 1.0, 1.0}) plot.m_arrPatternClass.Add(c);
    plot.RefreshDataPlot(true);
    EXPECT_DOUBLE_EQ(plot.m_dStepX, 1.1);
    EXPECT_EQ(static_cast<int>((plot.m_dMaxX - plot.m_dMinX) / plot.m_dStepX), 909);
    const Picture p = Draw(plot);
    const int mx = (kWidth - 909) / 2;  // negative: the field is wider than the control
    const int centre = mx + static_cast<int>(500.0 * 909 / 1000.0);
    const int field = static_cast<int>(100 / plot.m_dStepY);
    const int row = kHeight - (kHeight - field) / 2 - static_cast<int>(50.0 * field / 100.0);
    EXPECT_EQ(p.At(centre, row), kRed) << "the middle pattern at the middle of the control";
}

TEST(DataPlotPicture, OnePatternOrAConstantInputDrawsAtTheMiddle) {
    CDataPlot plot;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Fill(plot.m_arrPatternX, plot.m_arrPatternY, {{3, 3}, {nan, 7}});
    plot.m_arrPatternClass.Add(1.0);
    plot.m_arrPatternClass.Add(1.0);
    plot.RefreshDataPlot(true);
    EXPECT_EQ(plot.m_dMinX, 3.0) << "values that are not numbers take no part in the bounds";
    EXPECT_EQ(plot.m_dMaxX, 3.0);
    EXPECT_GT(plot.m_dStepX, 0.0);
    for (int k = -3; k <= 3; ++k) {
        plot.m_arrGridX.Add(3.0 + k * plot.m_dStepX);
        plot.m_arrGridY.Add(5.0);
        plot.m_arrGridValue.Add(0.0);
    }
    const Picture p = Draw(plot);
    p.Save("data_constant_x");
    EXPECT_EQ(p.At(kWidth / 2, kHeight - (kHeight - static_cast<int>(4 / plot.m_dStepY)) / 2), kRed)
        << "x of no extent maps to the middle column";
    EXPECT_GT(p.Count(kCyan, 0, 0, kWidth, kHeight), 0) << "grid points around it are drawn";
}

// ---- threads --------------------------------------------------------------------------------------------

// A plot that lets the test stand in for a feeder caught in the middle of rebuilding the series.
class HeldPlot : public CIterationPlot {
public:
    using CPlotBase::SeriesLock;
};

TEST(PlotSeriesLock, PaintWaitsForAFeederInTheMiddleOfTheSeries) {
    HeldPlot plot;
    std::atomic<bool> holding{false};
    std::atomic<bool> finished{false};
    std::thread feeder([&] {
        auto lock = plot.SeriesLock();
        plot.m_arrX.Add(1.0);  // half a pair: y is still to come
        holding = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        plot.m_arrY.Add(0.5);
        finished = true;
    });
    while (!holding) std::this_thread::yield();
    plot.OnPaint();
    EXPECT_TRUE(finished) << "the paint read the series while a feeder was rebuilding them";
    feeder.join();
}
