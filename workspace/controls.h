// The one table of resource names: every dialog, every control of every dialog, the plots' menus and their
// commands, named after their captions. The templates, the message maps, the data exchange and the runs all
// use these names; a user's session script still types the numbers. OK and Cancel are the framework's IDOK
// and IDCANCEL.
#pragma once

#include <cstddef>

// ---- dialogs, menus, strings, icon ---------------------------------------------------------------------------
constexpr int IDD_ABOUT = 100;
constexpr int IDS_ABOUT = 101;
constexpr int IDD_MAIN = 102;
constexpr int IDI_PROGRAM = 128;
constexpr int IDD_DATA_SET_INFO = 129;
constexpr int IDD_INITIALIZATION = 130;
constexpr int IDR_ITERATION_MENU = 134;
constexpr int IDR_SUMMARY_MENU = 135;
constexpr int IDD_ITERATION_X_RANGE = 136;
constexpr int IDD_SUMMARY_X_RANGE = 137;
constexpr int IDD_TEST_1D = 138;
constexpr int IDD_TEST_2D = 139;
constexpr int IDD_ONLINE_SETTINGS = 140;
constexpr int IDD_ERRCOR_INIT = 1038;
constexpr int IDD_ITERATION_Y_RANGE = 1039;
constexpr int IDD_SUMMARY_Y_RANGE = 1040;

// System menu item of the About box.
constexpr unsigned IDM_ABOUTBOX = 0x0010;

// Right-button menu commands of the curve plots, each "Set X Range" or "Set Y Range".
constexpr unsigned ID_ITERATION_X_RANGE = 32771;
constexpr unsigned ID_SUMMARY_X_RANGE = 32772;
constexpr unsigned ID_ITERATION_Y_RANGE = 32773;
constexpr unsigned ID_SUMMARY_Y_RANGE = 32774;

// ---- the main dialog -------------------------------------------------------------------------------------------
constexpr int IDC_LOAD_DATA = 1009;
constexpr int IDC_START_TRAINING = 1010;           // "Stop Training" during a run
constexpr int IDC_SUMMARY_PLOT = 1012;
constexpr int IDC_ITERATION_PLOT = 1013;
constexpr int IDC_ALGORITHMS = 1014;               // combo box
constexpr int IDC_INFO_LIST = 1015;
constexpr int IDC_NUMBER_OF_ITERATIONS = 1019;
constexpr int IDC_DESIRED_AVERAGE_ERROR = 1020;
constexpr int IDC_DATA_PLOT = 1022;
constexpr int IDC_CURRENT_RBF_UNITS = 1023;        // read-outs 1023 to 1029
constexpr int IDC_CURRENT_ITERATIONS = 1024;
constexpr int IDC_CURRENT_PARTIAL_ERROR = 1025;
constexpr int IDC_CURRENT_TOTAL_ERROR = 1026;      // average or total, as the label 1101 says
constexpr int IDC_CURRENT_PARTIAL_TIME = 1027;
constexpr int IDC_CURRENT_TOTAL_TIME = 1028;       // average or total, as the label 1102 says
constexpr int IDC_CURRENT_TRAINING_SET = 1029;
constexpr int IDC_VERIFICATION = 1038;
constexpr int IDC_CLEAR_CURVES = 1039;
constexpr int IDC_NUMBER_OF_TRIALS = 1047;
constexpr int IDC_ONLINE_TRAINING = 1048;
constexpr int IDC_SAVE_TRAINING_RESULTS = 1055;
constexpr int IDC_TRAINING_PATTERNS = 1056;        // four radios, each a group of its own
constexpr int IDC_TESTING_PATTERNS = 1057;
constexpr int IDC_CREATE_2D_PATTERNS = 1058;
constexpr int IDC_CREATE_1D_PATTERNS = 1059;
constexpr int IDC_ONE_CURVE = 1061;                // the curve radio group
constexpr int IDC_MULTIPLE_CURVES = 1062;
constexpr int IDC_SHOW_INFO = 1063;
constexpr int IDC_INITIALIZATION = 1064;
constexpr int IDC_INFO_ENTRY = 1093;
constexpr int IDC_TOTAL_ERROR_LABEL = 1101;
constexpr int IDC_TOTAL_TIME_LABEL = 1102;

// ---- Data Set Information --------------------------------------------------------------------------------------
constexpr int IDC_NUMBER_OF_INPUTS = 1041;
constexpr int IDC_NUMBER_OF_OUTPUTS = 1042;
constexpr int IDC_CLASSIFICATION = 1043;           // the data set type radio group
constexpr int IDC_APPROXIMATION = 1044;
constexpr int IDC_NUMBER_OF_PATTERNS = 1094;

