// How a run's end meets the clicks that follow it: the controls that Start took come back on the window's
// thread, once the worker is done with the arrays, so that no click can find them enabled under a run.
#include <chrono>
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

}  // namespace
