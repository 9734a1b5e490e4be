// Result files on disk where the runs do not reach: a name made again within its second, and a block that
// cannot be written.
#include <sys/resource.h>

#include "files/initialization.h"
#include "files/resultfiles.h"
#include "support/main_dialog.h"

namespace {

class ResultFileTest : public MainDialogTest {
protected:
    void SetUp() override {
        MainDialogTest::SetUp();
        m_dlg.m_nInputs = 1;
        ReplaceNetworkArrays(m_dlg, 1);
    }
};

TEST_F(ResultFileTest, ASecondFileInTheSameSecondWaitsForAFreeNameAndReplacesNothing) {
    CString first, second;
    ASSERT_EQ(m_dlg.CreateResultFile(&first), 1);
    m_dlg.WriteRunResults(&first, 1, 1, 0.1);
    const std::string written = TempFolder::Read(first.str());
    ASSERT_NE(written, "");
    ASSERT_EQ(m_dlg.CreateResultFile(&second), 1);
    EXPECT_NE(first, second) << "the second file took the first one's name";
    EXPECT_EQ(TempFolder::Read(first.str()), written) << "the first run's results are gone";
    EXPECT_EQ(second.Right(11), "_result.txt");
}

TEST_F(ResultFileTest, AFullFileSystemShowsTheFileAndTheCauseAndEndsTheWriting) {
    CString path;
    ASSERT_EQ(m_dlg.CreateResultFile(&path), 1);
    // A file-size limit stands in for a full disk: the block is larger than what the file may hold.
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit small = old;
    small.rlim_cur = 100;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const CString written = path;
    m_dlg.WriteRunResults(&path, 1, 1, 0.1);
    m_dlg.WriteRunResults(&path, 1, 2, 0.1);
    setrlimit(RLIMIT_FSIZE, &old);
    const std::string box = "box Error [stop]: Cannot write " + written.str() + ": File too large.\n" +
                            "Nothing more is written to this file.";
    EXPECT_EQ(Boxes(), std::vector<std::string>{box}) << "one box, naming the file and the cause";
    EXPECT_TRUE(path.IsEmpty()) << "the run must stop writing to an incomplete file";
    EXPECT_LE(TempFolder::Read(written.str()).size(), 100u);
}

TEST_F(ResultFileTest, ABlockThatCannotBeWrittenIsReportedAndCreatesNothing) {
    CString path = CString(m_folder.Path() + "/missing/block.txt");
    m_dlg.WriteRunResults(&path, 1, 1, 0.1);
    EXPECT_EQ(Boxes(), std::vector<std::string>{Box("Open Result File Failed!")});
    EXPECT_TRUE(m_folder.Files("missing").empty()) << "a failed open must not create the file";
}

}  // namespace
