// The mapping of a value to a pixel that every plot's picture uses, with the one clamp of far-off coordinates,
// and what the two curve plots draw alike: the frame of the plotting area, the decade grid of the error axis,
// and the "10" labels with their small exponents.
#pragma once

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

// The plotting area within the client rectangle c.
RECT PlotFrame(const RECT& c);
// Transparent text background, and c filled with white.
void ClearClient(CDC* dc, const RECT& c);
// The horizontal grid of a logarithmic axis over the given number of decades of h pixels each, from the
// bottom: per decade its bottom line and the lines of 1 to 10 times its power of ten.
void DrawDecadeRows(CDC* dc, const RECT& frame, int h, int decades);
// "10" at the left of each decade line, decades + 1 of them.
void WriteDecadeTens(CDC* dc, const RECT& c, const RECT& frame, int h, int decades);
// The exponents beside the "10"s: yMax - (yMax - yMin) * i * fraction with "%.2f", top down.
void WriteYExponents(CDC* dc, const RECT& c, const RECT& frame, int h, int decades, double yMax, double yMin,
                     double fraction);
// The frame, with the pen that is selected: (L, T), (L, B), (R, B), (R, T), (L, T).
void DrawFrame(CDC* dc, const RECT& frame);

// A coordinate truncated to a pixel. Coordinates far outside any surface are all alike: they are clamped to
// one far off, which is still a safe int.
long ClampPixel(double at);
// origin + length * (value - low) / (high - low), truncated to a pixel. A range of zero extent, or one that
// is not a number, is taken as one unit centred on low, so that the mapping always has a divisor. False
// when the result is not a number; results far outside any surface are clamped.
bool AxisPixel(double origin, double length, double value, double low, double high, long* pixel);
// The same on a logarithmic axis whose low and high are exponents of ten. A value of 0 or below has no
// logarithm: it goes to the low end of the axis (an error of 0 lies on the floor of the plot), and +inf to
// the high end.
bool LogAxisPixel(double origin, double length, double value, double low, double high, long* pixel);

}  // namespace plotaxes
