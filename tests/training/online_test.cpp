// Online training on the hidden main dialog: what the merge leaves in the pattern blocks, and the online run
// that extends the grown network. Messages, refusals and the box's states are in the session transcripts.
#include <string>
#include <vector>

#include "run_fixture.h"

namespace {

class OnlineTraining : public TrainingRun {
protected:
    // Ten patterns of two inputs, grown to two units by a run that ends normally.
    void SetUp() override {
        TrainingRun::SetUp();
        std::vector<std::vector<double>> rows;
        for (int p = 0; p < 10; ++p) rows.push_back({0.1 * p, 1.0 - 0.05 * p, p % 2 ? 1.0 : -1.0});
        LoadPatterns(rows);
        m_dlg.m_nMaxUnits = 2;
        m_dlg.m_nIterations = 3;
        m_dlg.m_dDesiredError = 0.0;
        ASSERT_EQ(Run(TrainByErrorCorrection), 0u);
    }
    // A click on the box; the settings dialog chooses the file with Browse, or keeps its path without one.
    void CheckBox(const std::string& path = "") {
        std::vector<Action> actions{Set(1117, "2")};
        if (!path.empty()) actions.push_back(Click(1114));
        actions.push_back(Ok());
        m_prompts.QueueDialog(IDD_ONLINE_SETTINGS, actions, "");
        if (!path.empty()) m_prompts.QueueFile(path, false, "");
        m_dlg.Window()->ClickControl(1048);
    }
    std::vector<double> Last(const double* block, size_t count, size_t total) const {
        return {block + total - count, block + total};
    }
};

TEST_F(OnlineTraining, NewRowsGoBehindTheOldOnesAtEveryCheckWithOk) {
    const std::vector<double> oldInputs = Last(m_dlg.m_pInputs, 20, 20), oldTargets = Last(m_dlg.m_pTargets, 10, 10);
    m_dlg.m_bClassification = true;
    CheckBox(m_folder.Write("new.txt", "5 6 1\r\n7 8 -1\r\n9 10 1\r\n"));
    ASSERT_EQ(m_dlg.m_nPatterns, 13u);
    EXPECT_EQ(Last(m_dlg.m_pInputs, 20, 20), oldInputs) << "old patterns keep their indices and values";
    EXPECT_EQ(Last(m_dlg.m_pTargets, 10, 10), oldTargets);
    EXPECT_EQ(Last(m_dlg.m_pInputs, 6, 26), (std::vector<double>{5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(Last(m_dlg.m_pTargets, 3, 13), (std::vector<double>{1, -1, 1}));
    EXPECT_EQ(m_dlg.m_dataPlot.m_arrPatternX.GetSize(), 13) << "the merged patterns are drawn at once";
    EXPECT_EQ(m_dlg.m_dataPlot.m_arrGridX.GetSize(), 0) << "over an empty grid";

    m_dlg.Window()->ClickControl(1048);  // off, and on again: the dialog keeps its path
    CheckBox();
    ASSERT_EQ(m_dlg.m_nPatterns, 16u);
    EXPECT_EQ(Last(m_dlg.m_pInputs, 6, 32), (std::vector<double>{5, 6, 7, 8, 9, 10}));
}

// Values fall in reading order and stay inside the merged blocks; an element that no value reaches is 0.
TEST_F(OnlineTraining, RowsOfAnyLengthStayInsideTheMergedBlocks) {
    CheckBox(m_folder.Write("lf.txt", "5 6 1 \n7 8 -1 \n"));  // a bare LF costs each row its last byte, a blank
    EXPECT_EQ(Last(m_dlg.m_pInputs, 4, 24), (std::vector<double>{5, 6, 7, 8}));
    EXPECT_EQ(Last(m_dlg.m_pTargets, 2, 12), (std::vector<double>{1, -1}));
    m_dlg.Window()->ClickControl(1048);
    CheckBox(m_folder.Write("short.txt", "1 2 3\r\n4 5\r\n"));
    EXPECT_EQ(Last(m_dlg.m_pInputs, 4, 28), (std::vector<double>{1, 2, 4, 5}));
    EXPECT_EQ(Last(m_dlg.m_pTargets, 2, 14), (std::vector<double>{3, 0}));
    m_dlg.Window()->ClickControl(1048);
    CheckBox(m_folder.Write("long.txt", "1 2 3\r\n4 5 6 7 8 9\r\n"));
    ASSERT_EQ(m_dlg.m_nPatterns, 16u);
    EXPECT_EQ(Last(m_dlg.m_pTargets, 2, 16), (std::vector<double>{3, 6})) << "values beyond the blocks are dropped";
}

// With no new file the run extends the network on the old patterns: it keeps every trained unit as it was,
// and adds one even with an error already below the goal.
TEST_F(OnlineTraining, RunKeepsTheTrainedUnitsAndAddsAtLeastOne) {
    const std::vector<double> widths = Last(m_dlg.m_pWidths, 2, 2), centers = Last(m_dlg.m_pCenters, 4, 4);
    const std::vector<double> outputWeights = Last(m_dlg.m_pOutputWeights, 3, 3);
    CheckBox();
    m_dlg.m_nIterations = 0;
    m_dlg.m_dDesiredError = 1e9;
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainByErrorCorrection), 0u);
    ASSERT_EQ(m_dlg.m_nUnits, 3u);
    EXPECT_EQ(Last(m_dlg.m_pWidths, 2, 2), widths);
    EXPECT_EQ(Last(m_dlg.m_pCenters, 4, 4), centers);
    EXPECT_EQ(Last(m_dlg.m_pOutputWeights, 3, 3), outputWeights);
    EXPECT_EQ(Count(ResultText(), "number of RBF units: 3\r\n"), 1);
    EXPECT_EQ(m_dlg.m_bOnline, 0);
}

// After a stopped online run the box stays checked and Load Data is open again: the run must not train the
// old network on a data set of another shape.
TEST_F(OnlineTraining, RunRefusesANetworkOfAnotherDataSet) {
    CheckBox();
    LoadPatterns({{0.5, 1.0}, {1.5, -1.0}, {2.5, 1.0}});
    EXPECT_EQ(Run(TrainByErrorCorrection), 1u);
    EXPECT_EQ(Boxes().back(), Box("The RBF network was trained on another data set: train it on this one with the "
                                  "Error Correction Algorithm before Online Training."));
    EXPECT_EQ(m_dlg.m_nUnits, 2u);
    EXPECT_EQ(Text(1010), "Start Training");
}

}  // namespace
