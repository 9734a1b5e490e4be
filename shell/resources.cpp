// The application's resources: dialog templates, the plots' menus, the string table and the program icon.
// Controls stand in tab order; a radio group runs from a control marked WS_GROUP up to the next one so
// marked, so the group marks below decide which radio buttons exclude each other.
#include "platform/templates.h"

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
    {1, K::DefPushButton, 178, 7, 50, 14, "OK", WS_GROUP | kTab},
};

// 102: the main dialog.
const ControlTemplate kMain[] = {
    {-1, K::GroupBox, 286, 7, 160, 97, "Parameter Settings", 0},
    {1009, K::PushButton, 304, 81, 52, 16, "Load Data", kTab},
    {1010, K::PushButton, 295, 221, 52, 20, "Start Training", kTab},
    {1012, K::Static, 7, 180, 277, 171, nullptr, SS_SUNKEN},
    {1013, K::Static, 7, 7, 277, 171, nullptr, SS_SUNKEN},
    {1014, K::ComboBox, 327, 19, 115, 101, nullptr, CBS_DROPDOWNLIST | CBS_SORT | WS_VSCROLL | kTab},
    {-1, K::Static, 289, 21, 35, 8, "Algorithms:", 0},
    {1015, K::ListBox, 448, 7, 192, 159, nullptr,
     WS_BORDER | WS_VSCROLL | LBS_NOTIFY | LBS_SORT | LBS_NOINTEGRALHEIGHT | kTab},
    {-1, K::Static, 291, 37, 73, 8, "Number of Iterations:", 0},
    {1019, K::Edit, 374, 35, 66, 12, nullptr, kEdit},
    {-1, K::Static, 291, 49, 73, 8, "Desired Average Error:", 0},
    {1020, K::Edit, 374, 47, 66, 12, nullptr, kEdit},
    {-1, K::GroupBox, 286, 104, 160, 104, "Training Information", 0},
    {1022, K::Static, 448, 185, 192, 166, nullptr, SS_SUNKEN},
    {-1, K::Static, 291, 118, 73, 8, "Current RBF Units:", 0},
    {-1, K::Static, 291, 130, 73, 8, "Current Iterations:", 0},
    {-1, K::Static, 291, 166, 73, 8, "Current Partial Time(s):", 0},
    {1102, K::Static, 291, 179, 82, 8, "Current Total Time(s):", 0},
    {-1, K::Static, 291, 142, 73, 8, "Current Partial Error:", 0},
    {1101, K::Static, 291, 154, 73, 8, "Current Total Error:", 0},
    {1023, K::Edit, 374, 116, 66, 12, nullptr, kReadOnly},
    {1024, K::Edit, 374, 128, 66, 12, nullptr, kReadOnly},
    {1025, K::Edit, 374, 140, 66, 12, nullptr, kReadOnly},
    {1026, K::Edit, 374, 152, 66, 12, nullptr, kReadOnly},
    {1027, K::Edit, 374, 164, 66, 12, nullptr, kReadOnly},
    {1028, K::Edit, 374, 177, 66, 12, nullptr, kReadOnly},
    {-1, K::Static, 291, 191, 73, 8, "Current Training Set:", 0},
    {1029, K::Edit, 374, 189, 66, 12, nullptr, kReadOnly},
    {1038, K::PushButton, 295, 273, 52, 24, "Verification", kTab},
    {1039, K::PushButton, 295, 326, 58, 19, "Clear Curves", kTab},
    {1093, K::Edit, 448, 167, 147, 15, nullptr, WS_BORDER | ES_LEFT | ES_AUTOHSCROLL | kTab},
    {-1, K::Static, 291, 61, 73, 8, "Number of Trials:", 0},
    {1047, K::Edit, 374, 59, 66, 12, nullptr, kEdit},
    {1048, K::AutoCheckBox, 358, 233, 63, 10, "Online Training", kTab},
    {1055, K::AutoCheckBox, 358, 220, 85, 10, "Save Training Results", kTab},
    {-1, K::GroupBox, 286, 208, 160, 41, "Training Setting", 0},
    {-1, K::GroupBox, 286, 249, 160, 64, "Generalization Setting", 0},
    // Each of the four is a group of its own: their handlers set the checks of all four by hand.
    {1056, K::AutoRadioButton, 366, 259, 69, 10, "Training Patterns", kFirstRadio},
    {1057, K::AutoRadioButton, 366, 272, 67, 10, "Testing Patterns", kFirstRadio},
    {1058, K::AutoRadioButton, 366, 298, 78, 10, "Create 2-D Patterns", kFirstRadio},
    {1059, K::AutoRadioButton, 366, 285, 78, 10, "Create 1-D Patterns", kFirstRadio},
    {-1, K::Static, 289, 72, 153, 8, kMainRule.text, 0},
    {1061, K::AutoRadioButton, 366, 323, 50, 10, "One Curve", kFirstRadio},
    {1062, K::AutoRadioButton, 366, 336, 64, 10, "Multiple Curves", 0},
    {1063, K::PushButton, 597, 167, 43, 15, "Show Info", WS_GROUP | kTab},  // ends the curve group
    {1064, K::PushButton, 378, 81, 52, 16, "Initialization", kTab},
    {-1, K::GroupBox, 286, 313, 160, 38, "Plotting", 0},
};

