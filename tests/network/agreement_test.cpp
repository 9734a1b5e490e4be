// The fast kernels against the plain loops on every shape the benchmarks time: quasi-Hessian and gradient
// for 1000 and 10000 patterns, and the inverse of the damped quasi-Hessian.
#include <gtest/gtest.h>

#include <cblas.h>

#include <cmath>
#include <vector>

#include "network/reference.h"
#include "network/samples.h"
#include "network_test_support.h"
#include "workspace/workspace.h"

namespace {

// Two inputs under the layout without input weights: 1 + 4 * units parameters.
constexpr UINT kInputs = 2;
constexpr UINT kBenchParams[] = {101, 401, 1201};
constexpr UINT kBenchPatterns[] = {1000, 10000};
constexpr double kAgreement = 1e-10;

// ||A * X - I||, Frobenius.
double RightResidual(const std::vector<double>& a, const double* x, int n) {
    std::vector<double> product(a.size());
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, n, n, n, 1.0, a.data(), n, x, n, 0.0, product.data(), n);
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const double d = product[static_cast<size_t>(i) * n + j] - (i == j ? 1.0 : 0.0);
            sum += d * d;
        }
    return std::sqrt(sum);
}

}  // namespace

TEST(FastKernelsAgreeWithPlainLoops, QuasiHessianAndGradientOnEveryBenchmarkedShape) {
    for (UINT params : kBenchParams) {
        for (UINT patterns : kBenchPatterns) {
            CVantrelDlg dlg;
            MakeSample(dlg, {patterns, kInputs, UnitsForParams(params, kInputs), 0, params + patterns});
            ASSERT_EQ(dlg.m_nParams, params);
            const size_t n = params;
            std::vector<double> hessian(n * n), gradient(n);
            reference::Accumulate(ViewOf(dlg, false), dlg.m_nParams, hessian.data(), gradient.data());
            dlg.AccumulateSecondOrder();
            EXPECT_LT(RelativeDifference(dlg.m_pHessian, hessian.data(), n * n), kAgreement)
                << "n=" << params << " patterns=" << patterns;
            EXPECT_LT(RelativeDifference(dlg.m_pGradient, gradient.data(), n), kAgreement)
                << "n=" << params << " patterns=" << patterns;
        }
    }
}

TEST(FastKernelsAgreeWithPlainLoops, InverseOfDampedQuasiHessianOnEveryBenchmarkedSize) {
    for (UINT params : kBenchParams) {
        CVantrelDlg dlg;
        MakeSample(dlg, {1000, kInputs, UnitsForParams(params, kInputs), 0, params});
        dlg.AccumulateSecondOrder();
        const size_t n = params;
        for (size_t k = 0; k < n; ++k) dlg.m_pHessian[k * n + k] += kSampleDamping;
        const std::vector<double> matrix(dlg.m_pHessian, dlg.m_pHessian + n * n);
        std::vector<double> factors = matrix, inverse(n * n);
        reference::Invert(factors.data(), static_cast<int>(n), inverse.data());
        dlg.InvertHessian();
        EXPECT_LT(RelativeDifference(dlg.m_pHessianInv, inverse.data(), n * n), kAgreement) << "n=" << params;
        // The step multiplies the inverse from the left onto the gradient: its residual on that side must be
        // as small as that of the column-by-column substitution.
        const double fast = RightResidual(matrix, dlg.m_pHessianInv, static_cast<int>(n));
        const double plain = RightResidual(matrix, inverse.data(), static_cast<int>(n));
        EXPECT_LT(fast, 3 * plain + 1e-14) << "n=" << params << " residual ||A X - I|| of the fast inverse";
    }
}
