// The four accumulators of gradient and quasi-Hessian. They differ in two questions only: does the row
// carry the input weights (the Improved forms), and is the quasi-Hessian wanted (second order)?
#include "network/kernels.h"
#include "network/network.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

double Accumulate(CVantrelDlg& dlg, bool improved, bool secondOrder) {
    if (secondOrder)
        ReplaceBlocks(dlg, {Block::Gradient, Block::Hessian, Block::HessianInv}, CountsOf(dlg));
    else
        ReplaceBlocks(dlg, {Block::Gradient}, CountsOf(dlg));
    // The kernel writes every element of the quasi-Hessian, and leaves the inverse, its spare storage on the
    // way, cleared until InvertHessian fills it.
    return kernels::AccumulateDerivatives(ViewOf(dlg, improved), dlg.m_nParams,
                                          secondOrder ? dlg.m_pHessian : nullptr, dlg.m_pGradient,
                                          secondOrder ? dlg.m_pHessianInv : nullptr);
}

}  // namespace

void CVantrelDlg::AccumulateSecondOrder() { Accumulate(*this, false, true); }

void CVantrelDlg::AccumulateImprovedSecondOrder() { Accumulate(*this, true, true); }

void CVantrelDlg::AccumulateGradient() { Accumulate(*this, false, false); }

void CVantrelDlg::AccumulateImprovedGradient() { Accumulate(*this, true, false); }

double AccumulateGradientAndError(CVantrelDlg& dlg, bool improved) {
    return Accumulate(dlg, improved, false) / static_cast<double>(dlg.m_nPatterns);
}
