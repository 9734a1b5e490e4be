// Matrix inversion: the pivot rule on small matrices, inverses of random matrices across the block size,
// the singular-matrix exception, and the blocked factorization against the plain one.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "network/kernels.h"
#include "network/matrix.h"
#include "reference/reference.h"
#include "network_test_support.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

// Puts matrix into m_pHessian (and a cleared m_pHessianInv) of size n.
void SetHessian(CVantrelDlg& dlg, const std::vector<double>& matrix, int n) {
    dlg.m_nParams = n;
    ReplaceBlocks(dlg, {Block::Hessian, Block::HessianInv}, CountsOf(dlg));
    std::copy(matrix.begin(), matrix.end(), dlg.m_pHessian);
}

std::vector<double> Inverse(const std::vector<double>& matrix, int n) {
    CVantrelDlg dlg;
    SetHessian(dlg, matrix, n);
    dlg.InvertHessian();
    return std::vector<double>(dlg.m_pHessianInv, dlg.m_pHessianInv + matrix.size());
}

std::vector<int> Pivots(std::vector<double> matrix, int n) {
    CVantrelDlg dlg;
    std::vector<int> indx(n, -7);
    dlg.LUdcmp(matrix.data(), n, indx.data());
    return indx;
}

// B B^T + n I: symmetric positive definite and well conditioned, like a damped quasi-Hessian.
std::vector<double> RandomSpd(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    std::vector<double> b(static_cast<size_t>(n) * n), a(b.size());
    for (double& v : b) v = unit(random);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double s = i == j ? n : 0.0;
            for (int k = 0; k < n; ++k) s += b[i * n + k] * b[j * n + k];
            a[static_cast<size_t>(i) * n + j] = s;
        }
    return a;
}

std::vector<double> RandomGeneral(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    std::vector<double> a(static_cast<size_t>(n) * n);
    // Rows of very different scales make the implicit scaling choose other pivots than the raw values would.
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) a[static_cast<size_t>(i) * n + j] = unit(random) * std::pow(10.0, i % 7 - 3);
    return a;
}

std::string SingularMessage(std::vector<double> matrix, int n) {
    CVantrelDlg dlg;
    const std::vector<double> before = matrix;
    std::vector<int> indx(n);
    try {
        dlg.LUdcmp(matrix.data(), n, indx.data());
    } catch (const std::runtime_error& failure) {
        EXPECT_EQ(0, std::memcmp(before.data(), matrix.data(), sizeof(double) * before.size()))
            << "the matrix changed before the exception";
        return failure.what();
    }
    return "no exception";
}

}  // namespace

TEST(InvertHessian, OneByOneOfTwoIsOneHalf) { EXPECT_EQ(Inverse({2.0}, 1), std::vector<double>{0.5}); }

TEST(InvertHessian, IdentityInvertsToItselfWithoutSwaps) {
    for (int n : {3, 40}) {
        std::vector<double> identity(static_cast<size_t>(n) * n, 0.0);
        for (int k = 0; k < n; ++k) identity[k * n + k] = 1.0;
        EXPECT_EQ(Inverse(identity, n), identity) << "n=" << n;
        const std::vector<int> indx = Pivots(identity, n);
        for (int k = 0; k < n; ++k) EXPECT_EQ(indx[k], k) << "n=" << n;
    }
}

TEST(InvertHessian, ExchangeMatrixSwapsAtStepZeroAndInvertsToItself) {
    const std::vector<double> exchange{0.0, 1.0, 1.0, 0.0};
    EXPECT_EQ(Pivots(exchange, 2), (std::vector<int>{1, 1}));
    EXPECT_EQ(Inverse(exchange, 2), exchange);
}

TEST(InvertHessian, ScaledPivotPrefersTheRowOfSmallerRawValue) {
    // Scaled candidates of column 0: 2/2000 = 0.001 and 1/1 = 1.0, so row 1 is the pivot.
    const std::vector<double> matrix{2.0, 2000.0, 1.0, 1.0};
    EXPECT_EQ(Pivots(matrix, 2)[0], 1);
    const std::vector<double> inverse = Inverse(matrix, 2);
    EXPECT_LT(DistanceOfProductFromIdentity(matrix, inverse.data(), 2), 1e-15);
}

TEST(InvertHessian, ProductWithSavedMatrixIsIdentityAcrossBlockSizes) {
    for (int n : {1, 2, 5, 15, 16, 17, 33, 64, 65, 130, 257}) {
        const std::vector<double> matrix = RandomSpd(n, n);
        const std::vector<double> inverse = Inverse(matrix, n);
        EXPECT_LT(DistanceOfProductFromIdentity(matrix, inverse.data(), n), 1e-12) << "n=" << n;
    }
}

TEST(InvertHessian, LeavesTheFactorsInTheQuasiHessian) {
    const std::vector<double> matrix = RandomGeneral(20, 3);
    CVantrelDlg dlg;
    SetHessian(dlg, matrix, 20);
    dlg.InvertHessian();
    std::vector<double> factors = matrix;
    std::vector<int> indx(20);
    dlg.LUdcmp(factors.data(), 20, indx.data());
    EXPECT_EQ(0, std::memcmp(factors.data(), dlg.m_pHessian, sizeof(double) * factors.size()));
}

