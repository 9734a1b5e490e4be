// Result files on disk: where they lie, how blocks follow one another, and the messages when a file fails.
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "files/initialization.h"
#include "files/resultfiles.h"
#include "platform/files.h"
#include "tests/files/workspace_fixture.h"

namespace {

class ResultFileTest : public WorkspaceTest {
protected:
    ResultFileTest() {
        m_dir = ::testing::TempDir() + "results_" + std::to_string(::getpid());
        ::mkdir(m_dir.c_str(), 0755);
        AfxSetModuleDirectory(CString(m_dir));
        dlg.m_nInputs = 1;
        dlg.m_nOutputs = 1;
        ReplaceNetworkArrays(dlg, 1);
        const double values[] = {2, 0.5, 1.5, 3, 4};  // V, W0, W1, C, S
        dlg.m_pInitInputWeights[0] = dlg.m_pInputWeights[0] = values[0];
        dlg.m_pInitOutputWeights[0] = dlg.m_pOutputWeights[0] = values[1];
        dlg.m_pInitOutputWeights[1] = dlg.m_pOutputWeights[1] = values[2];
        dlg.m_pInitCenters[0] = dlg.m_pCenters[0] = values[3];
        dlg.m_pInitWidths[0] = dlg.m_pWidths[0] = values[4];
    }
    ~ResultFileTest() override { AfxSetModuleDirectory(CString()); }

    static std::string Contents(const CString& path) {
        std::ifstream in(path.str(), std::ios::binary);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }

    std::string ExpectedRunBlock(UINT iterations, double error) {
        const CResultSection initial{dlg.m_pInitInputWeights, dlg.m_pInitOutputWeights, dlg.m_pInitCenters,
                                     dlg.m_pInitWidths};
        const CResultSection trained{dlg.m_pInputWeights, dlg.m_pOutputWeights, dlg.m_pCenters, dlg.m_pWidths};
        std::string text;
        for (const std::string& w : ResultBlock(1, 1, iterations, error, &initial, trained)) text += w;
        return text;
    }

    std::string m_dir;
};

}  // namespace

TEST_F(ResultFileTest, CreatedEmptyBesideTheExecutableUnderATimestampedName) {
    CString path;
    ASSERT_EQ(dlg.CreateResultFile(&path), 1);
    EXPECT_EQ(path.Left(static_cast<int>(m_dir.size()) + 1), (m_dir + "/").c_str());
    EXPECT_EQ(path.Right(11), "_result.txt");
    EXPECT_EQ(Contents(path), "");
}

TEST_F(ResultFileTest, BlocksFollowOneAnotherWithTwoEmptyLinesBetween) {
    CString path;
    ASSERT_EQ(dlg.CreateResultFile(&path), 1);
    dlg.WriteRunResults(&path, 1, 7, 0.25);
    const std::string first = ExpectedRunBlock(7, 0.25);
    dlg.m_pWidths[0] = 9;  // the trained network changes, its initial copy does not
    dlg.WriteRunResults(&path, 1, 8, 0.125);
    const std::string second = ExpectedRunBlock(8, 0.125);
    EXPECT_EQ(Contents(path), first + second);
    EXPECT_NE(second.find("Width:\r\n4.000000\r\n"), std::string::npos) << "initial width stays in the block";
    EXPECT_NE(second.find("Width:\r\n9.000000\r\n"), std::string::npos) << "trained width in the block";
    EXPECT_EQ(Contents(path).substr(first.size() - 55, 55 + 49),
              "/////////////////////////////////////////////////\r\n\r\n\r\n/////////////////////////////////////////////////");
}

TEST_F(ResultFileTest, ErrorCorrectionBlocksHaveNoInitialConditions) {
    CString path;
    ASSERT_EQ(dlg.CreateResultFile(&path), 1);
    dlg.WriteErrCorResults(&path, 1, 3, 0.5);
    const std::string text = Contents(path);
    EXPECT_EQ(text.find("Initial Conditions"), std::string::npos);
    EXPECT_NE(text.find("number of RBF units: 1\r\n///////////////////////////\r\nTraining Results\r\n"),
              std::string::npos);
}

TEST_F(ResultFileTest, CreatingTheSameNameAgainEmptiesTheFile) {
    CString first, second;
    // Two creations within one second share a name; retry in the rare case that a second boundary fell between.
    for (int attempt = 0; attempt < 3; ++attempt) {
        ASSERT_EQ(dlg.CreateResultFile(&first), 1);
        dlg.WriteRunResults(&first, 1, 1, 0.1);
        ASSERT_EQ(dlg.CreateResultFile(&second), 1);
        if (first == second) break;
    }
    ASSERT_EQ(first, second);
    EXPECT_EQ(Contents(second), "");
}

TEST_F(ResultFileTest, FailuresAreReportedAndTheRunMayGoOn) {
    CString path = CString(m_dir + "/missing/block.txt");
    dlg.WriteRunResults(&path, 1, 1, 0.1);
    EXPECT_EQ(prompts.Boxes(), std::vector<std::string>{Box("Open Result File Failed!")});
    EXPECT_EQ(Contents(path), "") << "a failed open must not create the file";

    AfxSetModuleDirectory(CString(m_dir + "/no/such/dir"));
    CString created;
    EXPECT_EQ(dlg.CreateResultFile(&created), 0);
    EXPECT_EQ(prompts.Boxes().back(), Box("Create Result File Failed!"));
}
