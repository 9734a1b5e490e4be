// The workspace's inversion: InvertHessian, LUdcmp and LUBackSubstitute.
#include <vector>

#include "network/kernels.h"
#include "network/matrix.h"
#include "network/reference.h"
#include "workspace/workspace.h"

void CVantrelDlg::LUdcmp(double* a, int n, int* indx) { kernels::FactorLU(a, n, indx); }

void CVantrelDlg::LUBackSubstitute(double* a, int n, int* indx, double* b, double* x) {
    reference::LUBackSubstitute(a, n, indx, b, x);
}

void CVantrelDlg::InvertHessian() {
    const int n = static_cast<int>(m_nParams);
    std::vector<int> indx(n);
    LUdcmp(m_pHessian, n, indx.data());
    kernels::InvertFromFactors(m_pHessian, n, indx.data(), m_pHessianInv);
}