TEST(LUdcmp, ZeroRowOrNaNRowRaisesSingularMatrixAndLeavesMatrixAlone) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(SingularMessage({1.0, 2.0, 0.0, 0.0}, 2), "Singular matrix in LUdcmp");
    EXPECT_EQ(SingularMessage({1.0, 2.0, nan, nan}, 2), "Singular matrix in LUdcmp");
    std::vector<double> big = RandomSpd(40, 2);
    for (int j = 0; j < 40; ++j) big[25 * 40 + j] = 0.0;
    EXPECT_EQ(SingularMessage(big, 40), "Singular matrix in LUdcmp");
    // A NaN among non-zero values still gives the row a magnitude.
    EXPECT_EQ(SingularMessage({1.0, 2.0, nan, 3.0}, 2), "no exception");
}

TEST(LUdcmp, ColumnWithoutPositiveCandidateKeepsItsOwnRowAndGoesOn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::vector<double>& matrix : {std::vector<double>{0.0, 1.0, 0.0, 2.0}, std::vector<double>{nan, 1.0, nan, 2.0}}) {
        std::vector<double> fast = matrix, plain = matrix;
        std::vector<int> fastIndx(2, -7), plainIndx(2, -7);
        CVantrelDlg().LUdcmp(fast.data(), 2, fastIndx.data());
        reference::LUdcmp(plain.data(), 2, plainIndx.data());
        EXPECT_EQ(fastIndx[0], 0);
        EXPECT_EQ(plainIndx[0], 0);
        if (!std::isnan(matrix[0])) {
            EXPECT_EQ(fast[0], kTinyPivot) << "an exact zero pivot becomes TINY";
        }
        // The inverse of such a matrix is huge or NaN, but it is computed.
        const std::vector<double> inverse = Inverse(matrix, 2);
        EXPECT_FALSE(std::isfinite(inverse[0]) && std::fabs(inverse[0]) < 1e30);
    }
}

TEST(LUBackSubstitute, LeadingZerosGiveExactlyThePlainSubstitutionAndSolveTheSystem) {
    const int n = 9;
    const std::vector<double> matrix = RandomGeneral(n, 17);
    std::vector<double> factors = matrix, b(n, 0.0), x(n);
    b[6] = 1.0;  // the first six entries are 0: the forward pass skips their terms
    b[8] = -2.0;
    std::vector<int> indx(n);
    CVantrelDlg dlg;
    dlg.LUdcmp(factors.data(), n, indx.data());
    dlg.LUBackSubstitute(factors.data(), n, indx.data(), b.data(), x.data());

    // The same solve with every term of the forward pass taken.
    std::vector<double> y = b;
    for (int i = 0; i < n; ++i) std::swap(y[i], y[indx[i]]);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j) y[i] -= factors[i * n + j] * y[j];
    for (int i = n - 1; i >= 0; --i) {
        for (int j = i + 1; j < n; ++j) y[i] -= factors[i * n + j] * y[j];
        y[i] /= factors[i * n + i];
    }
    EXPECT_EQ(x, y);
    for (int i = 0; i < n; ++i) {
        double s = 0.0, scale = 0.0;
        for (int j = 0; j < n; ++j) {
            s += matrix[i * n + j] * x[j];
            scale += std::fabs(matrix[i * n + j] * x[j]);
        }
        EXPECT_NEAR(s, b[i], 1e-13 * scale) << "row " << i;
    }
}

TEST(LUdcmp, BlockedFactorsEqualPlainFactorsUpToRounding) {
    for (int n : {16, 17, 50, 130, 300}) {
        const std::vector<double> matrix = RandomGeneral(n, 100 + n);
        std::vector<double> fast = matrix, plain = matrix;
        std::vector<int> fastIndx(n), plainIndx(n);
        kernels::FactorLU(fast.data(), n, fastIndx.data());
        reference::LUdcmp(plain.data(), n, plainIndx.data());
        EXPECT_EQ(fastIndx, plainIndx) << "n=" << n;
        EXPECT_LT(RelativeDifference(fast.data(), plain.data(), fast.size()), 1e-12) << "n=" << n;
        std::vector<double> fastInverse(fast.size()), plainInverse(fast.size());
        kernels::InvertFromFactors(fast.data(), n, fastIndx.data(), fastInverse.data());
        reference::InvertFromFactors(plain.data(), n, plainIndx.data(), plainInverse.data());
        EXPECT_LT(RelativeDifference(fastInverse.data(), plainInverse.data(), fast.size()), 1e-11) << "n=" << n;
        // The damped step's solve from the same factors, against the plain substitution.
        const std::vector<double> b(matrix.begin(), matrix.begin() + n);
        std::vector<double> fastX(n), plainX(n);
        kernels::SolveWithFactors(fast.data(), n, fastIndx.data(), b.data(), fastX.data());
        LUBackSubstitute(plain.data(), n, plainIndx.data(), b.data(), plainX.data());
        EXPECT_LT(RelativeDifference(fastX.data(), plainX.data(), n), 1e-11) << "solve, n=" << n;
    }
}
