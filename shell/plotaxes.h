// The mapping of a value to a pixel that every plot's picture uses, with the one clamp of far-off coordinates,
// and what the two curve plots draw alike: the frame of the plotting area, the decade grid of the error axis,
// and the "10" labels with their small exponents.
#pragma once

#include <functional>

#include "platform/drawing.h"
#include "platform/window.h"

namespace plotaxes {

constexpr COLORREF kBlack = RGB(0, 0, 0);
constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);
constexpr COLORREF kGrid = RGB(0xD2, 0xD2, 0xD2);
constexpr const char* kAxisFace = "Times New Roman";

// The titles the curve plots draw above their frames; they also name the plots for assistive technology.
constexpr const char* kIterationTitle = "Average Sum Square Errors vs. Number of Iterations";
CString SummaryTitle(int mode, int multiplier);
// Names plot by its title for assistive technology, when it has a window. Main thread.
void NamePlot(CWnd& plot, const CString& title);

// What sets a curve plot's x axis apart: the steps its width falls into, and what is drawn into the plotting
// area f with w, the width of a step: its grid lines (with the grid pen selected), its labels (with the label
// font) and the exponents beside them (with the exponent font; a linear axis has none).
struct CXAxisDrawing {
    using Part = std::function<void(CDC* dc, const RECT& f, int w)>;
    int steps;
    Part grid;
    Part labels;
    Part exponents;
};

// The axes of a curve plot in the client rectangle c, drawn in this order: the client cleared, the title over
// the frame, the decade grid of the error axis (decades rows; exponents from yMax down by fraction of the
// range a row) and the x axis's grid lines, the "10"s and the x labels, the exponents, and last the frame.
// Returns the plotting area.
RECT DrawCurveAxes(CDC* dc, const RECT& c, const CString& title, int decades, double yMax, double yMin,
                   double fraction, const CXAxisDrawing& x);

// A line of the x axis's grid at x, from the frame's top to its bottom, with the pen that is selected.
void VerticalLine(CDC* dc, const RECT& frame, long x);

// origin + length * (value - low) / (high - low), truncated to a pixel. A range of zero extent, or one that
// is not a number, is taken as one unit centred on low, so that the mapping always has a divisor. False
// when the result is not a number; results far outside any surface are clamped.
bool AxisPixel(double origin, double length, double value, double low, double high, long* pixel);
// The same on a logarithmic axis whose low and high are exponents of ten. A value of 0 or below has no
// logarithm: it goes to the low end of the axis (an error of 0 lies on the floor of the plot), and +inf to
// the high end.
bool LogAxisPixel(double origin, double length, double value, double low, double high, long* pixel);

}  // namespace plotaxes
