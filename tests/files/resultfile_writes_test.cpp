// Result files on disk where the runs do not reach: a name made again within its second, and a block that
// cannot be written.
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

TEST_F(ResultFileTest, CreatingTheSameNameAgainEmptiesTheFile) {
    CString first, second;
    // Two creations within one second share a name; retry in the rare case that a second boundary fell between.
    for (int attempt = 0; attempt < 3; ++attempt) {
        ASSERT_EQ(m_dlg.CreateResultFile(&first), 1);
        m_dlg.WriteRunResults(&first, 1, 1, 0.1);
        ASSERT_NE(TempFolder::Read(first.str()), "");
        ASSERT_EQ(m_dlg.CreateResultFile(&second), 1);
        if (first == second) break;
    }
    ASSERT_EQ(first, second);
    EXPECT_EQ(TempFolder::Read(second.str()), "");
}

TEST_F(ResultFileTest, ABlockThatCannotBeWrittenIsReportedAndCreatesNothing) {
    CString path = CString(m_folder.Path() + "/missing/block.txt");
    m_dlg.WriteRunResults(&path, 1, 1, 0.1);
    EXPECT_EQ(Boxes(), std::vector<std::string>{Box("Open Result File Failed!")});
    EXPECT_TRUE(m_folder.Files("missing").empty()) << "a failed open must not create the file";
}

}  // namespace
