// Verification: the rows of each pattern set, the two files a press leaves, and every way a press ends early.
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "reference/dialogsample.h"
#include "files/verification.h"
#include "platform/files.h"
#include "support/main_dialog.h"

namespace {

// The program directory is the fixture's temporary folder; files the test reads in lie in a folder apart.
class VerificationTest : public MainDialogTest {
protected:

    // A data set of pairs.size() / 2 patterns and a network of units units on it, each unit with input weights 2,
    // centers 3, width 4 and output weight 1.5: for one unit on one input y = bias + 1.5 exp(-(2 x - 3)^2 / 4).
    // With one input the pairs are the patterns (input, desired output); others keep the sample's values.
    void Workspace(UINT inputs, UINT units, double bias, std::vector<double> pairs = {}) {
        MakeSample(m_dlg, {static_cast<UINT>(pairs.size() / 2), inputs, units, 0, 1});
        for (UINT p = 0; inputs == 1 && p < m_dlg.m_nPatterns; ++p) {
            m_dlg.m_pInputs[p] = pairs[2 * p];
            m_dlg.m_pTargets[p] = pairs[2 * p + 1];
        }
        m_dlg.m_pOutputWeights[0] = bias;
        std::fill(m_dlg.m_pOutputWeights + 1, m_dlg.m_pOutputWeights + units + 1, 1.5);
        std::fill(m_dlg.m_pWidths, m_dlg.m_pWidths + units, 4.0);
        std::fill(m_dlg.m_pInputWeights, m_dlg.m_pInputWeights + units * inputs, 2.0);
        std::fill(m_dlg.m_pCenters, m_dlg.m_pCenters + units * inputs, 3.0);
    }

    void EmptyDirectory() {
        for (const auto& entry : std::filesystem::directory_iterator(m_dir)) std::filesystem::remove_all(entry);
        m_printed.clear();
    }

    static std::string Contents(const std::filesystem::path& path) {
        if (std::filesystem::is_directory(path)) return "";
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    // The files of the directory, by name, with their contents.
    std::map<std::string, std::string> Files() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_dir))
            files[entry.path().filename().string()] = Contents(entry.path());
        return files;
    }

    // The rows of the press that just ran: both files must hold the same bytes, and the stamped one was opened.
    std::string PressedRows() {
        const auto files = Files();
        EXPECT_EQ(files.size(), 2u);
        if (files.size() != 2 || m_printed.empty()) return "<no output>";
        const auto stamped = files.begin()->first == "output.txt" ? std::next(files.begin()) : files.begin();
        EXPECT_EQ(stamped->second, files.at("output.txt")) << "both files hold the same rows";
        EXPECT_EQ(m_printed.back(), "opened " + m_dir + "/" + stamped->first);
        return stamped->second;
    }

    // After presses that ended early: "output.txt" and a stamped file for each exist, all empty, and nothing
    // was opened.
    void ExpectEndedEarly(std::vector<std::string> boxes) {
        const auto files = Files();
        EXPECT_TRUE(files.count("output.txt") == 1 && files.size() >= 2) << "both files come before any refusal";
        for (const auto& [name, text] : files) EXPECT_EQ(text, "") << name;
        EXPECT_EQ(m_prompts.Boxes(), boxes);
        for (const std::string& line : m_printed) EXPECT_NE(line.rfind("opened ", 0), 0u) << line;
    }

    const std::string& m_dir = m_folder.Path();
    TempFolder m_inputs;
};

}  // namespace

