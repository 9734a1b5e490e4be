// Network initialization: the pieces of OnInitialization that stand on their own, for the Initialization
// dialog's OK, the Load From File path and tests.
#pragma once

#include <vector>

#include "platform/strings.h"
#include "platform/types.h"

class CVantrelDlg;
class CInitializationDlg;

// Replaces the eight network arrays by blocks for units (zeroed) and sets m_nUnits. When memory runs out it
// shows "Number of RBF units is too large!" and leaves the network as it was.
bool ReplaceNetworkArrays(CVantrelDlg& dlg, UINT units);

// The message of the first test of the Initialization dialog's OK that fails, or null when all pass.
const char* InitializationError(const CInitializationDlg& dlg);

// The lines of the settings summary, in order.
std::vector<CString> SettingsLines(const CVantrelDlg& dlg);
