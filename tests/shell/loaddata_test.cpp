// Load Data as a user meets it: the file dialog, the Data Set Information dialog, the messages and the state
// that each outcome leaves.
#include <sys/stat.h>

#include "files/datafile.h"
#include "support/main_dialog.h"

namespace {

using LoadDataTest = MainDialogTest;

}  // namespace

TEST_F(LoadDataTest, SampleOneDimensionalSetLoadsAsApproximation) {
    m_dlg.m_bNetworkReady = true;
    LoadData(SampleData("sin1d.txt"));
    EXPECT_TRUE(m_dlg.m_bDataLoaded);
    EXPECT_FALSE(m_dlg.m_bNetworkReady) << "a new data set invalidates the network";
    EXPECT_EQ(m_dlg.m_nPatterns, 50u);
    EXPECT_EQ(m_dlg.m_nInputs, 1u);
    EXPECT_EQ(m_dlg.m_nOutputs, 1u);
    EXPECT_FALSE(m_dlg.m_bClassification) << "one input is never a classification set";
    EXPECT_EQ(m_dlg.m_strDataTitle, "sin1d");
    EXPECT_EQ(m_dlg.m_strDataPath, SampleData("sin1d.txt").c_str());
    EXPECT_EQ(m_dlg.m_pInputs[1], 0.1282);
    EXPECT_EQ(m_dlg.m_pTargets[1], 0.127877);
    EXPECT_EQ(m_dlg.m_dlgDataSetInfo.m_nPatterns, 50u) << "the dialog shows the counts";
    EXPECT_TRUE(m_prompts.Boxes().empty());
}

TEST_F(LoadDataTest, TwoInputClassificationSetFeedsTheDataPlot) {
    m_dlg.m_dataPlot.SetGrid({1, 2}, {1, 2}, {0, 1});  // the grid of an earlier run
    LoadData(SampleData("twomoons.txt"));
    ASSERT_TRUE(m_dlg.m_bDataLoaded);
    EXPECT_TRUE(m_dlg.m_bClassification);
    const CDataPlot& plot = m_dlg.m_dataPlot;
    ASSERT_EQ(plot.m_arrPatternX.GetSize(), 100);
    EXPECT_EQ(plot.m_arrPatternY.GetSize(), 100);
    EXPECT_EQ(plot.m_arrPatternClass.GetSize(), 100);
    EXPECT_EQ(plot.m_arrGridX.GetSize(), 0) << "the grid waits for a run";
    for (int p = 0; p < 100; ++p) {
        EXPECT_EQ(plot.m_arrPatternX.GetAt(p), m_dlg.m_pInputs[2 * p]);
        EXPECT_EQ(plot.m_arrPatternY.GetAt(p), m_dlg.m_pInputs[2 * p + 1]);
        EXPECT_EQ(plot.m_arrPatternClass.GetAt(p), m_dlg.m_pTargets[p]);
    }
}

TEST_F(LoadDataTest, ApproximationChoiceIsKeptForTheNextLoad) {
    LoadData(SampleData("twomoons.txt"), {Click(1044), Ok()});
    EXPECT_FALSE(m_dlg.m_bClassification);
    EXPECT_EQ(m_dlg.m_dlgDataSetInfo.m_nDataSetType, 1);
    LoadData(SampleData("surface2d.txt"));
    EXPECT_FALSE(m_dlg.m_bClassification) << "the radio comes up as last left";
    LoadData(SampleData("surface2d.txt"), {Click(1043)});  // closed without OK
    EXPECT_TRUE(m_dlg.m_bClassification) << "a radio click counts at once, however the dialog ends";
    EXPECT_TRUE(m_dlg.m_bDataLoaded);
}

TEST_F(LoadDataTest, FourColumnsAreNeverClassification) {
    LoadData(m_folder.Write("four.txt", "1 2 3 1\r\n4 5 6 -1\r\n"));
    ASSERT_TRUE(m_dlg.m_bDataLoaded);
    EXPECT_EQ(m_dlg.m_nInputs, 3u);
    EXPECT_FALSE(m_dlg.m_bClassification);
}

TEST_F(LoadDataTest, CancelledFileDialogLeavesNoDataSet) {
    LoadData(SampleData("sin1d.txt"));
    double* oldInputs = m_dlg.m_pInputs;
    m_prompts.QueueFile("", true, "cancel");
    m_dlg.OnLoadData();
    EXPECT_FALSE(m_dlg.m_bDataLoaded);
    EXPECT_FALSE(m_dlg.m_bNetworkReady);
    EXPECT_EQ(m_dlg.m_nPatterns, 0u);
    EXPECT_EQ(m_dlg.m_nInputs, 0u);
    EXPECT_EQ(m_dlg.m_nOutputs, 0u);
    EXPECT_EQ(m_dlg.m_pInputs, oldInputs) << "the old arrays stay allocated";
    EXPECT_TRUE(m_prompts.Boxes().empty());
}

