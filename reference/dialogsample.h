// The sample problems of samples.h in a workspace, for the tests and benchmarks of the window's side.
#pragma once

#include "reference/samples.h"

class CVantrelDlg;

// Replaces the workspace's data set and network by a sample of that shape (one output), allocates the
// outputs and packs the parameters, so m_nParams is that of the layout.
void MakeSample(CVantrelDlg& dlg, const CSampleShape& shape);