// ---- Initialization --------------------------------------------------------------------------------------------
constexpr int IDC_LEARNING_CONSTANT = 1103;
constexpr int IDC_MOMENTUM = 1104;
constexpr int IDC_MANUALLY_SELECTION = 1071;
constexpr int IDC_LOAD_FROM_FILE = 1070;
constexpr int IDC_NUMBER_OF_RBF_UNITS = 1096;
// Each parameter group: "Randomly Selected Between" lower "and" upper, or "Fixed as" a value.
constexpr int IDC_INPUT_WEIGHTS_RANDOM = 1091;
constexpr int IDC_INPUT_WEIGHTS_LOWER = 1045;
constexpr int IDC_INPUT_WEIGHTS_UPPER = 1073;
constexpr int IDC_INPUT_WEIGHTS_FIXED = 1092;
constexpr int IDC_INPUT_WEIGHTS_VALUE = 1074;
constexpr int IDC_OUTPUT_WEIGHTS_RANDOM = 1076;
constexpr int IDC_OUTPUT_WEIGHTS_LOWER = 1078;
constexpr int IDC_OUTPUT_WEIGHTS_UPPER = 1079;
constexpr int IDC_OUTPUT_WEIGHTS_FIXED = 1077;
constexpr int IDC_OUTPUT_WEIGHTS_VALUE = 1080;
constexpr int IDC_WIDTHS_RANDOM = 1082;
constexpr int IDC_WIDTHS_LOWER = 1084;
constexpr int IDC_WIDTHS_UPPER = 1085;
constexpr int IDC_WIDTHS_FIXED = 1083;
constexpr int IDC_WIDTHS_VALUE = 1086;
constexpr int IDC_CENTERS_FROM_INPUT_RANGE = 1088;
constexpr int IDC_CENTERS_WITH_REPETITION = 1089;
constexpr int IDC_CENTERS_NO_REPETITION = 1090;

// ---- Error Correction Algorithm -- Initialization --------------------------------------------------------------
constexpr int IDC_MAXIMUM_RBF_UNITS = 1097;

// ---- the range dialogs of the curve plots ----------------------------------------------------------------------
constexpr int IDC_UPPER_BOUNDARY = 1098;
constexpr int IDC_LOWER_BOUNDARY = 1099;
constexpr int IDC_MULTIPLIER = 1100;

// ---- the grids of Verification ---------------------------------------------------------------------------------
constexpr int IDC_1D_MINIMUM_VALUE = 1105;
constexpr int IDC_1D_MAXIMUM_VALUE = 1106;
constexpr int IDC_1D_NUMBER_OF_POINTS = 1107;
constexpr int IDC_X_MINIMUM_VALUE = 1108;
constexpr int IDC_X_MAXIMUM_VALUE = 1109;
constexpr int IDC_X_NUMBER_OF_POINTS = 1110;
constexpr int IDC_Y_MINIMUM_VALUE = 1111;
constexpr int IDC_Y_MAXIMUM_VALUE = 1112;
constexpr int IDC_Y_NUMBER_OF_POINTS = 1113;

// ---- Settings of Online Training -------------------------------------------------------------------------------
constexpr int IDC_BROWSE = 1114;
constexpr int IDC_NEW_DATA = 1115;
constexpr int IDC_CURRENT_NUMBER_OF_RBF_UNITS = 1116;
constexpr int IDC_EXTRA_NUMBER_OF_RBF_UNITS = 1117;

// ---- named sets ------------------------------------------------------------------------------------------------

// A fixed list of controls, in the order in which they are changed.
struct ControlList {
    const int* first;
    std::size_t count;
    constexpr const int* begin() const { return first; }
    constexpr const int* end() const { return first + count; }
};

namespace control_sets {
// The controls that would change the data, the network or the algorithm, in the order a run disables them.
// Online training takes the first three; Verification, last, comes back only after a normal end.
constexpr int kLockedByRun[] = {IDC_LOAD_DATA, IDC_ALGORITHMS, IDC_INITIALIZATION, IDC_SAVE_TRAINING_RESULTS,
                                IDC_VERIFICATION};
}  // namespace control_sets

// Disabled by Start, in this order; a normal end of a run enables them again in the same order.
constexpr ControlList kRunLockedControls{control_sets::kLockedByRun, 5};
// Enabled again by a run that was stopped or failed: Verification stays disabled.
constexpr ControlList kRunUnlockedAfterStop{control_sets::kLockedByRun, 4};
// Disabled while Online Training is checked.
constexpr ControlList kOnlineLockedControls{control_sets::kLockedByRun, 3};