TEST_F(VerificationTest, GeneratedGridsRunFromMinimumToMaximumWithYAndItsNegative) {
    Workspace(1, 0, 1.0);
    m_dlg.m_nGeneralization = GeneralizationCreate1D;
    const auto grid1D = [&](const char* max, const char* points) {
        m_prompts.QueueDialog(CTest1DDlg::IDD,
                            {Set(IDC_1D_MINIMUM_VALUE, "0"), Set(IDC_1D_MAXIMUM_VALUE, max),
                             Set(IDC_1D_NUMBER_OF_POINTS, points), Ok()},
                            "1-D");
        m_dlg.OnVerification();
    };
    grid1D("1", "3");
    const std::string y = "0.000000\t1.000000\t-1.000000\t\r\n";  // no units: y is the bias
    EXPECT_EQ(PressedRows(), "0.000000\t" + y + "0.500000\t" + y + "1.000000\t" + y);
    EmptyDirectory();
    grid1D("5", "1");
    EXPECT_EQ(PressedRows(), "0.000000\t" + y) << "an axis of one point is its minimum, not NaN";

    EmptyDirectory();
    Workspace(2, 0, 0.25);
    m_dlg.m_nGeneralization = GeneralizationCreate2D;
    m_prompts.QueueDialog(CTest2DDlg::IDD,
                        {Set(IDC_X_MINIMUM_VALUE, "0"), Set(IDC_X_MAXIMUM_VALUE, "1"), Set(IDC_X_NUMBER_OF_POINTS, "2"),
                         Set(IDC_Y_MINIMUM_VALUE, "-1"), Set(IDC_Y_MAXIMUM_VALUE, "1"),
                         Set(IDC_Y_NUMBER_OF_POINTS, "3"), Ok()},
                        "2-D");
    m_dlg.OnVerification();
    const std::string q = "0.000000\t0.250000\t-0.250000\t\r\n";
    EXPECT_EQ(PressedRows(), "0.000000\t-1.000000\t" + q + "0.000000\t0.000000\t" + q + "0.000000\t1.000000\t" + q +
                                 "1.000000\t-1.000000\t" + q + "1.000000\t0.000000\t" + q + "1.000000\t1.000000\t" + q)
        << "x changes slowest";
}

TEST_F(VerificationTest, TrainingAndTestingPatternsGiveOneRowEachInReadingOrder) {
    Workspace(1, 1, 0.5, {1.5, 2.0, 0.5, -1.0});
    m_dlg.OnVerification();
    // y(1.5) = 0.5 + 1.5 exp(0) = 2; y(0.5) = 0.5 + 1.5 exp(-1) = 1.051819...
    EXPECT_EQ(PressedRows(),
              "1.500000\t2.000000\t2.000000\t0.000000\t\r\n0.500000\t-1.000000\t1.051819\t-2.051819\t\r\n");

    // Testing rows shorter or longer than the first stay inside the blocks: values fall in reading order, what
    // a short row leaves unreached reads 0, and what finds no room is dropped.
    Workspace(1, 0, 1.0);
    m_dlg.m_nGeneralization = GeneralizationTestingPatterns;
    const std::string first = "1.000000\t2.000000\t1.000000\t1.000000\t\r\n";
    for (const auto& [text, second] :
         {std::pair{"1 2\r\n3\r\n", "3.000000\t0.000000\t1.000000\t-1.000000\t\r\n"},
          std::pair{"1 2\r\n3 4 5 6\r\n", "3.000000\t4.000000\t1.000000\t3.000000\t\r\n"}}) {
        EmptyDirectory();
        m_prompts.QueueFile(m_inputs.Write("testing.txt", text), false, text);
        m_dlg.OnVerification();
        EXPECT_EQ(PressedRows(), first + second) << text;
    }
    EXPECT_TRUE(m_prompts.Boxes().empty());
}

// In different seconds or in one (the later stamped file then takes a numbered name): two stamped files, each with its
// press's rows, and one "output.txt" with the second press's.
TEST_F(VerificationTest, TwoPressesLeaveTwoStampedFilesAndOneOutputTxt) {
    Workspace(1, 0, 1.0, {0.0, 0.0});
    m_dlg.OnVerification();
    m_dlg.m_pOutputWeights[0] = 3.0;
    m_dlg.OnVerification();
    const auto files = Files();
    ASSERT_EQ(files.size(), 3u);
    const std::string first = "0.000000\t0.000000\t1.000000\t-1.000000\t\r\n";
    const std::string second = "0.000000\t0.000000\t3.000000\t-3.000000\t\r\n";
    EXPECT_EQ(files.at("output.txt"), second) << "output.txt holds the second press's rows";
    std::multiset<std::string> stamped;
    for (const auto& [name, text] : files)
        if (name != "output.txt") stamped.insert(text);
    EXPECT_EQ(stamped, (std::multiset<std::string>{first, second}));
    // The information list tells each file as it is written, each press both of its files.
    const std::vector<std::string> lines = m_dlg.Window()->Items(1015);
    for (const auto& [name, text] : files)
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "Output file: " + name), name == "output.txt" ? 2 : 1)
            << name;
    EXPECT_EQ(ToldPath("Output file:"), m_dir + "/output.txt");
}

