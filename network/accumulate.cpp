// The four accumulators of gradient and quasi-Hessian. They differ in two questions only: does the row
// carry the input weights (the Improved forms), and is the quasi-Hessian wanted (second order)?
#include <cstring>

#include "network/kernels.h"
#include "network/network.h"
#include "workspace/workspace.h"

namespace {

// Releases a block and allocates it anew with count elements.
void Reallocate(double*& block, size_t count) {
    delete[] block;
    block = new double[count];
}

void Accumulate(CVantrelDlg& dlg, bool improved, bool secondOrder) {
    const size_t n = dlg.m_nParams;
    Reallocate(dlg.m_pGradient, n);
    if (secondOrder) {
        // The kernel writes every element of the quasi-Hessian; the inverse stays cleared until InvertHessian
        // fills it.
        Reallocate(dlg.m_pHessian, n * n);
        Reallocate(dlg.m_pHessianInv, n * n);
        if (n > 0) std::memset(dlg.m_pHessianInv, 0, sizeof(double) * n * n);
    }
    kernels::AccumulateDerivatives(ViewOf(dlg, improved), dlg.m_nParams, secondOrder ? dlg.m_pHessian : nullptr,
                                   dlg.m_pGradient);
}

}  // namespace

void CVantrelDlg::AccumulateSecondOrder() { Accumulate(*this, false, true); }

void CVantrelDlg::AccumulateImprovedSecondOrder() { Accumulate(*this, true, true); }

void CVantrelDlg::AccumulateGradient() { Accumulate(*this, false, false); }

void CVantrelDlg::AccumulateImprovedGradient() { Accumulate(*this, true, false); }