// 129: data set information.
const ControlTemplate kDataSetInfo[] = {
    {-1, K::GroupBox, 7, 7, 197, 114, nullptr, 0},
    {-1, K::Static, 37, 26, 57, 8, "Number of Inputs:", 0},
    {1041, K::Edit, 110, 25, 45, 12, nullptr, kReadOnly},
    {-1, K::Static, 37, 44, 62, 8, "Number of Outputs:", 0},
    {1042, K::Edit, 110, 43, 45, 12, nullptr, kReadOnly},
    {-1, K::Static, 37, 89, 49, 8, "Data Set Type:", 0},
    {1043, K::AutoRadioButton, 108, 89, 57, 10, "Classification", kFirstRadio},
    {1044, K::AutoRadioButton, 108, 103, 60, 10, "Approximation", 0},
    {-1, K::Static, 38, 62, 64, 8, "Number of Patterns:", WS_GROUP},  // ends the type group
    {1094, K::Edit, 110, 61, 45, 12, nullptr, kReadOnly},
    {-1, K::Static, 25, 76, 161, 8, kDataSetInfoRule.text, 0},
    {1, K::DefPushButton, 85, 129, 50, 19, "OK", kTab},
};

// 130: initialization of the fixed-size methods. 1071 and 1070 are groups of their own; their handlers
// check one and uncheck the other.
const ControlTemplate kInitialization[] = {
    {-1, K::GroupBox, 7, 7, 246, 38, "Algorithm Initialization [ First Order Gradient Methods ONLY]", 0},
    {-1, K::Static, 26, 26, 60, 8, "Learning Constant:", 0},
    {1103, K::Edit, 89, 24, 40, 12, nullptr, kEdit},
    {-1, K::Static, 151, 26, 38, 8, "Momentum:", 0},
    {1104, K::Edit, 192, 24, 40, 12, nullptr, kEdit},
    {-1, K::GroupBox, 7, 48, 246, 214, "Network Initialization", 0},
    {1071, K::AutoRadioButton, 17, 64, 75, 10, "Manually Selection", kFirstRadio},
    {-1, K::Static, 39, 79, 70, 8, "Number of RBF Units:", 0},
    {1096, K::Edit, 113, 77, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 93, 45, 8, "Input Weights", 0},
    {1091, K::AutoRadioButton, 58, 104, 107, 10, "Randomly Selected Between", kFirstRadio},
    {1045, K::Edit, 165, 103, 25, 12, nullptr, kEdit},
    {-1, K::Static, 193, 104, 13, 8, "and", 0},
    {1073, K::Edit, 209, 103, 25, 12, nullptr, kEdit},
    {1092, K::AutoRadioButton, 58, 116, 42, 10, "Fixed as", 0},
    {1074, K::Edit, 100, 115, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 129, 50, 8, "Output Weights", 0},
    {1076, K::AutoRadioButton, 58, 140, 107, 10, "Randomly Selected Between", kFirstRadio},
    {1078, K::Edit, 165, 139, 25, 12, nullptr, kEdit},
    {-1, K::Static, 193, 140, 13, 8, "and", 0},
    {1079, K::Edit, 209, 139, 25, 12, nullptr, kEdit},
    {1077, K::AutoRadioButton, 58, 152, 42, 10, "Fixed as", 0},
    {1080, K::Edit, 100, 151, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 163, 23, 8, "Widths", 0},
    {1082, K::AutoRadioButton, 58, 174, 107, 10, "Randomly Selected Between", kFirstRadio},
    {1084, K::Edit, 166, 173, 25, 12, nullptr, kEdit},
    {-1, K::Static, 194, 174, 13, 8, "and", 0},
    {1085, K::Edit, 210, 173, 25, 12, nullptr, kEdit},
    {1083, K::AutoRadioButton, 58, 186, 42, 10, "Fixed as", 0},
    {1086, K::Edit, 100, 185, 25, 12, nullptr, kEdit},
    {-1, K::Static, 39, 196, 25, 8, "Centers", 0},
    {1088, K::AutoRadioButton, 58, 207, 141, 10, "Randomly Generated From Input Range", kFirstRadio},
    {1089, K::AutoRadioButton, 58, 219, 177, 10, "Randomly Selected From Inputs (Allow Repeatition)", 0},
    {1090, K::AutoRadioButton, 58, 231, 169, 10, "Randomly Selected From Inputs (No Repeatition)", 0},
    {1070, K::AutoRadioButton, 17, 246, 62, 10, "Load From File", kFirstRadio},
    {1, K::DefPushButton, 62, 271, 50, 16, "OK", WS_GROUP | kTab},  // ends the group of 1070
    {2, K::PushButton, 147, 271, 50, 16, "Cancel", kTab},
};

