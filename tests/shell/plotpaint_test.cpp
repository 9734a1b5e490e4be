// The plots painted by their own controls on the hidden main dialog: the paint DC, the client area inside the
// sunken border, and the one copy from the memory bitmap.
#include <QFrame>
#include <algorithm>
#include <QImage>
#include <QWidget>

#include "platform/dialogwindow.h"
#include "support/main_dialog.h"
#include "support/picture.h"

namespace {

class PlotPaint : public MainDialogTest {
protected:
    // What the control shows, and where its client area begins inside it.
    static Picture Grab(CWnd& plot, QPoint* clientOrigin) {
        QWidget* widget = platform::WidgetOf(&plot);
        if (!widget) return Picture(QImage());
        *clientOrigin = QPoint(0, 0);
        if (auto* frame = qobject_cast<QFrame*>(widget)) *clientOrigin = frame->contentsRect().topLeft();
        return Picture::Of(*widget);
    }
};

}  // namespace

TEST_F(PlotPaint, IterationPlotPaintsItsFrameAndCurveInClientCoordinates) {
    CDoubleArray xs, errors;
    for (int i = 0; i < 1000; ++i) xs.Add(i + 1), errors.Add(1.0 / (i + 1));
    m_dlg.m_iterationPlot.AppendCurve(xs, errors, true);
    m_dlg.m_iterationPlot.RefreshIterationPlot(0);
    RECT client;
    m_dlg.m_iterationPlot.GetClientRect(&client);
    ASSERT_GT(client.right, 100) << "the plot control has no size";
    QPoint o;
    const Picture shown = Grab(m_dlg.m_iterationPlot, &o);
    ASSERT_FALSE(shown.IsNull()) << "the iteration plot has no widget";
    shown.Save("iteration_widget");
    const RECT& f = m_dlg.m_iterationPlot.m_rcPlot;
    EXPECT_EQ(f.right, client.right - 13) << "the paint laid out the frame in the client rectangle";
    const int midY = static_cast<int>((f.top + f.bottom) / 2);
    EXPECT_EQ(shown.At(o.x() + f.left, o.y() + midY), RGB(0, 0, 0)) << "left frame line";
    EXPECT_EQ(shown.At(o.x() + 2, o.y() + 2), RGB(0xFF, 0xFF, 0xFF)) << "white client corner";
    const int x10 = static_cast<int>(f.left + (f.right - f.left) / 3.0);
    const int y10 = static_cast<int>(f.bottom - (f.bottom - f.top) * 0.5);
    EXPECT_EQ(shown.At(o.x() + x10, o.y() + y10), RGB(0, 0, 0xFF)) << "the curve passes (10, 0.1)";
}

TEST_F(PlotPaint, DataPlotShowsTheNoticeOnGreyAtStart) {
    QPoint o;
    const Picture shown = Grab(m_dlg.m_dataPlot, &o);
    ASSERT_FALSE(shown.IsNull()) << "the data plot has no widget";
    shown.Save("data_widget");
    EXPECT_EQ(shown.At(o.x() + 3, o.y() + 3), RGB(0xC5, 0xC5, 0xC5));
}

