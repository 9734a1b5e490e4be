// The four accumulators: every Jacobian form against central differences of e, the fixed cases, and the
// blocked kernel against the plain per-pattern loops.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "network/kernels.h"
#include "network/network.h"
#include "reference/reference.h"
#include "network_test_support.h"
#include "workspace/workspace.h"

namespace {

struct Form {
    const char* name;
    void (CVantrelDlg::*accumulate)();
    bool improved;
    bool secondOrder;
};

const Form kForms[] = {
    {"AccumulateSecondOrder", &CVantrelDlg::AccumulateSecondOrder, false, true},
    {"AccumulateImprovedSecondOrder", &CVantrelDlg::AccumulateImprovedSecondOrder, true, true},
    {"AccumulateGradient", &CVantrelDlg::AccumulateGradient, false, false},
    {"AccumulateImprovedGradient", &CVantrelDlg::AccumulateImprovedGradient, true, false},
};

// Rows of d e_p / d param_k by central differences: jac[p * n + k].
std::vector<double> NumericJacobian(CVantrelDlg& dlg) {
    const UINT n = dlg.m_nParams, P = dlg.m_nPatterns;
    std::vector<double> jac(static_cast<size_t>(P) * n), plus(P);
    for (UINT k = 0; k < n; ++k) {
        const double saved = dlg.m_pParams[k];
        const double step = 1e-6 * std::fmax(1.0, std::fabs(saved));
        dlg.m_pParams[k] = saved + step;
        dlg.UnpackParameters();
        dlg.ComputeOutputs();
        for (UINT p = 0; p < P; ++p) plus[p] = dlg.m_pTargets[p] - dlg.m_pOutputs[p];
        dlg.m_pParams[k] = saved - step;
        dlg.UnpackParameters();
        dlg.ComputeOutputs();
        for (UINT p = 0; p < P; ++p)
            jac[static_cast<size_t>(p) * n + k] = (plus[p] - (dlg.m_pTargets[p] - dlg.m_pOutputs[p])) / (2 * step);
        dlg.m_pParams[k] = saved;
    }
    dlg.UnpackParameters();
    dlg.ComputeOutputs();
    return jac;
}

}  // namespace

TEST(Accumulators, EveryFormMatchesCentralDifferencesOfTheError) {
    for (const Form& form : kForms) {
        CVantrelDlg dlg;
        MakeSample(dlg, {6, 3, 4, form.improved ? 1 : 0, 11});
        const UINT n = dlg.m_nParams, P = dlg.m_nPatterns;
        const std::vector<double> jac = NumericJacobian(dlg);
        (dlg.*form.accumulate)();
        for (UINT i = 0; i < n; ++i) {
            double g = 0.0;
            for (UINT p = 0; p < P; ++p) g += (dlg.m_pTargets[p] - dlg.m_pOutputs[p]) * jac[p * n + i];
            EXPECT_NEAR(dlg.m_pGradient[i], g, 1e-7) << form.name << " gradient " << i;
            if (!form.secondOrder) continue;
            for (UINT j = 0; j < n; ++j) {
                double h = 0.0;
                for (UINT p = 0; p < P; ++p) h += jac[p * n + i] * jac[p * n + j];
                EXPECT_NEAR(dlg.m_pHessian[i * n + j], h, 1e-7) << form.name << " quasi-Hessian " << i << "," << j;
            }
        }
    }
}

TEST(Accumulators, NoUnitsGiveMinusSumOfErrorsAndPatternCount) {
    CVantrelDlg dlg;
    MakeSample(dlg, {5, 2, 0, 0, 4});
    ASSERT_EQ(dlg.m_nParams, 1u);
    dlg.AccumulateSecondOrder();
    double sum = 0.0;
    for (int p = 0; p < 5; ++p) sum += dlg.m_pTargets[p] - dlg.m_pOutputWeights[0];
    EXPECT_NEAR(dlg.m_pGradient[0], -sum, 1e-14);
    EXPECT_EQ(dlg.m_pHessian[0], 5.0);
    EXPECT_EQ(dlg.m_pHessianInv[0], 0.0);
}

TEST(Accumulators, QuasiHessianIsSymmetricWithNonNegativeDiagonalAndInverseCleared) {
    CVantrelDlg dlg;
    MakeSample(dlg, {kernels::kSplitPatterns + 9, 2, 7, 1, 5});
    dlg.AccumulateImprovedSecondOrder();
    const UINT n = dlg.m_nParams;
    for (UINT i = 0; i < n; ++i) {
        EXPECT_GE(dlg.m_pHessian[i * n + i], 0.0) << "diagonal " << i;
        for (UINT j = 0; j < n; ++j) {
            ASSERT_EQ(dlg.m_pHessian[i * n + j], dlg.m_pHessian[j * n + i]) << i << "," << j;
            ASSERT_EQ(dlg.m_pHessianInv[i * n + j], 0.0) << i << "," << j;
        }
    }
}

TEST(Accumulators, InputWeightEntryIsCenterEntryTimesMinusInputWhenWeightsAreOne) {
    CVantrelDlg dlg;
    MakeSample(dlg, {1, 3, 1, 1, 6});
    for (int i = 0; i < 3; ++i) dlg.m_pInputWeights[i] = 1.0;
    dlg.PackParameters();
    dlg.AccumulateImprovedGradient();
    const CParamLayout layout = LayoutOf(dlg);
    for (UINT i = 0; i < 3; ++i)
        EXPECT_NEAR(dlg.m_pGradient[layout.InputWeights() + i],
                    -dlg.m_pInputs[i] * dlg.m_pGradient[layout.Centers() + i], 1e-15)
            << "input " << i;
}

