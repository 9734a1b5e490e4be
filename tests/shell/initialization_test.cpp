// Initialization: the tests of the dialog's OK, its enable rules, both paths of OnInitialization and the
// settings summary.
#include <atomic>
#include <cstdlib>
#include <new>

#include "platform/dialogwindow.h"
#include "engine/memory.h"
#include "shell/initialization.h"
#include "support/main_dialog.h"

// The thread sanitizer's run-time replaces these operators itself, and a second definition clashes with it: there
// the hook yields, and the test below still sees the count refused, only not whether a block was asked for first.
#if defined(__SANITIZE_THREAD__)
#define VANTREL_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VANTREL_THREAD_SANITIZER
#endif
#endif

namespace {

// While armed, a request for a block of a gigabyte or more is recorded and refused instead of granted, so that
// a test sees whether a count was refused before its blocks were asked for.
std::atomic<bool> g_armed{false}, g_hugeAsked{false};

#ifndef VANTREL_THREAD_SANITIZER
void* Allocate(std::size_t size) {
    if (g_armed && size >= (std::size_t(1) << 30)) {
        g_hugeAsked = true;
        throw std::bad_alloc();
    }
    if (void* block = std::malloc(size > 0 ? size : 1)) return block;
    throw std::bad_alloc();
}
#endif

}  // namespace

#ifndef VANTREL_THREAD_SANITIZER
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
#endif

namespace {

using InitializationTest = MainDialogTest;

const char* ErrorOf(const CInitializationDlg& d) { return InitializationError(d) ? InitializationError(d) : ""; }

std::vector<std::string> Lines(const CVantrelDlg& dlg) {
    std::vector<std::string> lines;
    for (const CString& line : SettingsLines(dlg)) lines.push_back(line.str());
    return lines;
}

}  // namespace

TEST(InitializationOk, TestsRunInOrderAndTheFirstFailureSpeaks) {
    CInitializationDlg d;
    d.m_nPatterns = 10;
    EXPECT_STREQ(ErrorOf(d), "") << "the defaults pass";
    d.m_nInputWeightMode = d.m_nOutputWeightMode = d.m_nWidthMode = 0;
    d.m_dInputWeightMin = 2;
    d.m_dOutputWeightMin = 2;
    d.m_dWidthMin = -1;
    d.m_dWidthMax = -2;
    EXPECT_STREQ(ErrorOf(d), "Input Weights: Lower boundary should be less than upper boundary!");
    d.m_dInputWeightMin = 1;  // equal bounds pass
    EXPECT_STREQ(ErrorOf(d), "Output Weights: Lower boundary should be less than upper boundary!");
    d.m_dOutputWeightMin = 0.5;
    EXPECT_STREQ(ErrorOf(d), "Widths: Lower boundary should be less than upper boundary!");
    d.m_dWidthMax = 1;
    EXPECT_STREQ(ErrorOf(d), "Widths: Minimum widths should be larger than zero!");
    d.m_dWidthMin = 0.5;
    EXPECT_STREQ(ErrorOf(d), "");
    d.m_dWidthMin = d.m_dWidthMax = 0;
    EXPECT_STREQ(ErrorOf(d), "Widths: Minimum widths should be larger than zero!");
    d.m_nWidthMode = 1;
    d.m_dWidthFixed = 0;
    EXPECT_STREQ(ErrorOf(d), "Widths: Fixed widths should be larger than zero!") << "random bounds idle in fixed mode";
}

TEST(InitializationOk, UnitsWithoutRepetitionAreBoundByThePatterns) {
    CInitializationDlg d;
    d.m_nPatterns = 5;
    d.m_nUnits = 5;
    EXPECT_STREQ(ErrorOf(d), "");
    d.m_nUnits = 6;
    EXPECT_STREQ(ErrorOf(d), "Number of RBF units cannot larger than Number of patterns");
    d.m_nCenterMode = 1;
    EXPECT_STREQ(ErrorOf(d), "") << "with repetition any number of units passes";
    d.m_nCenterMode = 2;
    d.m_nUnits = 0;
    d.m_dInputWeightFixed = -3;
    EXPECT_STREQ(ErrorOf(d), "") << "no units and negative fixed weights pass";
}

