// The decision grid of a classification set whose inputs spread far: the field then grows far beyond the
// control, and the sweep keeps what the control shows, the same picture in a number of points that the
// control's pixels bound.
#include "run_fixture.h"
#include "support/picture.h"
#include "training/training.h"

namespace {

// The grid of the whole field: x from min - 3 steps while at most max + 3 steps, y likewise inside it.
void SweepWholeField(CVantrelDlg& dlg) {
    const CDataPlot::CPatternBounds b = dlg.m_dataPlot.PatternBounds();
    std::vector<double> xs, ys, values;
    for (double x = b.minX - 3 * b.stepX; x <= b.maxX + 3 * b.stepX; x += b.stepX)
        for (double y = b.minY - 3 * b.stepY; y <= b.maxY + 3 * b.stepY; y += b.stepY) {
            xs.push_back(x);
            ys.push_back(y);
            values.push_back(dlg.EvaluatePoint(x, y));
        }
    dlg.m_dataPlot.SetGrid(xs, ys, values);
}

TEST_F(TrainingRun, AFieldWiderThanTheControlIsSweptWhereTheControlShowsIt) {
    // Inputs spanning 800 give a field of 727 pixels a side: some 540,000 grid points, most of them clipped.
    LoadPatterns({{0.0, 0.0, 1.0}, {800.0, 800.0, -1.0}, {300.0, 500.0, 1.0}, {520.0, 380.0, -1.0}});
    SetNetwork({0.01, 0.01, 0.01, 0.01}, {0.0, 1.0, -1.0}, {1.0, 1.0}, {3.3, 3.3, 4.7, 4.7});
    m_dlg.m_bClassification = true;
    m_dlg.m_dataPlot.SetPatterns(m_dlg.m_pInputs, 2, m_dlg.m_pTargets, 4);
    m_dlg.m_dataPlot.RefreshDataPlot(true);
    RECT client;
    m_dlg.m_dataPlot.GetClientRect(&client);
    ASSERT_GT(client.right, 100) << "the data plot has no size";

    training::FeedDataPlot(m_dlg);
    const int swept = m_dlg.m_dataPlot.m_arrGridValue.GetSize();
    EXPECT_LE(swept, (client.right + 6) * (client.bottom + 6)) << "the grid must be bounded by the control";
    const Picture bounded = Picture::Of(m_dlg.m_dataPlot, static_cast<int>(client.right),
                                        static_cast<int>(client.bottom));
    SweepWholeField(m_dlg);
    ASSERT_GT(m_dlg.m_dataPlot.m_arrGridValue.GetSize(), 500000);
    bounded.Save("grid_seen_part");
    const Picture whole = Picture::Of(m_dlg.m_dataPlot, static_cast<int>(client.right),
                                      static_cast<int>(client.bottom));
    int differing = 0;
    for (int y = 0; y < client.bottom; ++y)
        for (int x = 0; x < client.right; ++x) differing += bounded.At(x, y) != whole.At(x, y);
    EXPECT_EQ(differing, 0) << "the bounded grid must show what the whole one shows";
    EXPECT_GT(bounded.Count(RGB(0xFF, 0xFF, 0), 0, 0, client.right, client.bottom), 100) << "regions are drawn";
    EXPECT_GT(bounded.Count(RGB(0, 0xFF, 0xFF), 0, 0, client.right, client.bottom), 100);
}

}  // namespace
