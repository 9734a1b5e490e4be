// Verification: the rows of each pattern set, the two files a press leaves, and every way a press ends early.
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>

#include "files/initialization.h"
#include "files/verification.h"
#include "platform/files.h"
#include "tests/files/workspace_fixture.h"

namespace {

class VerificationTest : public WorkspaceTest {
protected:
    VerificationTest() {
        m_dir = ::testing::TempDir() + "verify_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(m_dir);
        AfxSetModuleDirectory(CString(m_dir));
    }
    ~VerificationTest() override {
        AfxSetModuleDirectory(CString());
        std::filesystem::remove_all(m_dir);
    }

    // A data set of that many inputs, with the patterns given row by row (inputs, then desired output).
    void Patterns(UINT inputs, std::vector<double> patterns = {}) {
        dlg.m_nInputs = inputs;
        dlg.m_nOutputs = 1;
        dlg.m_nPatterns = static_cast<UINT>(patterns.size() / (inputs + 1));
        delete[] dlg.m_pInputs;
        delete[] dlg.m_pTargets;
        dlg.m_pInputs = new double[dlg.m_nPatterns * inputs];
        dlg.m_pTargets = new double[dlg.m_nPatterns];
        for (UINT p = 0; p < dlg.m_nPatterns; ++p) {
            for (UINT i = 0; i < inputs; ++i) dlg.m_pInputs[p * inputs + i] = patterns[p * (inputs + 1) + i];
            dlg.m_pTargets[p] = patterns[p * (inputs + 1) + inputs];
        }
    }

    // A network on the current inputs whose units all have input weights 2, centers 3, widths 4 and output
    // weight 1.5: with one unit and one input y = bias + 1.5 exp(-(2 x - 3)^2 / 4).
    void Network(UINT units, double bias) {
        ASSERT_TRUE(ReplaceNetworkArrays(dlg, units));
        dlg.m_pOutputWeights[0] = bias;
        for (UINT h = 0; h < units; ++h) {
            dlg.m_pOutputWeights[h + 1] = 1.5;
            dlg.m_pWidths[h] = 4.0;
            for (UINT i = 0; i < dlg.m_nInputs; ++i) {
                dlg.m_pInputWeights[h * dlg.m_nInputs + i] = 2.0;
                dlg.m_pCenters[h * dlg.m_nInputs + i] = 3.0;
            }
        }
    }

    void EmptyDirectory() {
        std::filesystem::remove_all(m_dir);
        std::filesystem::create_directories(m_dir);
        transcript.clear();
    }

    static std::string Contents(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }

    // The files of the directory, by name, with their contents.
    std::map<std::string, std::string> Files() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_dir))
            files[entry.path().filename().string()] = Contents(entry.path().string());
        return files;
    }

    // The rows of the press that just ran: both files must hold the same bytes, and the stamped one was opened.
    std::string PressedRows() {
        const auto files = Files();
        EXPECT_EQ(files.size(), 2u);
        if (files.size() != 2 || transcript.empty()) return "<no output>";
        const auto stamped = files.begin()->first == "output.txt" ? std::next(files.begin()) : files.begin();
        EXPECT_EQ(stamped->second, files.at("output.txt")) << "both files hold the same rows";
        EXPECT_EQ(transcript.back(), "opened " + m_dir + "/" + stamped->first);
        return stamped->second;
    }

    // After presses that ended early: "output.txt" and a stamped file for each exist, all empty, and nothing
    // was opened.
    void ExpectEndedEarly(std::vector<std::string> boxes) {
        const auto files = Files();
        EXPECT_TRUE(files.count("output.txt") == 1 && files.size() >= 2) << "both files come before any refusal";
        for (const auto& [name, text] : files) EXPECT_EQ(text, "") << name;
        EXPECT_EQ(prompts.Boxes(), boxes);
        for (const std::string& line : transcript) EXPECT_NE(line.rfind("opened ", 0), 0u) << line;
    }

    void Grid1D(const char* min, const char* max, const char* points) {
        dlg.m_nGeneralization = 2;
        prompts.QueueDialog(CTest1DDlg::IDD,
                            {Set(IDC_1D_MINIMUM_VALUE, min), Set(IDC_1D_MAXIMUM_VALUE, max),
                             Set(IDC_1D_NUMBER_OF_POINTS, points), Ok()},
                            "1-D");
        dlg.OnVerification();
    }

    std::string m_dir;
};

const char* kDataFileFailed = "box Error [exclamation]: Data file opening failed";

}  // namespace

