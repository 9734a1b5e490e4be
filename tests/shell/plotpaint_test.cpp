// The plots painted by their own controls on the hidden main dialog: the paint DC, the client area inside the
// sunken border, and the one copy from the memory bitmap.
#include <gtest/gtest.h>

#include <QFrame>
#include <QImage>
#include <QPixmap>
#include <QWidget>

#include "platform/qtaccess.h"
#include "platform/scripted.h"
#include "workspace/workspace.h"

namespace {

class PlotPaint : public ::testing::Test {
protected:
    void SetUp() override {
        AfxSetPromptHook(&m_prompts);
        ASSERT_TRUE(m_dlg.CreateHidden());
    }
    void TearDown() override { AfxSetPromptHook(nullptr); }

    // What the control shows, and where its client area begins inside it.
    QImage Grab(CWnd& plot, QPoint* clientOrigin) {
        QWidget* widget = platform::WidgetOf(&plot);
        if (!widget) return QImage();
        *clientOrigin = QPoint(0, 0);
        if (auto* frame = qobject_cast<QFrame*>(widget)) *clientOrigin = frame->contentsRect().topLeft();
        return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    CScriptedPrompts m_prompts{[](const std::string&) {}};
    CVantrelDlg m_dlg;
};

}  // namespace

TEST_F(PlotPaint, IterationPlotPaintsItsFrameAndCurveInClientCoordinates) {
    CDoubleArray errors;
    for (int i = 0; i < 1000; ++i) errors.Add(1.0 / (i + 1));
    m_dlg.m_iterationPlot.AppendCurve(errors, true);
    m_dlg.m_iterationPlot.RefreshIterationPlot(0);
    RECT client;
    m_dlg.m_iterationPlot.GetClientRect(&client);
    ASSERT_GT(client.right, 100) << "the plot control has no size";
    QPoint origin;
    const QImage shown = Grab(m_dlg.m_iterationPlot, &origin);
    ASSERT_FALSE(shown.isNull()) << "the iteration plot has no widget";
    shown.save("/tmp/plots/iteration_widget.png");
    const RECT& f = m_dlg.m_iterationPlot.m_rcPlot;
    EXPECT_EQ(f.right, client.right - 13) << "the paint laid out the frame in the client rectangle";
    const int midY = static_cast<int>((f.top + f.bottom) / 2);
    EXPECT_EQ(shown.pixel(origin.x() + f.left, origin.y() + midY), qRgb(0, 0, 0)) << "left frame line";
    EXPECT_EQ(shown.pixel(origin.x() + 2, origin.y() + 2), qRgb(0xFF, 0xFF, 0xFF)) << "white client corner";
    const int x10 = static_cast<int>(f.left + (f.right - f.left) / 3.0);
    const int y10 = static_cast<int>(f.bottom - (f.bottom - f.top) * 0.5);
    EXPECT_EQ(shown.pixel(origin.x() + x10, origin.y() + y10), qRgb(0, 0, 0xFF)) << "the curve passes (10, 0.1)";
}

TEST_F(PlotPaint, DataPlotShowsTheNoticeOnGreyAtStart) {
    QPoint origin;
    const QImage shown = Grab(m_dlg.m_dataPlot, &origin);
    ASSERT_FALSE(shown.isNull()) << "the data plot has no widget";
    shown.save("/tmp/plots/data_widget.png");
    EXPECT_EQ(shown.pixel(origin.x() + 3, origin.y() + 3), qRgb(0xC5, 0xC5, 0xC5));
}
