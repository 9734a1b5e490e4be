// The accumulators: every Jacobian form against central differences of e, the fixed cases, and the blocked
// kernel against the plain per-pattern loops, on one core and on all.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "engine/kernels.h"
#include "network_test_support.h"
#include "reference/reference.h"

namespace {

using engine::CCancelToken;
using engine::UINT;
namespace kernels = engine::kernels;

// Rows of d e_p / d param_k by central differences: jac[p * n + k].
std::vector<double> NumericJacobian(CSample& s) {
    engine::CNetworkBuffers& b = s.buffers;
    const UINT n = s.Step().nParams, P = b.Patterns();
    double* params = s.Step().pParams;
    std::vector<double> jac(static_cast<size_t>(P) * n), plus(P);
    for (UINT k = 0; k < n; ++k) {
        const double saved = params[k];
        const double step = 1e-6 * std::fmax(1.0, std::fabs(saved));
        params[k] = saved + step;
        b.UnpackParameters();
        b.ComputeOutputs();
        for (UINT p = 0; p < P; ++p) plus[p] = s.Targets()[p] - b.Outputs()[p];
        params[k] = saved - step;
        b.UnpackParameters();
        b.ComputeOutputs();
        for (UINT p = 0; p < P; ++p)
            jac[static_cast<size_t>(p) * n + k] = (plus[p] - (s.Targets()[p] - b.Outputs()[p])) / (2 * step);
        params[k] = saved;
    }
    b.UnpackParameters();
    b.ComputeOutputs();
    return jac;
}

}  // namespace

TEST(Accumulators, EveryFormMatchesCentralDifferencesOfTheError) {
    for (bool improved : {false, true})
        for (bool secondOrder : {true, false}) {
            CSample s({6, 3, 4, improved ? 1 : 0, 11});
            const UINT n = s.Step().nParams, P = s.buffers.Patterns();
            const std::vector<double> jac = NumericJacobian(s);
            s.buffers.Accumulate(improved, secondOrder);
            const engine::CStepArrays a = s.Step();
            const char* form = improved ? (secondOrder ? "improved second order" : "improved gradient")
                                        : (secondOrder ? "second order" : "gradient");
            for (UINT i = 0; i < n; ++i) {
                double g = 0.0;
                for (UINT p = 0; p < P; ++p) g += (s.Targets()[p] - s.buffers.Outputs()[p]) * jac[p * n + i];
                EXPECT_NEAR(a.pGradient[i], g, 1e-7) << form << " gradient " << i;
                for (UINT j = 0; secondOrder && j < n; ++j) {
                    double h = 0.0;
                    for (UINT p = 0; p < P; ++p) h += jac[p * n + i] * jac[p * n + j];
                    EXPECT_NEAR(a.pHessian[i * n + j], h, 1e-7) << form << " quasi-Hessian " << i << "," << j;
                }
            }
        }
}

TEST(Accumulators, NoUnitsGiveMinusSumOfErrorsAndPatternCount) {
    CSample s({5, 2, 0, 0, 4});
    ASSERT_EQ(s.Step().nParams, 1u);
    s.buffers.Accumulate(false, true);
    double sum = 0.0;
    for (int p = 0; p < 5; ++p) sum += s.Targets()[p] - s.Net().pOutputWeights[0];
    EXPECT_NEAR(s.Step().pGradient[0], -sum, 1e-14);
    EXPECT_EQ(s.Step().pHessian[0], 5.0);
}

TEST(Accumulators, QuasiHessianIsSymmetricWithNonNegativeDiagonal) {
    CSample s({4105, 2, 7, 1, 5});  // three blocks, in parts
    s.buffers.Accumulate(true, true);
    const engine::CStepArrays a = s.Step();
    const UINT n = a.nParams;
    for (UINT i = 0; i < n; ++i) {
        EXPECT_GE(a.pHessian[i * n + i], 0.0) << "diagonal " << i;
        for (UINT j = 0; j < n; ++j)
            ASSERT_EQ(a.pHessian[i * n + j], a.pHessian[j * n + i]) << "not symmetric at " << i << "," << j;
    }
}