TEST(InitializationDialog, LoadFromFileDisablesTheManualControls) {
    CInitializationDlg d;
    ASSERT_TRUE(d.CreateHidden());
    const auto enabled = [&d](int id) { return d.Window()->IsEnabled(id); };
    const auto checked = [&d](int id) { return d.GetDlgItem(id)->SendMessage(BM_GETCHECK) == BST_CHECKED; };
    EXPECT_TRUE(checked(1071));
    EXPECT_FALSE(checked(1070));
    EXPECT_TRUE(enabled(1096));
    EXPECT_TRUE(enabled(1074)) << "fixed edit of a group in fixed mode";
    EXPECT_FALSE(enabled(1045)) << "lower edit of a group in fixed mode";

    d.Window()->ClickControl(1091);  // input weights: random
    EXPECT_EQ(d.m_nInputWeightMode, 0);
    EXPECT_TRUE(enabled(1045));
    EXPECT_TRUE(enabled(1073));
    EXPECT_FALSE(enabled(1074));

    d.Window()->ClickControl(1070);
    EXPECT_EQ(d.m_nLoadFromFile, 1);
    EXPECT_TRUE(checked(1070));
    EXPECT_FALSE(checked(1071));
    for (int id : {1091, 1092, 1076, 1077, 1082, 1083, 1088, 1089, 1090, 1096, 1045, 1073, 1074, 1078, 1079, 1080,
                   1084, 1085, 1086})
        EXPECT_FALSE(enabled(id)) << "control " << id << " must be disabled with Load From File";
    EXPECT_TRUE(enabled(1103));
    EXPECT_TRUE(enabled(1104));

    d.Window()->ClickControl(1071);
    EXPECT_EQ(d.m_nLoadFromFile, 0);
    EXPECT_TRUE(enabled(1045)) << "the group's random mode is applied again";
    EXPECT_TRUE(enabled(1080)) << "output weights keep their fixed mode";
    EXPECT_FALSE(enabled(1079));
}

TEST_F(InitializationTest, ParameterFileGivesTheNetworkAndItsInitialCopies) {
    LoadData(SampleData("sin1d.txt"));
    m_dlg.m_nAlgorithm = 3;
    m_prompts.QueueDialog(CInitializationDlg::IDD,
                        {Set(1103, "0.01"), Click(1070), Ok()}, "init");
    m_prompts.QueueFile(SampleData("sin1d_3units.ini"), false, "ini");
    m_dlg.OnInitialization();
    EXPECT_TRUE(m_prompts.Boxes().empty()) << m_prompts.Boxes().front();
    EXPECT_TRUE(m_dlg.m_bNetworkReady);
    EXPECT_EQ(m_dlg.m_nUnits, 3u);
    EXPECT_EQ(m_dlg.m_dLearningConstant, 0.01);
    EXPECT_EQ(m_dlg.m_pCenters[1], 3.1416);
    EXPECT_EQ(m_dlg.m_pInitCenters[1], 3.1416);
    EXPECT_EQ(m_dlg.m_pWidths[2], 1.5);
    EXPECT_EQ(m_dlg.m_pOutputWeights[1], 1.029501);
    EXPECT_EQ(m_dlg.m_dlgInitialization.m_nUnits, 1u) << "the dialog's unit count has no say";
    EXPECT_EQ(Lines(m_dlg).back(), "Read Parameters from file!");
}

