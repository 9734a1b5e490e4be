// The main dialog's own rules: the information list's limit, the keys that must not end the program, and a
// close during a run.
#include <QAccessible>
#include <QLabel>

#include "reference/dialogsample.h"
#include "shell/mainwindow.h"
#include "support/main_dialog.h"

namespace {

class MainWindow : public MainDialogTest {
protected:
    int InfoLines() { return static_cast<int>(m_dlg.GetDlgItem(1015)->SendMessage(LB_GETCOUNT)); }
};

TEST_F(MainWindow, TheLine2001ArrivesInAnEmptiedList) {
    EXPECT_EQ(InfoLines(), 8) << "the welcome lines";
    while (m_dlg.m_nInfoLines < 2000) m_dlg.AppendInfo("line");
    EXPECT_EQ(InfoLines(), 2000);
    m_dlg.AppendInfo("the line after the limit");
    EXPECT_EQ(InfoLines(), 1);
    EXPECT_EQ(m_dlg.Window()->Items(1015).front(), "the line after the limit");
    EXPECT_EQ(m_dlg.Window()->SelectedIndex(1015), 0) << "the newest line is selected";
}

// The list cuts what is wider than itself: a path is told on lines it shows whole, the folder broken behind
// its slashes, and read together they give the path.
TEST_F(MainWindow, AWrittenFileIsToldByItsFullPathOnLinesTheListShowsWhole) {
    const std::string folder = "/home/someone/a rather long folder/of/projects/vantrel-build-with-a-long-name/";
    m_dlg.AppendPathInfo("Result file:", CString(folder + "20261123_31840_result.txt"));
    EXPECT_EQ(ToldPath("Result file:"), folder + "20261123_31840_result.txt");
    const std::vector<std::string> lines = m_dlg.Window()->Items(1015);
    EXPECT_EQ(lines.at(8), "Result file: 20261123_31840_result.txt");
    EXPECT_EQ(lines.at(9).substr(0, 3), "in ");
    EXPECT_GE(lines.size(), 11u) << "a long folder takes more than one line";
    for (const std::string& line : lines) {
        if (line.find('/') == std::string::npos) continue;
        EXPECT_LE(line.size(), 44u) << line;
    }
}

TEST_F(MainWindow, EnterAndEscDoNotEndTheProgramButTheCloseBoxDoes) {
    m_dlg.Window()->Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDOK)});
    m_dlg.Window()->Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDCANCEL)});
    EXPECT_FALSE(m_dlg.IsEnded());
    m_dlg.Window()->Deliver(AfxMessage{WM_CLOSE});
    EXPECT_TRUE(m_dlg.IsEnded());
    EXPECT_EQ(m_dlg.Result(), IDCANCEL);
}

TEST_F(MainWindow, TheUnitCountIsShownButNeverReadBackFromItsReadOnlyEdit) {
    // A run writes edit 1023 after it has grown the network; a Stop's UpdateData must not set the count back
    // to what the window showed a moment earlier.
    m_dlg.m_nUnits = 3;
    m_dlg.UpdateData(FALSE);
    EXPECT_EQ(m_dlg.Window()->Text(1023), "3");
    m_dlg.GetDlgItem(1023)->SetWindowText("2");
    m_dlg.UpdateData(TRUE);
    EXPECT_EQ(m_dlg.m_nUnits, 3u);
}

TEST_F(MainWindow, ACloseDuringARunStopsAndAwaitsTheWorkerBeforeReleasingAnything) {
    MakeSample(m_dlg, CSampleShape{200, 2, 20, 3, 5});
    m_dlg.m_bDataLoaded = true;
    m_dlg.m_bNetworkReady = true;
    m_dlg.m_nAlgorithm = 3;
    m_dlg.m_dlgInitialization.m_nLoadFromFile = 1;  // train the sample network as it stands
    m_dlg.m_nIterations = 100000000;
    m_dlg.m_dDesiredError = 0.0;
    m_dlg.UpdateData(FALSE);
    m_dlg.OnStartTraining();
    ASSERT_EQ(AfxRunningWorkers(), 1);
    m_dlg.Window()->Deliver(AfxMessage{WM_CLOSE});
    EXPECT_EQ(AfxRunningWorkers(), 0) << "the close returned while the worker still ran";
    EXPECT_TRUE(m_dlg.IsEnded());
    EXPECT_EQ(m_dlg.m_pInputs, nullptr);
    EXPECT_EQ(m_dlg.m_pParams, nullptr);
    EXPECT_TRUE(m_printed.empty()) << m_printed.front();
}

}  // namespace

// The rule of hyphens above Load Data is a separator hidden from screen readers, not a label of hyphens.
TEST_F(MainWindow, TheRuleIsAHiddenSeparatorToScreenReaders) {
    QWidget* window = platform::WidgetOf(&m_dlg);
    ASSERT_NE(window, nullptr);
    int rules = 0;
    for (QLabel* label : window->findChildren<QLabel*>()) {
        if (label->text() != QString(76, QLatin1Char('-'))) continue;
        ++rules;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(label);
        ASSERT_NE(accessible, nullptr);
        EXPECT_EQ(accessible->role(), QAccessible::Separator);
        EXPECT_TRUE(accessible->state().invisible);
    }
    EXPECT_EQ(rules, 1);
}