// 1038: initialization of the Error Correction Algorithm.
const ControlTemplate kErrCorInit[] = {
    {-1, K::GroupBox, 7, 7, 187, 44, nullptr, 0},
    {-1, K::Static, 28, 26, 99, 8, "Maximum Number of RBF Units", 0},
    {1097, K::Edit, 133, 23, 40, 14, nullptr, kEdit},
    {1, K::DefPushButton, 43, 60, 50, 14, "OK", kTab},
    {2, K::PushButton, 109, 60, 50, 14, "Cancel", kTab},
};

// 136, 1039, 1040: a range of exponents, laid out like the dialog 1038.
const ControlTemplate kBoundaries[] = {
    {-1, K::GroupBox, 7, 7, 173, 54, nullptr, 0},
    {-1, K::Static, 28, 23, 60, 8, "Upper Boundary", 0},
    {1098, K::Edit, 100, 20, 50, 14, nullptr, kEdit},
    {-1, K::Static, 28, 42, 60, 8, "Lower Boundary", 0},
    {1099, K::Edit, 100, 39, 50, 14, nullptr, kEdit},
    {1, K::DefPushButton, 35, 70, 50, 14, "OK", kTab},
    {2, K::PushButton, 102, 70, 50, 14, "Cancel", kTab},
};

// 137: the multiplier of the summary plot's x axis.
const ControlTemplate kMultiplier[] = {
    {-1, K::GroupBox, 7, 7, 173, 42, nullptr, 0},
    {-1, K::Static, 35, 26, 40, 8, "Multiplier", 0},
    {1100, K::Edit, 100, 23, 50, 14, nullptr, kEdit},
    {1, K::DefPushButton, 35, 58, 50, 14, "OK", kTab},
    {2, K::PushButton, 102, 58, 50, 14, "Cancel", kTab},
};

// 138: grid of one-dimensional test patterns.
const ControlTemplate kTest1D[] = {
    {-1, K::GroupBox, 7, 7, 177, 63, nullptr, 0},
    {-1, K::Static, 25, 20, 60, 8, "Minimum Value:", 0},
    {1105, K::Edit, 100, 18, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 37, 60, 8, "Maximum Value:", 0},
    {1106, K::Edit, 100, 35, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 54, 62, 8, "Number of Points:", 0},
    {1107, K::Edit, 100, 52, 60, 14, nullptr, kEdit},
    {1, K::DefPushButton, 37, 76, 50, 14, "OK", kTab},
    {2, K::PushButton, 104, 76, 50, 14, "Cancel", kTab},
};

