// Chief header of the plots' pictures in shell/: what each of the three plots of workspace/plots.h draws.
//
// Lives here: the picture of each plot (iterationplot.cpp, summaryplot.cpp, dataplot.cpp) on the platform's
// CDC, and what the pictures share (plotaxes.h: frame, decade grid, labels, the mapping of values to pixels).
// May include: platform/ and workspace/ (the plots' declarations); nothing of training/.
// Owns: nothing. The series, ranges and pens are the plots' own; a picture reads them, and writes only the
// frame m_rcPlot, while the paint holds the plot's lock.
//
// The plots know nothing of their pictures: the main dialog hands each plot a painter that calls DrawAll as
// it is made (HandPainter), and the plot's paint calls it into its buffer. Tests draw a plot into a bitmap
// with DrawAll directly.
#pragma once

#include "workspace/plots.h"

void DrawAll(CIterationPlot& plot, CDC* dc, const RECT& rc);
void DrawAll(CSummaryPlot& plot, CDC* dc, const RECT& rc);
void DrawAll(CDataPlot& plot, CDC* dc, const RECT& rc);

// From now on plot paints with DrawAll.
template <class Plot>
void HandPainter(Plot& plot) {
    plot.SetPainter([&plot](CDC* dc, const RECT& rc) { DrawAll(plot, dc, rc); });
}