TEST(Accumulators, BlockedKernelAgreesWithPlainLoopsAcrossRowBlocks) {
    // Chunks of 512 patterns; 4103 gives nine, in parts of two.
    for (UINT patterns : {0u, 1u, 512u, 513u, 4103u}) {
        for (bool improved : {false, true}) {
            CSample s({patterns, 2, 9, improved ? 4 : 3, patterns + 1});
            const engine::CNetworkView view = s.View(improved);
            const UINT nParams = s.Step().nParams;
            const size_t n = nParams;
            // The kernel must write every element: start from NaNs where it would otherwise find garbage.
            std::vector<double> fast(n * n, std::numeric_limits<double>::quiet_NaN()), fastGradient(n);
            std::vector<double> spare(n * n, std::numeric_limits<double>::quiet_NaN());
            std::vector<double> plain(n * n), plainGradient(n);
            const double squares = kernels::AccumulateDerivatives(view, nParams, fast.data(), fastGradient.data(),
                                                                  spare.data(), CCancelToken::Never());
            EXPECT_EQ(squares, kernels::SumSquaredErrors(view, nullptr, CCancelToken::Never())) << "P=" << patterns;
            reference::Accumulate(view, nParams, plain.data(), plainGradient.data());
            const char* form = improved ? "improved" : "plain";
            if (patterns == 0) {
                for (size_t k = 0; k < n * n; ++k) ASSERT_EQ(fast[k], 0.0) << form << " element " << k;
                continue;
            }
            EXPECT_LT(RelativeDifference(fast.data(), plain.data(), n * n), 1e-13) << form << " P=" << patterns;
            EXPECT_LT(RelativeDifference(fastGradient.data(), plainGradient.data(), n), 1e-13)
                << form << " gradient P=" << patterns;
        }
    }
}

namespace {

// The sums of the patterns first .. first + count - 1 alone: gradient, quasi-Hessian and sum of e * e.
std::vector<double> SumsOf(CSample& s, UINT first, UINT count, bool improved) {
    engine::CNetworkView view = s.View(improved);
    view.pInputs += size_t(first) * view.layout.nInputs;
    view.pTargets += first;
    view.nPatterns = count;
    const UINT nParams = s.Step().nParams;
    const size_t n = nParams;
    std::vector<double> sums(n + n * n + 1), spare(n * n);
    sums[n + n * n] = kernels::AccumulateDerivatives(view, nParams, sums.data() + n, sums.data(), spare.data(),
                                                     CCancelToken::Never());
    return sums;
}

}  // namespace

TEST(Accumulators, AlignedRunsOfChunksSummedApartGiveTheWholeSumsBitForBit) {
    // What a cluster relies on: partitions of a power of two of chunks, each summed where it lies and added
    // by the tree, end as the bits of one process, on one thread or on all.
    for (UINT patterns : {700u, 5000u, 9217u}) {
        for (bool improved : {false, true}) {
            CSample s({patterns, 3, 7, improved ? 1 : 0, patterns});
            for (int threads : {1, 0}) {
                kernels::LimitThreads(threads);
                const std::vector<double> whole = SumsOf(s, 0, patterns, improved);
                for (UINT span : {1u, 2u, 8u}) {
                    const UINT rows = span * kernels::kChunkPatterns;
                    std::vector<std::vector<double>> partitions;
                    for (UINT first = 0; first < patterns; first += rows)
                        partitions.push_back(SumsOf(s, first, std::min(rows, patterns - first), improved));
                    std::vector<double*> sums;
                    for (std::vector<double>& p : partitions) sums.push_back(p.data());
                    kernels::AddByTree(sums.data(), static_cast<UINT>(sums.size()), whole.size());
                    for (size_t k = 0; k < whole.size(); ++k)
                        ASSERT_EQ(partitions[0][k], whole[k])
                            << "element " << k << " of " << whole.size() << ", P=" << patterns << ", partitions of "
                            << span << " chunks, " << (threads ? "one thread" : "all threads");
                }
            }
            kernels::LimitThreads(0);
        }
    }
}

TEST(Accumulators, StaleParameterCountNeverWritesOutsideItsRow) {
    // A count of another layout is the caller's fault; the rows still fit every entry of their form.
    CSample s({3, 2, 2, 0, 9});
    const engine::CNetworkView view = s.View(true);
    std::vector<double> fast(16), fastGradient(4), spare(16), plain(16), plainGradient(4);
    kernels::AccumulateDerivatives(view, 4, fast.data(), fastGradient.data(), spare.data(), CCancelToken::Never());
    reference::Accumulate(view, 4, plain.data(), plainGradient.data());
    for (int k = 0; k < 16; ++k) EXPECT_NEAR(fast[k], plain[k], 1e-14) << "element " << k;
}

TEST(Accumulators, FirstOrderPassGivesExactlyTheErrorMeasure) {
    CSample s({6017, 2, 40, 0, 8});  // in parts
    EXPECT_EQ(s.buffers.AccumulateGradientAndError(false), s.buffers.ComputeError());
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
