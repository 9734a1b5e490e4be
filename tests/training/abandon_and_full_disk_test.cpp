// A close during a long iteration, and a result file that the disk can't take.
#include <sys/resource.h>

#include <sstream>

#include "support/tempfolder.h"
#include "run_fixture.h"

// One iteration of this network takes minutes (a quasi-Hessian of 4000 parameters over 100,000 patterns); the
// session is killed after 40 s. It ends in time only when the close abandons the iteration under way.
TEST(SessionClose, ClosingDuringTheFirstIterationOfAHugeNetworkAnswersAtOnceAndWritesNothing) {
    TempFolder folder;
    std::ostringstream data;
    for (int p = 0; p < 100000; ++p) data << p * 1e-5 << ' ' << (p % 7) * 0.1 << "\r\n";
    const std::string path = folder.Write("many.txt", data.str());
    const SessionOutput session = RunScript(
        folder,
        "file " + path + "\ndialog 129 click 1044 ok\nclick 1009\nselect 1014 0\n"
        "dialog 130 set 1096 1333 click 1088 ok\nclick 1064\nclick 1055\nclick 1010\nsleep 3000\ntext 1024\nclose\n",
        40);
    std::string transcript;
    for (const std::string& line : session.out) transcript += "    " + line + "\n";
    ASSERT_EQ(session.exitCode, 0) << "the close waited for the iteration:\n" << transcript;
    EXPECT_NE(transcript.find("text 1024: 0\n"), std::string::npos) << "the first iteration had ended";
    EXPECT_EQ(transcript.find("box "), std::string::npos) << transcript;
    const std::vector<std::string> files = folder.Files("_result.txt");
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(TempFolder::Read(files[0]), "") << "the abandoned trial wrote a block";
}

TEST_F(TrainingRun, AResultFileTheDiskCantTakeIsReportedOnceAndTheRunGoesOnWhole) {
    LoadSmallProblem();
    m_dlg.m_nTrials = 3;
    m_dlg.m_nIterations = 5;
    m_dlg.m_bSaveResults = 1;
    // A file-size limit stands in for a full disk: the first block is larger than what the file may hold.
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit small = old;
    small.rlim_cur = 200;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const UINT result = Run(TrainFirstOrder);
    setrlimit(RLIMIT_FSIZE, &old);

    EXPECT_EQ(result, 0u) << "the run ends normally";
    const std::vector<std::string> files = ResultFiles();
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(Boxes(), std::vector<std::string>{"box Error [stop]: Cannot write " + files[0] +
                                                ": File too large.\nNothing more is written to this file."});
    EXPECT_EQ(Curve(m_dlg.m_summaryPlot.m_arrY).size(), 3u) << "every trial is trained and shown";
    EXPECT_NE(Text(1026), "") << "the read-outs stay";
    EXPECT_EQ(Text(1010), "Start Training");
    ExpectEnabled({1009, 1014, 1064, 1055, 1038}, true);
}
