// The right-button menus of the curve plots and the range commands, on the hidden main dialog.
#include <string>
#include <vector>

#include "support/main_dialog.h"

namespace {

// Scripted answers that also record the popup menus shown (and choose a command from them) and the texts a
// range dialog showed when it opened.
class RecordingPrompts : public CScriptedPrompts {
public:
    RecordingPrompts() : CScriptedPrompts([](const std::string&) {}) {}

    UINT TrackPopupMenu(const CMenu& menu, int, int) override {
        std::vector<UINT> ids;
        for (const CMenu::Item& item : menu.Items()) ids.push_back(item.id);
        menus.push_back(ids);
        return choose;
    }
    INT_PTR RunModal(CDialog& dialog) override {
        platform::DialogControls* window = dialog.Window();
        std::string shown;
        for (int id : {1098, 1099, 1100})
            if (window && window->HasControl(id)) shown += std::to_string(id) + "=" + window->Text(id) + " ";
        opened.push_back(std::to_string(dialog.TemplateId()) + ": " + shown);
        return CScriptedPrompts::RunModal(dialog);
    }

    std::vector<std::vector<UINT>> menus;
    std::vector<std::string> opened;
    UINT choose = 0;
};

class PlotCommands : public MainDialogTest {
protected:
    void SetUp() override {
        MainDialogTest::SetUp();
        AfxSetPromptHook(&m_recording);
    }

    // The middle of a control, in the dialog's client coordinates.
    CPoint MiddleOf(int id) const {
        RECT screen;
        m_dlg.GetDlgItem(id)->GetWindowRect(&screen);
        POINT origin;
        m_dlg.ClientToScreen(&origin);
        return CPoint((screen.left + screen.right) / 2 - origin.x, (screen.top + screen.bottom) / 2 - origin.y);
    }

    RecordingPrompts m_recording;
};

}  // namespace

TEST_F(PlotCommands, RightClickOpensTheMenuOfThePlotUnderThePointerOnly) {
    m_dlg.OnRButtonDown(0, MiddleOf(1013));
    m_dlg.OnRButtonDown(0, MiddleOf(1012));
    m_dlg.OnRButtonDown(0, MiddleOf(1022));
    m_dlg.OnRButtonDown(0, CPoint(2, 2));
    ASSERT_EQ(m_recording.menus.size(), 2u) << "only the two curve plots have a menu";
    EXPECT_EQ(m_recording.menus[0], (std::vector<UINT>{32771, 32773})) << "iteration plot: menu 134";
    EXPECT_EQ(m_recording.menus[1], (std::vector<UINT>{32772, 32774})) << "summary plot: menu 135";
}

TEST_F(PlotCommands, ChosenMenuCommandReachesItsRangeDialog) {
    m_recording.choose = 32773;
    m_recording.QueueDialog(1039, {{Action::Set, 1098, "2"}, {Action::Set, 1099, "-6"}, {Action::Ok, 0, ""}}, "y");
    m_dlg.OnRButtonDown(0, MiddleOf(1013));
    EXPECT_EQ(m_dlg.m_iterationPlot.m_dYMax, 2.0);
    EXPECT_EQ(m_dlg.m_iterationPlot.m_dYMin, -6.0);
}

TEST_F(PlotCommands, RangeDialogsShowThePlotValuesAndTakeThemBackOnlyAfterOk) {
    m_recording.QueueDialog(136, {{Action::Set, 1098, "5"}, {Action::Set, 1099, "-1"}, {Action::Ok, 0, ""}}, "x");
    m_dlg.OnIterationXRange();
    ASSERT_EQ(m_recording.opened.size(), 1u);
    EXPECT_EQ(m_recording.opened[0], "136: 1098=3 1099=0 ") << "the dialog opens with the plot's exponents";
    EXPECT_EQ(m_dlg.m_iterationPlot.m_dXMax, 5.0);
    EXPECT_EQ(m_dlg.m_iterationPlot.m_dXMin, -1.0);

    m_recording.QueueDialog(1040, {{Action::Set, 1098, "9"}, {Action::Set, 1099, "8"}, {Action::Cancel, 0, ""}}, "c");
    m_dlg.OnSummaryYRange();
    EXPECT_EQ(m_recording.opened.back(), "1040: 1098=1 1099=-4 ");
    EXPECT_EQ(m_dlg.m_summaryPlot.m_dYMax, 1.0) << "Cancel keeps the old values";
    EXPECT_EQ(m_dlg.m_summaryPlot.m_dYMin, -4.0);

    m_recording.QueueDialog(137, {{Action::Set, 1100, "3"}, {Action::Ok, 0, ""}}, "m");
    m_dlg.OnSummaryXRange();
    EXPECT_EQ(m_recording.opened.back(), "137: 1100=1 ");
    EXPECT_EQ(m_dlg.m_summaryPlot.m_nMultiplier, 3);
}

TEST_F(PlotCommands, BoundsAreTakenAsTypedWithoutRelatingLowerToUpper) {
    m_recording.QueueDialog(1039, {{Action::Set, 1098, "-5"}, {Action::Set, 1099, "0.5"}, {Action::Ok, 0, ""}}, "y");
    m_dlg.OnIterationYRange();
    EXPECT_EQ(m_dlg.m_iterationPlot.m_dYMax, -5.0);
    EXPECT_EQ(m_dlg.m_iterationPlot.m_dYMin, 0.5);
}
