// A screen smaller than the main dialog, 1366 x 768 at 125% (1093 x 614 logical pixels): the window takes what
// the screen offers and its controls scroll, so that the lowest ones (the Plotting group) can be reached.
#include <QScrollArea>
#include <QScrollBar>

#include "support/main_dialog.h"

class ScreenFit : public MainDialogTest {};

TEST_F(ScreenFit, ADialogLargerThanTheScreenScrollsItsControls) {
    auto* window = dynamic_cast<platform::DialogWindow*>(m_dlg.Window());
    ASSERT_NE(window, nullptr);
    const QRect control = window->Control(IDC_CLEAR_CURVES)->geometry();
    const QSize room(1093, 614);
    window->setAttribute(Qt::WA_DontShowOnScreen);  // kept from the offscreen screen's own size
    window->show();
    window->FitInto(room);
    platform::PumpFor(0);
    EXPECT_LE(window->width(), room.width());
    EXPECT_LT(window->height(), room.height());
    auto* scroll = window->findChild<QScrollArea*>();
    ASSERT_NE(scroll, nullptr);
    EXPECT_TRUE(scroll->verticalScrollBar()->isVisible());
    // The controls keep their rectangles; a Tab onto one off screen scrolls it into view.
    EXPECT_EQ(window->Control(IDC_CLEAR_CURVES)->geometry(), control);
    while (window->FocusedControl() != IDC_CLEAR_CURVES) ASSERT_TRUE(window->PressKey("Tab"));
    const QRect shown = window->Control(IDC_CLEAR_CURVES)->geometry().translated(
        window->Control(IDC_CLEAR_CURVES)->parentWidget()->mapTo(scroll->viewport(), QPoint(0, 0)));
    EXPECT_TRUE(scroll->viewport()->rect().contains(shown)) << "Clear Curves stays off screen";
    window->hide();
}