TEST_F(LoadDataTest, MissingFileIsReportedAndNothingLoads) {
    const std::string path = m_folder.Path() + "/no_such_file.txt";
    m_prompts.QueueFile(path, false, "missing");
    m_dlg.OnLoadData();
    EXPECT_EQ(m_prompts.Boxes(), std::vector<std::string>{Box("Sorry, Cannot Open File!")});
    EXPECT_FALSE(m_dlg.m_bDataLoaded);
    EXPECT_EQ(m_dlg.m_strDataTitle, "no_such_file");
}

TEST_F(LoadDataTest, NamedPipeIsRefusedAtOnceAsAFileThatCannotBeOpened) {
    // Nobody writes into the pipe: an open that waited for a writer would hang the test.
    const std::string path = m_folder.Path() + "/pipe";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    m_prompts.QueueFile(path, false, "pipe");
    m_dlg.OnLoadData();
    EXPECT_EQ(m_prompts.Boxes(), std::vector<std::string>{Box("Sorry, Cannot Open File!")});
    EXPECT_FALSE(m_dlg.m_bDataLoaded);
}

TEST_F(LoadDataTest, IncompleteFileIsRefusedWithTheNewCounts) {
    LoadData(m_folder.Write("short.txt", "1 2 3\r\n4 5\r\n"));
    EXPECT_EQ(m_prompts.Boxes(), std::vector<std::string>{Box("Data file is incompleted!")});
    EXPECT_FALSE(m_dlg.m_bDataLoaded);
    EXPECT_EQ(m_dlg.m_nPatterns, 2u);
    EXPECT_EQ(m_dlg.m_nInputs, 2u);
}

TEST_F(LoadDataTest, OneColumnFileIsRefusedEvenWhenTheDialogIsClosedWithoutOk) {
    LoadData(m_folder.Write("one.txt", "1\r\n2\r\n"), {Ok()});
    // OK is refused with the message and the dialog stays open; closing it goes on with the load, which
    // then refuses a set that has nothing to train on.
    EXPECT_EQ(m_prompts.Boxes(), (std::vector<std::string>{Box("Number of Inputs Should Be Larger Than Zero"),
                                                         Box("Number of Inputs Should Be Larger Than Zero")}));
    EXPECT_FALSE(m_dlg.m_bDataLoaded);
    EXPECT_EQ(m_dlg.m_nInputs, 0u);
}

TEST_F(LoadDataTest, FileWithoutPatternsIsRefused) {
    LoadData(m_folder.Write("empty.txt", "Inputs Outputs\r\n\r\n"), {});
    EXPECT_EQ(m_prompts.Boxes(), std::vector<std::string>{Box("Data file holds no patterns!")});
    EXPECT_FALSE(m_dlg.m_bDataLoaded);
    EXPECT_EQ(m_dlg.m_nPatterns, 0u);
    EXPECT_EQ(m_dlg.m_nOutputs, 1u);
}

// A file with bare LF line ends reads as it always has (each line a character short), but the information list
// says why before the Data Set Information dialog opens, and how to mend the file; a CR LF file gets no notice.
TEST_F(LoadDataTest, LineFeedEndsAreToldInTheInformationListWithTheirConversion) {
    const auto lines = [this] { return m_dlg.Window()->Items(1015); };
    LoadData(m_folder.Write("crlf.txt", "0 1.5\r\n1 2.5\r\n"));
    const size_t before = lines().size();
    LoadData(m_folder.Write("my data.txt", "0 1.5\n1 2.5\n"));
    ASSERT_TRUE(m_dlg.m_bDataLoaded);
    EXPECT_EQ(m_dlg.m_pTargets[0], 1.0) << "the values read stay as the scanner reads them";
    const std::vector<std::string> all = lines();
    const std::vector<std::string> notice(all.begin() + static_cast<long>(before), all.end());
    ASSERT_EQ(notice.size(), 6u) << "the CR LF file must get no notice, the LF file one";
    EXPECT_EQ(notice.front(), "The lines of my data.txt end in LF,");
    EXPECT_EQ(notice.back(), "sed -i 's/\\r*$/\\r/' 'my data.txt'");
}

TEST(LineFeedNotice, OnlyBareLineFeedsCountAndTheNameIsQuotedWhereTheShellNeedsIt) {
    EXPECT_FALSE(HasBareLineFeeds("1 2\r\n3 4\r\n"));
    EXPECT_FALSE(HasBareLineFeeds("1 2 3"));
    EXPECT_TRUE(HasBareLineFeeds("1 2\r\n3 4\n"));
    EXPECT_TRUE(HasBareLineFeeds("\n"));
    EXPECT_EQ(CrLfConversion("sin1d_lf.txt"), "sed -i 's/\\r*$/\\r/' sin1d_lf.txt");
    EXPECT_EQ(CrLfConversion("it's.txt"), "sed -i 's/\\r*$/\\r/' 'it'\\''s.txt'");
}
