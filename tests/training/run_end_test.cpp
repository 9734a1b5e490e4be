// How a run's end meets the clicks that follow it: the controls that Start took come back on the window's
// thread, once the worker is done with the arrays, so that no click can find them enabled under a run.
#include <algorithm>
#include <chrono>
#include <limits>
#include <thread>

#include "platform/thread.h"
#include "run_fixture.h"

namespace {

// Waits, without taking in what the worker queued for the window, as long as the run holds m_bTraining or
// for at most ms: a click the window handles before its next pass over the queue meets that state.
void WaitWithoutTheWindow(const CVantrelDlg& dlg, int ms) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (dlg.m_bTraining && AfxRunningWorkers() > 0 && std::chrono::steady_clock::now() < until)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TEST_F(TrainingRun, AStartClickedAsARunEndsNeverFindsInitializationEnabledUnderTheNextRun) {
    LoadSmallProblem();
    m_dlg.m_nAlgorithm = engine::kFirstOrder;
    m_dlg.m_nIterations = 5;
    m_dlg.UpdateData(FALSE);
    m_dlg.OnStartTraining();
    WaitWithoutTheWindow(m_dlg, 500);
    // A long run follows if this click starts one.
    m_dlg.Window()->SetText(1019, "4000000000");
    m_dlg.OnStartTraining();
    const bool initializationEnabled = Enabled(1064);  // takes in all that the first run queued
    EXPECT_FALSE(m_dlg.m_bTraining && initializationEnabled)
        << "Initialization is enabled while a run trains: a click on it would free the network under the worker";
    m_dlg.m_cancel.RequestStop();
    ASSERT_TRUE(platform::PumpUntilWorkersDone(10000));
    EXPECT_FALSE(m_dlg.m_bTraining);
    EXPECT_EQ(Text(1010), "Start Training");
    ExpectEnabled({1009, 1014, 1064, 1055}, true);
}

// A run that ended at NaN leaves "nan" in the read-outs. They are the run's, not settings: the next Start's
// exchange of the edits must read the settings and pass over the read-outs, not refuse them.
TEST_F(TrainingRun, ReadOutsLeftAtNaNAreNotReadBackByTheNextStart) {
    LoadSmallProblem();
    m_dlg.m_pWidths[0] = std::numeric_limits<double>::quiet_NaN();
    m_dlg.m_nAlgorithm = engine::kFirstOrder;
    m_dlg.m_bSaveResults = 1;
    m_dlg.UpdateData(FALSE);
    m_dlg.OnStartTraining();
    ASSERT_TRUE(platform::PumpUntilWorkersDone(10000));
    ASSERT_NE(Text(1025).find("nan"), std::string::npos) << "the run must have ended at NaN";
    ASSERT_NE(Text(1026).find("nan"), std::string::npos);

    m_dlg.Window()->SetText(1047, "3");
    m_dlg.OnStartTraining();
    ASSERT_TRUE(platform::PumpUntilWorkersDone(10000));
    EXPECT_TRUE(Boxes().empty()) << Boxes().front();
    EXPECT_EQ(m_dlg.m_nTrials, 3u) << "the number of trials typed must count";
    std::vector<int> blocks;
    for (const std::string& file : m_folder.Files("_result"))
        blocks.push_back(Count(TempFolder::Read(file), "total iterations"));
    std::sort(blocks.begin(), blocks.end());
    EXPECT_EQ(blocks, (std::vector<int>{1, 3})) << "blocks of the two runs: one trial, then three";
    m_dlg.UpdateData(FALSE);  // as Initialization ends
    EXPECT_EQ(Text(1024), "1") << "the read-outs must keep what the run reached";
    EXPECT_NE(Text(1025).find("nan"), std::string::npos) << Text(1025);
}

TEST_F(TrainingRun, TheInformationListTellsTheFullPathOfTheResultFile) {
    LoadSmallProblem();
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainFirstOrder), 0u);
    ASSERT_EQ(ResultFiles().size(), 1u);
    EXPECT_EQ(ToldPath("Result file:"), ResultFiles()[0]);
}

}  // namespace
