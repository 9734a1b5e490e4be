// The workspace's network and patterns as the engine sees them: views of its heap blocks, and the
// initialization settings of its dialog as a plain value. The network members of CVantrelDlg
// (workspace/numerics.cpp) hand these to the engine.
#pragma once

#include "engine/draw.h"
#include "engine/network.h"

class CVantrelDlg;
class CInitializationDlg;

engine::CNetwork NetworkOf(const CVantrelDlg& dlg);
engine::CNetwork InitialNetworkOf(const CVantrelDlg& dlg);
engine::CPatterns PatternsOf(const CVantrelDlg& dlg);
// The view with the Jacobian form chosen by improved (the accumulator decides the form, not m_nAlgorithm).
engine::CNetworkView ViewOf(const CVantrelDlg& dlg, bool improved);
// The layout that PackParameters uses for the workspace's algorithm, units, inputs and outputs.
engine::CParamLayout LayoutOf(const CVantrelDlg& dlg);
engine::CInitSettings InitSettingsOf(const CInitializationDlg& dlg);

// The network's output for one input vector of m_nInputs values. Not part of a run: nothing cancels it.
double NetworkOutput(const CVantrelDlg& dlg, const double* x);
