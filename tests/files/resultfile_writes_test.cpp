// Result and output files on disk where the runs do not reach: a name made again within its second, a block
// that cannot be written, and appends with a seek to the end.
#include <ctime>
#include <fstream>

#include <sys/resource.h>

#include "files/resultfiles.h"
#include "platform/files.h"
#include "shell/initialization.h"
#include "support/main_dialog.h"

namespace {

class ResultFileTest : public MainDialogTest {
protected:
    void SetUp() override {
        MainDialogTest::SetUp();
        // A loaded data set has one output: the output weights are the bias and one per unit.
        m_dlg.m_nInputs = 1;
        m_dlg.m_nOutputs = 1;
        ReplaceNetworkArrays(m_dlg, 1);
    }
};

// The name is the run's start to the second and nothing more: a run that starts on the name of an earlier
// file empties it, right away and without waiting for another name.
TEST_F(ResultFileTest, ARunStartedOnTheNameOfAnEarlierFileEmptiesIt) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        CString first, second;
        const std::time_t start = std::time(nullptr);
        ASSERT_EQ(m_dlg.CreateResultFile(&first), 1);
        m_dlg.WriteRunResults(&first, 1, 1, 0.1);
        ASSERT_NE(TempFolder::Read(first.str()), "");
        ASSERT_EQ(m_dlg.CreateResultFile(&second), 1);
        if (std::time(nullptr) != start) continue;  // the second ticked over between the two: try again
        EXPECT_EQ(second, first) << "a run in the same second got another name";
        EXPECT_EQ(TempFolder::Read(first.str()), "") << "the file of the same name was not emptied";
        return;
    }
    FAIL() << "no two runs started within one second";
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

TEST(FileWrites, SeekToEndWritesReachTheFileInOrder) {
    const TempFolder folder;
    const std::string path = folder.Path() + "/appends.txt";
    CFile file;
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeCreate));
    std::string expected;
    for (int k = 0; k < 3000; ++k) {
        EXPECT_EQ(file.Seek(0, CFile::end), static_cast<long long>(expected.size())) << "writes not yet stored count";
        file.Write("abc", 3);
        expected += "abc";
    }
    file.Seek(0, CFile::begin);
    file.Write("A", 1);  // a write elsewhere, then the end again
    expected[0] = 'A';
    EXPECT_EQ(file.Seek(0, CFile::end), static_cast<long long>(expected.size()));
    file.Write("!", 1);
    file.Close();
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), expected + "!");
}