TEST_F(InitializationTest, MismatchedParameterFileLeavesTheNetworkAlone) {
    LoadData(SampleData("sin1d.txt"));
    m_dlg.m_dlgInitialization.m_nLoadFromFile = 1;
    m_prompts.QueueDialog(CInitializationDlg::IDD, {Ok()}, "init");
    m_prompts.QueueFile(SampleData("twomoons_4units.ini"), false, "ini for two inputs");
    m_dlg.OnInitialization();
    EXPECT_EQ(m_prompts.Boxes(), std::vector<std::string>{Box("Number of RBF units does not match!")});
    EXPECT_FALSE(m_dlg.m_bNetworkReady);
    EXPECT_EQ(m_dlg.m_nUnits, 0u);
    EXPECT_EQ(m_dlg.m_pInputWeights, nullptr);
}

TEST_F(InitializationTest, CancelledParameterFileDialogClearsTheReadyFlag) {
    LoadData(SampleData("sin1d.txt"));
    m_dlg.m_bNetworkReady = true;
    m_dlg.m_dlgInitialization.m_nLoadFromFile = 1;
    m_prompts.QueueDialog(CInitializationDlg::IDD, {Ok()}, "init");
    m_prompts.QueueFile("", true, "cancel");
    m_dlg.OnInitialization();
    EXPECT_FALSE(m_dlg.m_bNetworkReady);
    EXPECT_TRUE(m_prompts.Boxes().empty());
}

TEST_F(InitializationTest, ErrorCorrectionAsksOnlyForTheLargestNetwork) {
    LoadData(SampleData("sin1d.txt"));
    m_dlg.m_nAlgorithm = 2;
    m_prompts.QueueDialog(CErrCorInitDlg::IDD, {Set(1097, "7"), Ok()}, "errcor");
    m_dlg.OnInitialization();
    EXPECT_TRUE(m_dlg.m_bNetworkReady);
    EXPECT_EQ(m_dlg.m_nMaxUnits, 7u);
    EXPECT_EQ(m_dlg.m_pInputWeights, nullptr) << "the run builds the network itself";

    m_prompts.QueueDialog(CErrCorInitDlg::IDD, {Cancel()}, "errcor cancel");
    m_dlg.OnInitialization();
    EXPECT_FALSE(m_dlg.m_bNetworkReady);
}

TEST_F(InitializationTest, UnitCountWhoseBlocksExceedTheMemoryIsRefusedWithoutAllocating) {
    LoadData(SampleData("sin1d.txt"));
    const UINT unitsBefore = m_dlg.m_nUnits;
    // Each of the eight blocks is a sixth of the memory the process may use, so the system would grant each
    // one and kill the program while they are filled; all of them together can't fit.
    const double units = static_cast<double>(engine::UsableMemory()) / sizeof(double) / 6;
    ASSERT_LT(units, 4e9) << "this machine's memory is beyond what a unit count can fill";
    g_armed = true;
    const bool replaced = ReplaceNetworkArrays(m_dlg, static_cast<UINT>(units));
    g_armed = false;
    EXPECT_FALSE(replaced);
    EXPECT_FALSE(g_hugeAsked) << "a block beyond the memory was asked for before the count was refused";
    EXPECT_EQ(m_prompts.Boxes().back(), Box("Number of RBF units is too large!"));
    EXPECT_EQ(m_dlg.m_nUnits, unitsBefore) << "a refused count leaves the network as it was";
}

TEST_F(InitializationTest, SummaryOfAFirstOrderMethodWithRandomGroups) {
    m_dlg.m_nAlgorithm = 4;
    m_dlg.m_dlgInitialization.m_nInputWeightMode = 0;
    m_dlg.m_dlgInitialization.m_nWidthMode = 0;
    m_dlg.m_dlgInitialization.m_nCenterMode = 0;
    const std::vector<std::string> lines = Lines(m_dlg);
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0], "Selected Algorithm: Improved First Order Method");
    EXPECT_EQ(lines[6], "Learning Constant: 0.0010");
    EXPECT_EQ(lines[7], "Momentum: 0.5000");
    EXPECT_EQ(lines[8], "Input Weight: randomly generated between 0.50 and 1.00");
    EXPECT_EQ(lines[10], "Width: randomly generated between 0.50 and 1.00");
    EXPECT_EQ(lines[11], "Center: randomly generated in the same range of inputs");
}