TEST_F(VerificationTest, GeneratedGridsRunFromMinimumToMaximumWithYAndItsNegative) {
    Patterns(1);
    Network(0, 1.0);
    Grid1D("0", "1", "3");
    EXPECT_EQ(PressedRows(),
              "0.000000\t0.000000\t1.000000\t-1.000000\t\r\n"
              "0.500000\t0.000000\t1.000000\t-1.000000\t\r\n"
              "1.000000\t0.000000\t1.000000\t-1.000000\t\r\n")
        << "a network of no units answers its bias everywhere";

    EmptyDirectory();
    Patterns(2);
    Network(0, 0.25);
    dlg.m_nGeneralization = 3;
    prompts.QueueDialog(CTest2DDlg::IDD,
                        {Set(IDC_X_MINIMUM_VALUE, "0"), Set(IDC_X_MAXIMUM_VALUE, "1"), Set(IDC_X_NUMBER_OF_POINTS, "2"),
                         Set(IDC_Y_MINIMUM_VALUE, "-1"), Set(IDC_Y_MAXIMUM_VALUE, "1"),
                         Set(IDC_Y_NUMBER_OF_POINTS, "3"), Ok()},
                        "2-D");
    dlg.OnVerification();
    const std::string y = "0.000000\t0.250000\t-0.250000\t\r\n";
    EXPECT_EQ(PressedRows(), "0.000000\t-1.000000\t" + y + "0.000000\t0.000000\t" + y + "0.000000\t1.000000\t" + y +
                                 "1.000000\t-1.000000\t" + y + "1.000000\t0.000000\t" + y + "1.000000\t1.000000\t" + y)
        << "x changes slowest";
}

TEST_F(VerificationTest, AxisOfOnePointIsItsMinimum) {
    EXPECT_EQ((CGridAxis{-2.0, 5.0, 1}.At(0)), -2.0);
    const CPatternSet grid(CGridAxis{-2.0, 5.0, 1}, CGridAxis{0.0, 1.0, 2});
    double x[2];
    ASSERT_EQ(grid.Count(), 2u);
    grid.Pattern(1, x);
    EXPECT_EQ(x[0], -2.0);
    EXPECT_EQ(x[1], 1.0);
}