TEST(Accumulators, FirstOrderFormsLeaveQuasiHessianAndInverseAlone) {
    CVantrelDlg dlg;
    MakeSample(dlg, {4, 2, 3, 0, 8});
    dlg.AccumulateGradient();
    EXPECT_EQ(dlg.m_pHessian, nullptr);
    EXPECT_EQ(dlg.m_pHessianInv, nullptr);
    dlg.AccumulateSecondOrder();
    const double* hessian = dlg.m_pHessian;
    const double first = hessian[0];
    dlg.m_nAlgorithm = 4;
    dlg.PackParameters();
    dlg.AccumulateImprovedGradient();
    EXPECT_EQ(dlg.m_pHessian, hessian);
    EXPECT_EQ(dlg.m_pHessian[0], first);
}

TEST(Accumulators, BlockedKernelAgreesWithPlainLoopsAcrossRowBlocks) {
    // Two halves from kSplitPatterns on; 4103 gives each half two blocks of at most 2048.
    for (UINT patterns : {0u, 1u, kernels::kSplitPatterns - 1, kernels::kSplitPatterns, 4103u}) {
        for (bool improved : {false, true}) {
            CVantrelDlg dlg;
            MakeSample(dlg, {patterns, 2, 9, improved ? 4 : 3, patterns + 1});
            const CNetworkView view = ViewOf(dlg, improved);
            const size_t n = dlg.m_nParams;
            // The kernel must write every element: start from NaNs where it would otherwise find garbage.
            std::vector<double> fast(n * n, std::numeric_limits<double>::quiet_NaN()), fastGradient(n);
            std::vector<double> spare(n * n, std::numeric_limits<double>::quiet_NaN());
            std::vector<double> plain(n * n), plainGradient(n);
            const double squares = kernels::AccumulateDerivatives(view, dlg.m_nParams, fast.data(),
                                                                  fastGradient.data(), spare.data());
            EXPECT_EQ(squares, kernels::SumSquaredErrors(view, nullptr)) << "P=" << patterns;
            for (size_t k = 0; k < n * n; ++k) ASSERT_EQ(spare[k], 0.0) << "spare storage left uncleared at " << k;
            reference::Accumulate(view, dlg.m_nParams, plain.data(), plainGradient.data());
            const char* form = improved ? "improved" : "plain";
            if (patterns == 0) {
                for (size_t k = 0; k < n * n; ++k) ASSERT_EQ(fast[k], 0.0) << form << " element " << k;
                continue;
            }
            EXPECT_LT(RelativeDifference(fast.data(), plain.data(), n * n), 1e-13) << form << " P=" << patterns;
            EXPECT_LT(RelativeDifference(fastGradient.data(), plainGradient.data(), n), 1e-13)
                << form << " P=" << patterns;
        }
    }
}

TEST(Accumulators, ResultsAndErrorAreTheSameOnOneCoreAsOnAll) {
    CVantrelDlg dlg;
    MakeSample(dlg, {2017, 2, 40, 0, 8});  // large enough for two threads
    const size_t n = dlg.m_nParams;
    dlg.AccumulateSecondOrder();
    const std::vector<double> hessian(dlg.m_pHessian, dlg.m_pHessian + n * n);
    const std::vector<double> gradient(dlg.m_pGradient, dlg.m_pGradient + n);
    const double error = AccumulateGradientAndError(dlg, false);
    EXPECT_EQ(error, dlg.ComputeError()) << "the first-order pass must give exactly the error measure";
    kernels::LimitThreads(1);
    dlg.AccumulateSecondOrder();
    const double oneCoreError = dlg.ComputeError();
    kernels::LimitThreads(0);
    EXPECT_EQ(oneCoreError, error);
    EXPECT_EQ(std::vector<double>(dlg.m_pGradient, dlg.m_pGradient + n), gradient);
    EXPECT_EQ(std::vector<double>(dlg.m_pHessian, dlg.m_pHessian + n * n), hessian);
}

TEST(ExpArray, AgreesWithExpToRoundingIncludingInfinitiesAndNaN) {
    std::vector<double> in = {0.0, -1e-300, 1.0, -0.5, -700.0, -745.2, -800.0, 709.0, 710.0,
                              -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    for (int k = 0; k < 200; ++k) in.push_back(-30.0 + 0.173 * k);
    std::vector<double> out(in.size());
    kernels::ExpArray(in.data(), out.data(), in.size());
    for (size_t k = 0; k < in.size(); ++k) {
        const double expected = std::exp(in[k]);
        if (std::isnan(expected))
            EXPECT_TRUE(std::isnan(out[k])) << "exp(NaN) = " << out[k];
        else if (std::isinf(expected) || expected == 0.0)
            EXPECT_EQ(out[k], expected) << "exp(" << in[k] << ")";
        else
            EXPECT_NEAR(out[k], expected, 4e-16 * expected + 1e-320) << "exp(" << in[k] << ")";
    }
}

TEST(Accumulators, StaleParameterCountNeverWritesOutsideItsRow) {
    // m_nParams of another layout is the caller's fault; the rows still fit every entry of their form.
    CVantrelDlg dlg;
    MakeSample(dlg, {3, 2, 2, 0, 9});
    dlg.m_nParams = 4;  // shorter than the layout's 9
    dlg.AccumulateImprovedSecondOrder();
    std::vector<double> plain(16), gradient(4);
    reference::Accumulate(ViewOf(dlg, true), 4, plain.data(), gradient.data());
    for (int k = 0; k < 16; ++k) EXPECT_NEAR(dlg.m_pHessian[k], plain[k], 1e-14) << k;
}