TEST_F(VerificationTest, EachRefusalLeavesBothFilesEmptyAndOpensNothing) {
    Workspace(1, 0, 1.0, {0.0, 0.0});
    std::ofstream(m_dir + "/output.txt") << "rows of an earlier press";
    m_dlg.m_nGeneralization = GeneralizationCreate2D;
    m_dlg.OnVerification();
    Workspace(2, 0, 1.0, {0.0, 0.0});
    m_dlg.m_nGeneralization = GeneralizationCreate1D;
    m_dlg.OnVerification();
    m_dlg.m_nGeneralization = GeneralizationTestingPatterns;
    m_prompts.QueueFile("", true, "cancel");
    m_dlg.OnVerification();
    m_prompts.QueueFile(m_dir + "/missing.txt", false, "missing");
    m_dlg.OnVerification();
    m_prompts.QueueFile(m_inputs.Write("wide.txt", "1 2 3 4\r\n"), false, "wide");
    m_dlg.OnVerification();
    m_dlg.m_nGeneralization = GeneralizationCreate2D;
    m_prompts.QueueDialog(CTest2DDlg::IDD, {Cancel()}, "cancel 2-D");
    m_dlg.OnVerification();
    ExpectEndedEarly({Box("This Testing is only for 2-D inputs"), Box("This Testing is only for 1-D inputs"),
                      "box Error [exclamation]: Data file opening failed",
                      Box("Training Data does not match the testing data!")});
}

TEST_F(VerificationTest, FilesThatCannotBeCreatedEndThePressWithTwoMessages) {
    Workspace(1, 0, 1.0, {0.0, 0.0});
    std::filesystem::create_directory(m_dir + "/output.txt");  // a name taken by a directory
    m_dlg.OnVerification();
    EXPECT_EQ(Files().size(), 2u) << "the stamped file stays, empty";
    platform::DrainGuiQueue();
    EXPECT_EQ(m_dlg.Window()->Items(IDC_INFO_LIST).back(), "Cannot write output.txt in " + m_dir + "/: Is a directory.")
        << "the information list names the folder and the cause";
    AfxSetModuleDirectory(CString(m_dir + "/missing"));
    m_dlg.OnVerification();
    EXPECT_FALSE(std::filesystem::exists(m_dir + "/missing"));
    ExpectEndedEarly({Box("Create Result File Failed (output.txt)!"), Box("Create File Failed!"),
                      Box("Create Result File Failed!"), Box("Create File Failed!")});
}

TEST_F(VerificationTest, FilesTheDiskCantTakeAreNamedWithTheCauseAndNotOpened) {
    Workspace(1, 0, 1.0, {0.0, 0.0});
    // A file-size limit stands in for a full disk: the one row is longer than what a file may hold.
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit small = old;
    small.rlim_cur = 10;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    m_dlg.OnVerification();
    setrlimit(RLIMIT_FSIZE, &old);
    ASSERT_EQ(m_prompts.Boxes().size(), 2u) << "one box for each file";
    EXPECT_NE(m_prompts.Boxes()[1].find(m_dir + "/output.txt: File too large."), std::string::npos);
    for (const std::string& line : m_printed) EXPECT_NE(line.rfind("opened ", 0), 0u) << line;
}

TEST_F(VerificationTest, NetworkOfOtherInputsIsRefusedBeforeAnyRow) {
    Workspace(1, 1, 0.5, {0.0, 0.0, 0.0, 0.0});
    m_dlg.m_nInputs = 2;  // Load Data of a set of two inputs keeps the trained network
    m_dlg.m_nPatterns = 1;
    m_dlg.OnVerification();
    ExpectEndedEarly({Box("Inputs of the network: 1, of the data set: 2. Initialize and train the network on this "
                          "data set.")});

    // After a cancelled Load Data there is no pattern: no row is computed and the empty file opens.
    EmptyDirectory();
    m_dlg.m_nInputs = 0;
    m_dlg.m_nPatterns = 0;
    m_dlg.OnVerification();
    EXPECT_EQ(PressedRows(), "");
}