TEST_F(VerificationTest, TrainingPatternsGiveOneRowEachInTheirOrder) {
    Patterns(1, {1.5, 2.0, 0.5, -1.0});
    Network(1, 0.5);
    dlg.m_nGeneralization = 0;
    dlg.OnVerification();
    // y(1.5) = 0.5 + 1.5 exp(0) = 2; y(0.5) = 0.5 + 1.5 exp(-1) = 1.051819...
    EXPECT_EQ(PressedRows(),
              "1.500000\t2.000000\t2.000000\t0.000000\t\r\n"
              "0.500000\t-1.000000\t1.051819\t-2.051819\t\r\n");
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(VerificationTest, TestingRowsOfOtherLengthsStayInsideTheirBlocks) {
    Patterns(1);
    Network(0, 1.0);
    dlg.m_nGeneralization = 1;
    // A short second row leaves the last desired output unreached: it reads 0.
    prompts.QueueFile(TempFile("short.txt", "1 2\r\n3\r\n"), false, "short");
    dlg.OnVerification();
    const std::string first = "1.000000\t2.000000\t1.000000\t1.000000\t\r\n";
    EXPECT_EQ(PressedRows(), first + "3.000000\t0.000000\t1.000000\t-1.000000\t\r\n");

    EmptyDirectory();
    // A long second row fills the blocks in reading order; what finds no room is dropped.
    prompts.QueueFile(TempFile("long.txt", "1 2\r\n3 4 5 6\r\n"), false, "long");
    dlg.OnVerification();
    EXPECT_EQ(PressedRows(), first + "3.000000\t4.000000\t1.000000\t3.000000\t\r\n");
}

TEST_F(VerificationTest, TwoPressesInDifferentSecondsLeaveTwoStampedFiles) {
    Patterns(1, {0.0, 0.0});
    Network(0, 1.0);
    dlg.OnVerification();
    const std::time_t first = std::time(nullptr);
    while (std::time(nullptr) == first) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    dlg.m_pOutputWeights[0] = 3.0;
    dlg.OnVerification();
    const auto files = Files();
    ASSERT_EQ(files.size(), 3u);
    const std::string second = "0.000000\t0.000000\t3.000000\t-3.000000\t\r\n";
    EXPECT_EQ(files.at("output.txt"), second) << "output.txt holds the second press's rows";
    int stampedWithSecond = 0;
    for (const auto& [name, text] : files) stampedWithSecond += name != "output.txt" && text == second;
    EXPECT_EQ(stampedWithSecond, 1);
}

TEST_F(VerificationTest, EachRefusalLeavesBothFilesEmptyAndOpensNothing) {
    Patterns(1, {0.0, 0.0});
    Network(0, 1.0);
    std::ofstream(m_dir + "/output.txt") << "rows of an earlier press";
    dlg.m_nGeneralization = 3;
    dlg.OnVerification();
    ExpectEndedEarly({Box("This Testing is only for 2-D inputs")});

    Patterns(2, {0.0, 0.0, 0.0});
    dlg.m_nGeneralization = 2;
    dlg.OnVerification();
    EXPECT_EQ(prompts.Boxes().back(), Box("This Testing is only for 1-D inputs"));

    dlg.m_nGeneralization = 1;
    prompts.QueueFile("", true, "cancel");
    dlg.OnVerification();
    prompts.QueueFile(m_dir + "/missing.txt", false, "missing");
    dlg.OnVerification();
    EXPECT_EQ(prompts.Boxes().back(), kDataFileFailed);
    prompts.QueueFile(TempFile("wide.txt", "1 2 3 4\r\n"), false, "wide");
    dlg.OnVerification();
    EXPECT_EQ(prompts.Boxes().back(), Box("Training Data does not match the testing data!"));
    dlg.m_nGeneralization = 3;
    prompts.QueueDialog(CTest2DDlg::IDD, {Cancel()}, "cancel 2-D");
    dlg.OnVerification();
    ExpectEndedEarly({Box("This Testing is only for 2-D inputs"), Box("This Testing is only for 1-D inputs"),
                      kDataFileFailed, Box("Training Data does not match the testing data!")});
}

TEST_F(VerificationTest, FilesThatCannotBeCreatedEndThePressWithTwoMessages) {
    Patterns(1, {0.0, 0.0});
    Network(0, 1.0);
    std::filesystem::create_directory(m_dir + "/output.txt");  // a name taken by a directory
    dlg.OnVerification();
    const auto files = Files();
    EXPECT_EQ(files.size(), 2u) << "the stamped file stays, empty";
    EXPECT_EQ(prompts.Boxes(), (std::vector<std::string>{Box("Create Result File Failed (output.txt)!"),
                                                          Box("Create File Failed!")}));

    AfxSetModuleDirectory(CString(m_dir + "/missing"));
    dlg.OnVerification();
    EXPECT_FALSE(std::filesystem::exists(m_dir + "/missing"));
    EXPECT_EQ(prompts.Boxes().size(), 4u);
    EXPECT_EQ(prompts.Boxes()[2], Box("Create Result File Failed!"));
    EXPECT_EQ(prompts.Boxes()[3], Box("Create File Failed!"));
    for (const std::string& line : transcript) EXPECT_NE(line.rfind("opened ", 0), 0u) << line;
}

TEST_F(VerificationTest, NetworkOfOtherInputsIsRefusedBeforeAnyRow) {
    Patterns(1);
    Network(1, 0.5);
    Patterns(2, {0.0, 0.0, 1.0});  // Load Data of a set of two inputs keeps the trained network
    dlg.OnVerification();
    ExpectEndedEarly({Box("Inputs of the network: 1, of the data set: 2. Initialize and train the network on this "
                          "data set.")});

    // After a cancelled Load Data there is no pattern: no row is computed and the empty file opens.
    dlg.m_nInputs = 0;
    dlg.m_nPatterns = 0;
    dlg.OnVerification();
    EXPECT_EQ(PressedRows(), "");
}

TEST(FileWrites, SeekToEndWritesReachTheFileInOrder) {
    const std::string path = ::testing::TempDir() + "appends_" + std::to_string(::getpid()) + ".txt";
    CFile file;
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeCreate));
    file.Write("head", 4);
    EXPECT_EQ(file.Seek(0, CFile::end), 4);
    for (int k = 0; k < 3000; ++k) {
        EXPECT_EQ(file.Seek(0, CFile::end), 4 + 3 * k) << "the end counts the writes not yet stored";
        file.Write("abc", 3);
    }
    file.Seek(0, CFile::begin);
    file.Write("H", 1);  // a write elsewhere, then the end again
    EXPECT_EQ(file.Seek(0, CFile::end), 9004);
    file.Write("!", 1);
    file.Close();
    std::ifstream in(path, std::ios::binary);
    std::stringstream all;
    all << in.rdbuf();
    std::string expected = "Head";
    for (int k = 0; k < 3000; ++k) expected += "abc";
    EXPECT_EQ(all.str(), expected + "!");
    std::remove(path.c_str());
}
