// The draw of a new network from the Initialization settings. The order of the steps and loops fixes which
// random number goes where, so that a seed reproduces a network exactly.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "network/network.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "workspace/workspace.h"

namespace {

// One of 10000 evenly spaced values from a up to, but never reaching, b.
double Draw(double a, double b) {
    const int r = std::rand() % 10000;
    const double f = r * 0.0001;
    return (b - a) * f + a;
}

// Fills count elements of a group and its initial copy: drawn in [min, max) in random mode (0), else fixed.
// A fixed group consumes no random number.
void FillGroup(double* values, double* initial, UINT count, int mode, double min, double max, double fixed) {
    for (UINT k = 0; k < count; ++k) {
        const double v = mode == 0 ? Draw(min, max) : fixed;
        values[k] = v;
        initial[k] = v;
    }
}

void CopyRow(CVantrelDlg& dlg, UINT unit, UINT pattern) {
    const size_t n = dlg.m_nInputs;
    const double* row = dlg.m_pInputs + pattern * n;
    for (size_t d = 0; d < n; ++d) {
        dlg.m_pCenters[unit * n + d] = row[d];
        dlg.m_pInitCenters[unit * n + d] = row[d];
    }
}

// Mode 0: each center element drawn within the range of its input over all patterns.
void CentersFromInputRange(CVantrelDlg& dlg) {
    const UINT n = dlg.m_nInputs;
    std::vector<double> lo(dlg.m_pInputs, dlg.m_pInputs + n);
    std::vector<double> hi(lo);
    for (UINT p = 0; p < dlg.m_nPatterns; ++p) {
        for (UINT d = 0; d < n; ++d) {
            const double v = dlg.m_pInputs[static_cast<size_t>(p) * n + d];
            if (v > hi[d]) hi[d] = v;
            if (v < lo[d]) lo[d] = v;
        }
    }
    for (UINT h = 0; h < dlg.m_nUnits; ++h) {
        for (UINT d = 0; d < n; ++d) {
            const double v = Draw(lo[d], hi[d]);
            dlg.m_pCenters[static_cast<size_t>(h) * n + d] = v;
            dlg.m_pInitCenters[static_cast<size_t>(h) * n + d] = v;
        }
    }
}

UINT DrawPattern(const CVantrelDlg& dlg) { return static_cast<UINT>(std::rand()) % dlg.m_nPatterns; }

// Mode 1: a random pattern row per unit; two units may share one.
void CentersFromInputs(CVantrelDlg& dlg) {
    for (UINT h = 0; h < dlg.m_nUnits; ++h) CopyRow(dlg, h, DrawPattern(dlg));
}

// Mode 2: a random pattern row per unit, each row at most once.
void CentersFromInputsUnique(CVantrelDlg& dlg) {
    const UINT kNoEntry = 0xFFFFFFFFu;
    std::vector<UINT> used(dlg.m_nUnits, kNoEntry);
    for (UINT h = 0; h < dlg.m_nUnits; ++h) {
        AfxThrowIfAbandoned();  // the search grows with the units already placed
        UINT q = DrawPattern(dlg);
        // Once every row is taken, no fresh row exists and the search would never end. The Initialization
        // dialog refuses more units than patterns in this mode, so this only guards a stale count: the rest
        // of the units then take rows with repetition.
        const bool fresh = h < dlg.m_nPatterns;
        for (UINT k = 0; fresh && k < dlg.m_nUnits && used[k] != kNoEntry;) {
            if (used[k] == q) {
                q = DrawPattern(dlg);
                k = 0;
            } else {
                ++k;
            }
        }
        used[h] = q;
        CopyRow(dlg, h, q);
    }
}

}  // namespace

void CVantrelDlg::InitializeNetwork() {
    const CInitializationDlg& s = m_dlgInitialization;
    const UINT u = m_nUnits;
    std::srand(GetTickCount());

    FillGroup(m_pInputWeights, m_pInitInputWeights, u * m_nInputs, s.m_nInputWeightMode, s.m_dInputWeightMin,
              s.m_dInputWeightMax, s.m_dInputWeightFixed);
    FillGroup(m_pOutputWeights, m_pInitOutputWeights, (u + 1) * m_nOutputs, s.m_nOutputWeightMode,
              s.m_dOutputWeightMin, s.m_dOutputWeightMax, s.m_dOutputWeightFixed);
    FillGroup(m_pWidths, m_pInitWidths, u, s.m_nWidthMode, s.m_dWidthMin, s.m_dWidthMax, s.m_dWidthFixed);

    // With no pattern there is no row to pick and no range to search: the centers stay at 0.0 and no random
    // number is taken for them.
    if (m_nPatterns == 0) {
        const size_t count = static_cast<size_t>(u) * m_nInputs;
        if (count > 0) {
            std::memset(m_pCenters, 0, sizeof(double) * count);
            std::memset(m_pInitCenters, 0, sizeof(double) * count);
        }
        return;
    }
    if (s.m_nCenterMode == 0)
        CentersFromInputRange(*this);
    else if (s.m_nCenterMode == 1)
        CentersFromInputs(*this);
    else
        CentersFromInputsUnique(*this);
}