// 139: grid of two-dimensional test patterns.
const ControlTemplate kTest2D[] = {
    {-1, K::GroupBox, 7, 7, 197, 66, "X Dimension", 0},
    {-1, K::Static, 25, 22, 60, 8, "Minimum Value:", 0},
    {1108, K::Edit, 110, 20, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 39, 60, 8, "Maximum Value:", 0},
    {1109, K::Edit, 110, 37, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 56, 62, 8, "Number of Points:", 0},
    {1110, K::Edit, 110, 54, 60, 14, nullptr, kEdit},
    {-1, K::GroupBox, 7, 78, 197, 66, "Y Dimension", 0},
    {-1, K::Static, 25, 93, 60, 8, "Minimum Value:", 0},
    {1111, K::Edit, 110, 91, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 110, 60, 8, "Maximum Value:", 0},
    {1112, K::Edit, 110, 108, 60, 14, nullptr, kEdit},
    {-1, K::Static, 25, 127, 62, 8, "Number of Points:", 0},
    {1113, K::Edit, 110, 125, 60, 14, nullptr, kEdit},
    {1, K::DefPushButton, 47, 151, 50, 14, "OK", kTab},
    {2, K::PushButton, 114, 151, 50, 14, "Cancel", kTab},
};

// 140: settings of online training. The path is left aligned so that its beginning shows.
const ControlTemplate kOnlineSettings[] = {
    {-1, K::GroupBox, 7, 7, 297, 78, nullptr, 0},
    {-1, K::Static, 15, 23, 106, 8, "Current Number of RBF Units:", 0},
    {1116, K::Edit, 125, 21, 50, 14, nullptr, kReadOnly},
    {-1, K::Static, 15, 43, 106, 8, "Extra Number of RBF Units:", 0},
    {1117, K::Edit, 125, 41, 50, 14, nullptr, kEdit},
    {-1, K::Static, 15, 63, 40, 8, "New Data:", 0},
    {1115, K::Edit, 60, 61, 180, 14, nullptr, WS_BORDER | ES_LEFT | ES_AUTOHSCROLL | ES_READONLY | kTab},
    {1114, K::PushButton, 246, 61, 50, 14, "Browse...", kTab},
    {1, K::DefPushButton, 90, 94, 50, 14, "OK", kTab},
    {2, K::PushButton, 171, 94, 50, 14, "Cancel", kTab},
};

#define VANTREL_DIALOG(id, caption, cx, cy, exStyle, controls) \
    { id, caption, cx, cy, kFont, kFontPoints, kDialogStyle, exStyle, controls, Count(controls) }

const DialogTemplate kDialogs[] = {
    VANTREL_DIALOG(100, "About Vantrel", 235, 55, 0, kAbout),
    VANTREL_DIALOG(102, "Vantrel", 647, 358, WS_EX_APPWINDOW, kMain),
    VANTREL_DIALOG(129, "Data Set Information", 211, 155, 0, kDataSetInfo),
    VANTREL_DIALOG(130, "Initialization", 260, 294, 0, kInitialization),
    VANTREL_DIALOG(136, "Set X Range", 187, 91, 0, kBoundaries),
    VANTREL_DIALOG(137, "Set X Range", 187, 79, 0, kMultiplier),
    VANTREL_DIALOG(138, "Set Parameters for 1-D Testing", 191, 96, 0, kTest1D),
    VANTREL_DIALOG(139, "t Parameters for 2-D Testing", 211, 172, 0, kTest2D),
    VANTREL_DIALOG(140, "Settings of Online Training", 311, 116, 0, kOnlineSettings),
    VANTREL_DIALOG(1038, "Error Correction Algorithm -- Initialization", 201, 81, 0, kErrCorInit),
    VANTREL_DIALOG(1039, "Set Y Range", 187, 91, 0, kBoundaries),
    VANTREL_DIALOG(1040, "Set Y Range", 187, 91, 0, kBoundaries),
};

#undef VANTREL_DIALOG

// Right-button menus of the two curve plots: 134 for the iteration plot, 135 for the summary plot.
const MenuItemTemplate kIterationMenu[] = {{32771, "Set X Range"}, {32773, "Set Y Range"}};
const MenuItemTemplate kSummaryMenu[] = {{32772, "Set X Range"}, {32774, "Set Y Range"}};

const MenuTemplate kMenus[] = {
    {134, "Operations", kIterationMenu, Count(kIterationMenu)},
    {135, "Operation", kSummaryMenu, Count(kSummaryMenu)},
};

const StringTemplate kStrings[] = {
    {101, "&About Vantrel..."},
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
    {128, Count(kProgramIconRows), kProgramIconRows, kProgramIconKeys, kProgramIconColors},
};

const ResourceTable kResources = {
    kDialogs, Count(kDialogs), kMenus, Count(kMenus), kStrings, Count(kStrings), kIcons, Count(kIcons),
};

}  // namespace

const ResourceTable& AfxGetResourceTable() { return kResources; }
