// The application's resources: dialog templates, the plots' menus, the string table and the program icon.
// Controls stand in tab order; a radio group runs from a control marked WS_GROUP up to the next one so
// marked, so the group marks below decide which radio buttons exclude each other.
#include "shell/mainwindow.h"

#include "platform/templates.h"
#include "workspace/controls.h"

namespace {

using K = ControlKind;

constexpr const char* kFont = "MS Sans Serif";
constexpr int kFontPoints = 8;
constexpr UINT kDialogStyle = WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;

constexpr UINT kTab = WS_TABSTOP;
constexpr UINT kEdit = WS_BORDER | ES_CENTER | ES_AUTOHSCROLL | WS_TABSTOP;
constexpr UINT kReadOnly = kEdit | ES_READONLY;
constexpr UINT kFirstRadio = WS_GROUP | WS_TABSTOP;

template <typename T, int N>
constexpr int Count(const T (&)[N]) { return N; }

// A separator line drawn as a row of hyphens.
template <int N>
struct Rule {
    char text[N + 1];
    constexpr Rule() : text{} {
        for (int i = 0; i < N; ++i) text[i] = '-';
    }
};
constexpr Rule<76> kMainRule;
constexpr Rule<80> kDataSetInfoRule;  // as many as fit in 161 units at the width of the main dialog's rule

// 100: About box.
const ControlTemplate kAbout[] = {
    {-1, K::Icon, 11, 17, 20, 20, "128", SS_ICON},
    {-1, K::Static, 40, 10, 119, 8, "Vantrel Version 1.0", 0},
    {-1, K::Static, 40, 25, 130, 8, "RBF network design and training", 0},
    {IDOK, K::DefPushButton, 178, 7, 50, 14, "OK", WS_GROUP | kTab},
};

// 102: the main dialog.
const ControlTemplate kMain[] = {
    {-1, K::GroupBox, 286, 7, 160, 97, "Parameter Settings", 0},
    {IDC_LOAD_DATA, K::PushButton, 304, 81, 52, 16, "Load Data", kTab},
    {IDC_START_TRAINING, K::PushButton, 295, 221, 52, 20, "Start Training", kTab},
    {IDC_SUMMARY_PLOT, K::Static, 7, 180, 277, 171, nullptr, SS_SUNKEN},
    {IDC_ITERATION_PLOT, K::Static, 7, 7, 277, 171, nullptr, SS_SUNKEN},
    {IDC_ALGORITHMS, K::ComboBox, 327, 19, 115, 101, nullptr, CBS_DROPDOWNLIST | CBS_SORT | WS_VSCROLL | kTab},
    {-1, K::Static, 289, 21, 35, 8, "Algorithms:", 0},
    {IDC_INFO_LIST, K::ListBox, 448, 7, 192, 159, nullptr,
     WS_BORDER | WS_VSCROLL | LBS_NOTIFY | LBS_SORT | LBS_NOINTEGRALHEIGHT | kTab},
    {-1, K::Static, 291, 37, 73, 8, "Number of Iterations:", 0},
    {IDC_NUMBER_OF_ITERATIONS, K::Edit, 374, 35, 66, 12, nullptr, kEdit},
    {-1, K::Static, 291, 49, 73, 8, "Desired Average Error:", 0},
    {IDC_DESIRED_AVERAGE_ERROR, K::Edit, 374, 47, 66, 12, nullptr, kEdit},
    {-1, K::GroupBox, 286, 104, 160, 104, "Training Information", 0},
    {IDC_DATA_PLOT, K::Static, 448, 185, 192, 166, nullptr, SS_SUNKEN},
    {-1, K::Static, 291, 118, 73, 8, "Current RBF Units:", 0},
    {-1, K::Static, 291, 130, 73, 8, "Current Iterations:", 0},
    {-1, K::Static, 291, 166, 73, 8, "Current Partial Time(s):", 0},
    {IDC_TOTAL_TIME_LABEL, K::Static, 291, 179, 82, 8, "Current Total Time(s):", 0},
    {-1, K::Static, 291, 142, 73, 8, "Current Partial Error:", 0},
    {IDC_TOTAL_ERROR_LABEL, K::Static, 291, 154, 73, 8, "Current Total Error:", 0},
    {IDC_CURRENT_RBF_UNITS, K::Edit, 374, 116, 66, 12, nullptr, kReadOnly},
    {IDC_CURRENT_ITERATIONS, K::Edit, 374, 128, 66, 12, nullptr, kReadOnly},
    {IDC_CURRENT_PARTIAL_ERROR, K::Edit, 374, 140, 66, 12, nullptr, kReadOnly},
    {IDC_CURRENT_TOTAL_ERROR, K::Edit, 374, 152, 66, 12, nullptr, kReadOnly},
    {IDC_CURRENT_PARTIAL_TIME, K::Edit, 374, 164, 66, 12, nullptr, kReadOnly},
    {IDC_CURRENT_TOTAL_TIME, K::Edit, 374, 177, 66, 12, nullptr, kReadOnly},
    {-1, K::Static, 291, 191, 73, 8, "Current Training Set:", 0},
    {IDC_CURRENT_TRAINING_SET, K::Edit, 374, 189, 66, 12, nullptr, kReadOnly},
    {IDC_VERIFICATION, K::PushButton, 295, 273, 52, 24, "Verification", kTab},
    {IDC_CLEAR_CURVES, K::PushButton, 295, 326, 58, 19, "Clear Curves", kTab},
    {IDC_INFO_ENTRY, K::Edit, 448, 167, 147, 15, nullptr, WS_BORDER | ES_LEFT | ES_AUTOHSCROLL | kTab},
    {-1, K::Static, 291, 61, 73, 8, "Number of Trials:", 0},
    {IDC_NUMBER_OF_TRIALS, K::Edit, 374, 59, 66, 12, nullptr, kEdit},
    {IDC_ONLINE_TRAINING, K::AutoCheckBox, 358, 233, 63, 10, "Online Training", kTab},
    {IDC_SAVE_TRAINING_RESULTS, K::AutoCheckBox, 358, 220, 85, 10, "Save Training Results", kTab},
    {-1, K::GroupBox, 286, 208, 160, 41, "Training Setting", 0},
    {-1, K::GroupBox, 286, 249, 160, 64, "Generalization Setting", 0},
    // Each of the four is a group of its own: their handlers set the checks of all four by hand.
    {IDC_TRAINING_PATTERNS, K::AutoRadioButton, 366, 259, 69, 10, "Training Patterns", kFirstRadio},
    {IDC_TESTING_PATTERNS, K::AutoRadioButton, 366, 272, 67, 10, "Testing Patterns", kFirstRadio},
    {IDC_CREATE_2D_PATTERNS, K::AutoRadioButton, 366, 298, 78, 10, "Create 2-D Patterns", kFirstRadio},
    {IDC_CREATE_1D_PATTERNS, K::AutoRadioButton, 366, 285, 78, 10, "Create 1-D Patterns", kFirstRadio},
    {-1, K::Static, 289, 72, 153, 8, kMainRule.text, 0},
    {IDC_ONE_CURVE, K::AutoRadioButton, 366, 323, 50, 10, "One Curve", kFirstRadio},
    {IDC_MULTIPLE_CURVES, K::AutoRadioButton, 366, 336, 64, 10, "Multiple Curves", 0},
    {IDC_SHOW_INFO, K::PushButton, 597, 167, 43, 15, "Show Info", WS_GROUP | kTab},  // ends the curve group
    {IDC_INITIALIZATION, K::PushButton, 378, 81, 52, 16, "Initialization", kTab},
    {-1, K::GroupBox, 286, 313, 160, 38, "Plotting", 0},
};

// 129: data set information.
const ControlTemplate kDataSetInfo[] = {
    {-1, K::GroupBox, 7, 7, 197, 114, nullptr, 0},
    {-1, K::Static, 37, 26, 57, 8, "Number of Inputs:", 0},
    {IDC_NUMBER_OF_INPUTS, K::Edit, 110, 25, 45, 12, nullptr, kReadOnly},
    {-1, K::Static, 37, 44, 62, 8, "Number of Outputs:", 0},
    {IDC_NUMBER_OF_OUTPUTS, K::Edit, 110, 43, 45, 12, nullptr, kReadOnly},
    {-1, K::Static, 37, 89, 49, 8, "Data Set Type:", 0},
    {IDC_CLASSIFICATION, K::AutoRadioButton, 108, 89, 57, 10, "Classification", kFirstRadio},
    {IDC_APPROXIMATION, K::AutoRadioButton, 108, 103, 60, 10, "Approximation", 0},
    {-1, K::Static, 38, 62, 64, 8, "Number of Patterns:", WS_GROUP},  // ends the type group
    {IDC_NUMBER_OF_PATTERNS, K::Edit, 110, 61, 45, 12, nullptr, kReadOnly},
    {-1, K::Static, 25, 76, 161, 8, kDataSetInfoRule.text, 0},
    {IDOK, K::DefPushButton, 85, 129, 50, 19, "OK", kTab},
};

// 130: initialization of the fixed-size methods. Manually Selection and Load From File are groups of their
// own; their handlers check one and uncheck the other.
const ControlTemplate kInitialization[] = {
    {-1, K::GroupBox, 7, 7, 246, 38, "Algorithm Initialization [ First Order Gradient Methods ONLY]", 0},
    {-1, K::Static, 26, 26, 60, 8, "Learning Constant:", 0},
    {IDC_LEARNING_CONSTANT, K::Edit, 89, 24, 40, 12, nullptr, kEdit},
    {-1, K::Static, 151, 26, 38, 8, "Momentum:", 0},
    {IDC_MOMENTUM, K::Edit, 192, 24, 40, 12, nullptr, kEdit},
    {-1, K::GroupBox, 7, 48, 246, 214, "Network Initialization", 0},
    {IDC_MANUALLY_SELECTION, K::AutoRadioButton, 17, 64, 75, 10, "Manually Selection", kFirstRadio},
    {-1, K::Static, 39, 79, 70, 8, "Number of RBF Units:", 0},
    {IDC_NUMBER_OF_RBF_UNITS, K::Edit, 113, 77, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 93, 45, 8, "Input Weights", 0},
    {IDC_INPUT_WEIGHTS_RANDOM, K::AutoRadioButton, 58, 104, 107, 10, "Randomly Selected Between", kFirstRadio},
    {IDC_INPUT_WEIGHTS_LOWER, K::Edit, 165, 103, 25, 12, nullptr, kEdit},
    {-1, K::Static, 193, 104, 13, 8, "and", 0},
    {IDC_INPUT_WEIGHTS_UPPER, K::Edit, 209, 103, 25, 12, nullptr, kEdit},
    {IDC_INPUT_WEIGHTS_FIXED, K::AutoRadioButton, 58, 116, 42, 10, "Fixed as", 0},
    {IDC_INPUT_WEIGHTS_VALUE, K::Edit, 100, 115, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 129, 50, 8, "Output Weights", 0},
    {IDC_OUTPUT_WEIGHTS_RANDOM, K::AutoRadioButton, 58, 140, 107, 10, "Randomly Selected Between", kFirstRadio},
    {IDC_OUTPUT_WEIGHTS_LOWER, K::Edit, 165, 139, 25, 12, nullptr, kEdit},
    {-1, K::Static, 193, 140, 13, 8, "and", 0},
    {IDC_OUTPUT_WEIGHTS_UPPER, K::Edit, 209, 139, 25, 12, nullptr, kEdit},
    {IDC_OUTPUT_WEIGHTS_FIXED, K::AutoRadioButton, 58, 152, 42, 10, "Fixed as", 0},
    {IDC_OUTPUT_WEIGHTS_VALUE, K::Edit, 100, 151, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 163, 23, 8, "Widths", 0},
    {IDC_WIDTHS_RANDOM, K::AutoRadioButton, 58, 174, 107, 10, "Randomly Selected Between", kFirstRadio},
    {IDC_WIDTHS_LOWER, K::Edit, 166, 173, 25, 12, nullptr, kEdit},
    {-1, K::Static, 194, 174, 13, 8, "and", 0},
    {IDC_WIDTHS_UPPER, K::Edit, 210, 173, 25, 12, nullptr, kEdit},
    {IDC_WIDTHS_FIXED, K::AutoRadioButton, 58, 186, 42, 10, "Fixed as", 0},
    {IDC_WIDTHS_VALUE, K::Edit, 100, 185, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 196, 25, 8, "Centers", 0},
    {IDC_CENTERS_FROM_INPUT_RANGE, K::AutoRadioButton, 58, 207, 141, 10, "Randomly Generated From Input Range", kFirstRadio},
    {IDC_CENTERS_WITH_REPETITION, K::AutoRadioButton, 58, 219, 177, 10, "Randomly Selected From Inputs (Allow Repeatition)", 0},
    {IDC_CENTERS_NO_REPETITION, K::AutoRadioButton, 58, 231, 169, 10, "Randomly Selected From Inputs (No Repeatition)", 0},
    {IDC_LOAD_FROM_FILE, K::AutoRadioButton, 17, 246, 62, 10, "Load From File", kFirstRadio},
    {IDOK, K::DefPushButton, 62, 271, 50, 16, "OK", WS_GROUP | kTab},  // ends the group of Load From File
    {IDCANCEL, K::PushButton, 147, 271, 50, 16, "Cancel", kTab},
};

// 1038: initialization of the Error Correction Algorithm.
const ControlTemplate kErrCorInit[] = {
    {-1, K::GroupBox, 7, 7, 187, 44, nullptr, 0},
    {-1, K::Static, 28, 26, 99, 8, "Maximum Number of RBF Units", 0},
    {IDC_MAXIMUM_RBF_UNITS, K::Edit, 133, 23, 40, 14, nullptr, kEdit},
    {IDOK, K::DefPushButton, 43, 60, 50, 14, "OK", kTab},
    {IDCANCEL, K::PushButton, 109, 60, 50, 14, "Cancel", kTab},
};

// 136, 1039, 1040: a range of exponents, laid out like the dialog 1038.
const ControlTemplate kBoundaries[] = {
    {-1, K::GroupBox, 7, 7, 173, 54, nullptr, 0},
    {-1, K::Static, 28, 23, 60, 8, "Upper Boundary", 0},
    {IDC_UPPER_BOUNDARY, K::Edit, 100, 20, 50, 14, nullptr, kEdit},
    {-1, K::Static, 28, 42, 60, 8, "Lower Boundary", 0},
    {IDC_LOWER_BOUNDARY, K::Edit, 100, 39, 50, 14, nullptr, kEdit},
    {IDOK, K::DefPushButton, 35, 70, 50, 14, "OK", kTab},
    {IDCANCEL, K::PushButton, 102, 70, 50, 14, "Cancel", kTab},
};

// 137: the multiplier of the summary plot's x axis.
const ControlTemplate kMultiplier[] = {
    {-1, K::GroupBox, 7, 7, 173, 42, nullptr, 0},
    {-1, K::Static, 35, 26, 40, 8, "Multiplier", 0},
    {IDC_MULTIPLIER, K::Edit, 100, 23, 50, 14, nullptr, kEdit},
    {IDOK, K::DefPushButton, 35, 58, 50, 14, "OK", kTab},
    {IDCANCEL, K::PushButton, 102, 58, 50, 14, "Cancel", kTab},
};

// 138: grid of one-dimensional test patterns.
const ControlTemplate kTest1D[] = {
    {-1, K::GroupBox, 7, 7, 177, 63, nullptr, 0},
    {-1, K::Static, 25, 20, 60, 8, "Minimum Value:", 0},
    {IDC_1D_MINIMUM_VALUE, K::Edit, 100, 18, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 37, 60, 8, "Maximum Value:", 0},
    {IDC_1D_MAXIMUM_VALUE, K::Edit, 100, 35, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 54, 62, 8, "Number of Points:", 0},
    {IDC_1D_NUMBER_OF_POINTS, K::Edit, 100, 52, 60, 14, nullptr, kEdit},
    {IDOK, K::DefPushButton, 37, 76, 50, 14, "OK", kTab},
    {IDCANCEL, K::PushButton, 104, 76, 50, 14, "Cancel", kTab},
};

// 139: grid of two-dimensional test patterns.
const ControlTemplate kTest2D[] = {
    {-1, K::GroupBox, 7, 7, 197, 66, "X Dimension", 0},
    {-1, K::Static, 25, 22, 60, 8, "Minimum Value:", 0},
    {IDC_X_MINIMUM_VALUE, K::Edit, 110, 20, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 39, 60, 8, "Maximum Value:", 0},
    {IDC_X_MAXIMUM_VALUE, K::Edit, 110, 37, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 56, 62, 8, "Number of Points:", 0},
    {IDC_X_NUMBER_OF_POINTS, K::Edit, 110, 54, 60, 14, nullptr, kEdit},
    {-1, K::GroupBox, 7, 78, 197, 66, "Y Dimension", 0},
    {-1, K::Static, 25, 93, 60, 8, "Minimum Value:", 0},
    {IDC_Y_MINIMUM_VALUE, K::Edit, 110, 91, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 110, 60, 8, "Maximum Value:", 0},
    {IDC_Y_MAXIMUM_VALUE, K::Edit, 110, 108, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 127, 62, 8, "Number of Points:", 0},
    {IDC_Y_NUMBER_OF_POINTS, K::Edit, 110, 125, 60, 14, nullptr, kEdit},
    {IDOK, K::DefPushButton, 47, 151, 50, 14, "OK", kTab},
    {IDCANCEL, K::PushButton, 114, 151, 50, 14, "Cancel", kTab},
};

// 140: settings of online training. The path is left aligned so that its beginning shows.
const ControlTemplate kOnlineSettings[] = {
    {-1, K::GroupBox, 7, 7, 297, 78, nullptr, 0},
    {-1, K::Static, 15, 23, 106, 8, "Current Number of RBF Units:", 0},
    {IDC_CURRENT_NUMBER_OF_RBF_UNITS, K::Edit, 125, 21, 50, 14, nullptr, kReadOnly},
    {-1, K::Static, 15, 43, 106, 8, "Extra Number of RBF Units:", 0},
    {IDC_EXTRA_NUMBER_OF_RBF_UNITS, K::Edit, 125, 41, 50, 14, nullptr, kEdit},
    {-1, K::Static, 15, 63, 40, 8, "New Data:", 0},
    {IDC_NEW_DATA, K::Edit, 60, 61, 180, 14, nullptr, WS_BORDER | ES_LEFT | ES_AUTOHSCROLL | ES_READONLY | kTab},
    {IDC_BROWSE, K::PushButton, 246, 61, 50, 14, "Browse...", kTab},
    {IDOK, K::DefPushButton, 90, 94, 50, 14, "OK", kTab},
    {IDCANCEL, K::PushButton, 171, 94, 50, 14, "Cancel", kTab},
};

#define VANTREL_DIALOG(id, caption, cx, cy, exStyle, controls) \
    { id, caption, cx, cy, kFont, kFontPoints, kDialogStyle, exStyle, controls, Count(controls) }

const DialogTemplate kDialogs[] = {
    VANTREL_DIALOG(IDD_ABOUT, "About Vantrel", 235, 55, 0, kAbout),
    VANTREL_DIALOG(IDD_MAIN, "Vantrel", 647, 358, WS_EX_APPWINDOW, kMain),
    VANTREL_DIALOG(IDD_DATA_SET_INFO, "Data Set Information", 211, 155, 0, kDataSetInfo),
    VANTREL_DIALOG(IDD_INITIALIZATION, "Initialization", 260, 294, 0, kInitialization),
    VANTREL_DIALOG(IDD_ITERATION_X_RANGE, "Set X Range", 187, 91, 0, kBoundaries),
    VANTREL_DIALOG(IDD_SUMMARY_X_RANGE, "Set X Range", 187, 79, 0, kMultiplier),
    VANTREL_DIALOG(IDD_TEST_1D, "Set Parameters for 1-D Testing", 191, 96, 0, kTest1D),
    VANTREL_DIALOG(IDD_TEST_2D, "t Parameters for 2-D Testing", 211, 172, 0, kTest2D),
    VANTREL_DIALOG(IDD_ONLINE_SETTINGS, "Settings of Online Training", 311, 116, 0, kOnlineSettings),
    VANTREL_DIALOG(IDD_ERRCOR_INIT, "Error Correction Algorithm -- Initialization", 201, 81, 0, kErrCorInit),
    VANTREL_DIALOG(IDD_ITERATION_Y_RANGE, "Set Y Range", 187, 91, 0, kBoundaries),
    VANTREL_DIALOG(IDD_SUMMARY_Y_RANGE, "Set Y Range", 187, 91, 0, kBoundaries),
};

#undef VANTREL_DIALOG

// Right-button menus of the two curve plots: 134 for the iteration plot, 135 for the summary plot.
const MenuItemTemplate kIterationMenu[] = {{ID_ITERATION_X_RANGE, "Set X Range"}, {ID_ITERATION_Y_RANGE, "Set Y Range"}};
const MenuItemTemplate kSummaryMenu[] = {{ID_SUMMARY_X_RANGE, "Set X Range"}, {ID_SUMMARY_Y_RANGE, "Set Y Range"}};

const MenuTemplate kMenus[] = {
    {IDR_ITERATION_MENU, "Operations", kIterationMenu, Count(kIterationMenu)},
    {IDR_SUMMARY_MENU, "Operation", kSummaryMenu, Count(kSummaryMenu)},
};

const StringTemplate kStrings[] = {
    {IDS_ABOUT, "&About Vantrel..."},
};

// 128: a radial basis function, a Gaussian bump over a baseline, on a light tile.
const char* const kProgramIconRows[] = {
    " gggggggggggggggggggggggggggggg ",
    "gwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwwccwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwccccwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwccffccwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwcffffcwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwcffffcwwwwwwwwwwwwg",
    "gwwwwwwwwwwwcffffffcwwwwwwwwwwwg",
    "gwwwwwwwwwwwcffffffcwwwwwwwwwwwg",
    "gwwwwwwwwwwccffffffccwwwwwwwwwwg",
    "gwwwwwwwwwwcffffffffcwwwwwwwwwwg",
    "gwwwwwwwwwwcffffffffcwwwwwwwwwwg",
    "gwwwwwwwwwccffffffffccwwwwwwwwwg",
    "gwwwwwwwwwcffffffffffcwwwwwwwwwg",
    "gwwwwwwwwwcffffffffffcwwwwwwwwwg",
    "gwwwwwwwwccffffffffffccwwwwwwwwg",
    "gwwwwwwwwcffffffffffffcwwwwwwwwg",
    "gwwwwwwwccffffffffffffccwwwwwwwg",
    "gwwwwwwwcffffffffffffffcwwwwwwwg",
    "gwwwwwwccffffffffffffffccwwwwwwg",
    "gwwwwwwcffffffffffffffffcwwwwwwg",
    "gwwwwwccffffffffffffffffccwwwwwg",
    "gwwwcccffffffffffffffffffcccwwwg",
    "gwkkkkkkkkkkkkkkkkkkkkkkkkkkkkwg",
    "gwwwwkwwwwwwwwwkkwwwwwwwwwkwwwwg",
    "gwwwwwwwwwwwwwwkkwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwg",
    "gwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwg",
    " gggggggggggggggggggggggggggggg ",
};
// g frame, w tile, f area under the curve, c curve, k axis.
constexpr char kProgramIconKeys[] = "gwfck";
const COLORREF kProgramIconColors[] = {RGB(0x90, 0x90, 0x90), RGB(0xF4, 0xF8, 0xFF), RGB(0xB8, 0xD4, 0xF8),
                                       RGB(0x10, 0x40, 0xB0), RGB(0x40, 0x40, 0x40)};
static_assert(Count(kProgramIconColors) == Count(kProgramIconKeys) - 1, "one colour per palette key");

const IconTemplate kIcons[] = {
    {IDI_PROGRAM, Count(kProgramIconRows), kProgramIconRows, kProgramIconKeys, kProgramIconColors},
};

const ResourceTable kResources = {
    kDialogs, Count(kDialogs), kMenus, Count(kMenus), kStrings, Count(kStrings), kIcons, Count(kIcons),
};

}  // namespace

const ResourceTable& VantrelResources() { return kResources; }