TEST_F(PlotPaint, AtDevicePixelRatioTwoAOnePixelLineIsTwoSharpDevicePixels) {
    CDoubleArray xs, errors;
    for (int i = 0; i < 1000; ++i) xs.Add(i + 1), errors.Add(0.1);
    m_dlg.m_iterationPlot.AppendCurve(xs, errors, true);
    m_dlg.m_iterationPlot.RefreshIterationPlot(0);
    auto* widget = qobject_cast<QFrame*>(platform::WidgetOf(&m_dlg.m_iterationPlot));
    ASSERT_NE(widget, nullptr);
    QImage shown(widget->size() * 2, QImage::Format_RGB32);
    shown.setDevicePixelRatio(2.0);
    widget->render(&shown);
    const QRect client = widget->contentsRect();
    const RECT& f = m_dlg.m_iterationPlot.m_rcPlot;
    int blue = 0, blended = 0;
    for (int y = 2 * (client.top() + f.top); y < 2 * (client.top() + f.bottom); ++y) {
        const QRgb pixel = shown.pixel(2 * (client.left() + (f.left + f.right) / 2), y);
        blue += pixel == qRgb(0, 0, 0xFF);
        blended += qBlue(pixel) > qRed(pixel) && pixel != qRgb(0, 0, 0xFF);
    }
    EXPECT_EQ(blue, 2) << "the flat curve is not two device pixels wide";
    EXPECT_EQ(blended, 0) << "the curve is blurred";
    // A picture drawn at 1x and blown up consists of uniform 2 x 2 blocks; its text drawn at 2x does not.
    int splitBlocks = 0;
    for (int y = 2 * client.top(); y < 2 * (client.bottom() + 1); y += 2)
        for (int x = 2 * client.left(); x < 2 * (client.right() + 1); x += 2) {
            const QRgb p = shown.pixel(x, y);
            splitBlocks += shown.pixel(x + 1, y) != p || shown.pixel(x, y + 1) != p || shown.pixel(x + 1, y + 1) != p;
        }
    EXPECT_GT(splitBlocks, 0) << "the plot was painted at 1x and scaled up";
}

// At a ratio of 1.5 a logical pixel is one or two device pixels, by where it falls; the marks are drawn in
// device pixels, so that every one of them has the same shape, wherever it stands.
TEST_F(PlotPaint, AtDevicePixelRatioOneAndAHalfEveryMarkHasOneShape) {
    // Class-1 patterns one data unit apart along a diagonal of a range of 300: a step of 1.1, so marks fall on
    // logical pixels of both parities.
    std::vector<double> inputs, targets;
    for (int i = 0; i <= 300; i += 30) {
        inputs.insert(inputs.end(), {static_cast<double>(i), static_cast<double>(i)});
        targets.push_back(i == 0 || i == 300 ? -1.0 : 1.0);
    }
    m_dlg.m_dataPlot.SetPatterns(inputs.data(), 2, targets.data(), targets.size());
    m_dlg.m_dataPlot.RefreshDataPlot(true);
    QWidget* widget = platform::WidgetOf(&m_dlg.m_dataPlot);
    ASSERT_NE(widget, nullptr);
    QImage shown(widget->size() * 1.5, QImage::Format_RGB32);
    shown.setDevicePixelRatio(1.5);
    widget->render(&shown);
    // Each red mark as the set of its pixels, counted from its top left corner.
    std::vector<std::vector<QPoint>> shapes;
    std::vector<bool> seen(shown.width() * shown.height(), false);
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            if (seen[y * shown.width() + x] || shown.pixel(x, y) != qRgb(0xFF, 0, 0)) continue;
            std::vector<QPoint> shape, todo{QPoint(x, y)};
            seen[y * shown.width() + x] = true;
            while (!todo.empty()) {
                const QPoint p = todo.back();
                todo.pop_back();
                shape.push_back(p);
                for (const QPoint& d : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                    const QPoint q = p + d;
                    if (!shown.rect().contains(q) || seen[q.y() * shown.width() + q.x()] ||
                        shown.pixel(q) != qRgb(0xFF, 0, 0))
                        continue;
                    seen[q.y() * shown.width() + q.x()] = true;
                    todo.push_back(q);
                }
            }
            QPoint corner = shape.front();
            for (const QPoint& p : shape) corner = QPoint(std::min(corner.x(), p.x()), std::min(corner.y(), p.y()));
            for (QPoint& p : shape) p -= corner;
            std::sort(shape.begin(), shape.end(),
                      [](const QPoint& a, const QPoint& b) { return a.y() != b.y() ? a.y() < b.y() : a.x() < b.x(); });
            shapes.push_back(shape);
        }
    ASSERT_EQ(shapes.size(), 9u);
    for (const auto& shape : shapes) EXPECT_EQ(shape, shapes.front()) << "marks of one class differ in shape";
}
