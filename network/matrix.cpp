// The workspace's inversion: InvertHessian, LUdcmp and LUBackSubstitute, and the solve of the damped step.
#include <vector>

#include "network/kernels.h"
#include "network/matrix.h"
#include "workspace/workspace.h"

void CVantrelDlg::LUdcmp(double* a, int n, int* indx) { kernels::FactorLU(a, n, indx); }

void LUBackSubstitute(const double* a, int n, const int* indx, const double* b, double* x) {
    for (int i = 0; i < n; ++i) x[i] = b[i];
    int f = -1;  // first index with a non-zero value; the terms before it are all 0
    for (int i = 0; i < n; ++i) {
        const int p = indx[i];
        double s = x[p];
        x[p] = x[i];
        if (f >= 0) {
            for (int j = f; j < i; ++j) s -= a[i * n + j] * x[j];
        } else if (s != 0.0) {
            f = i;
        }
        x[i] = s;
    }
    for (int i = n - 1; i >= 0; --i) {
        double s = x[i];
        for (int j = i + 1; j < n; ++j) s -= a[i * n + j] * x[j];
        x[i] = s / a[i * n + i];
    }
}

void CVantrelDlg::LUBackSubstitute(double* a, int n, int* indx, double* b, double* x) {
    ::LUBackSubstitute(a, n, indx, b, x);
}

void CVantrelDlg::InvertHessian() {
    const int n = static_cast<int>(m_nParams);
    std::vector<int> indx(n);
    LUdcmp(m_pHessian, n, indx.data());
    kernels::InvertFromFactors(m_pHessian, n, indx.data(), m_pHessianInv);
}

void CVantrelDlg::SolveHessian(double* x) {
    const int n = static_cast<int>(m_nParams);
    std::vector<int> indx(n);
    LUdcmp(m_pHessian, n, indx.data());
    kernels::SolveWithFactors(m_pHessian, n, indx.data(), m_pGradient, x);
}
