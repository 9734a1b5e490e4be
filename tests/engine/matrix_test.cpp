// The LU decomposition: the pivot rule on small matrices, the singular-matrix exception, the TINY pivot, and
// the blocked factorization and its solve against the plain ones across the block sizes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "engine/kernels.h"
#include "engine/matrix.h"
#include "network_test_support.h"
#include "reference/reference.h"

namespace {

using engine::CCancelToken;
namespace kernels = engine::kernels;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<double> Identity(int n) {
    std::vector<double> a(static_cast<size_t>(n) * n, 0.0);
    for (int k = 0; k < n; ++k) a[static_cast<size_t>(k) * n + k] = 1.0;
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

// What the kernel (fast) or the plain decomposition raised, with the matrix checked to be untouched.
std::string SingularMessage(std::vector<double> matrix, int n, bool fast) {
    const std::vector<double> before = matrix;
    std::vector<int> indx(n);
    try {
        if (fast)
            kernels::FactorLU(matrix.data(), n, indx.data(), CCancelToken::Never());
        else
            reference::LUdcmp(matrix.data(), n, indx.data());
    } catch (const engine::CSingularMatrixException& failure) {
        EXPECT_EQ(0, std::memcmp(before.data(), matrix.data(), sizeof(double) * before.size()))
            << "the matrix changed before the exception";
        return failure.what();
    }
    return "no exception";
}

}  // namespace

TEST(FactorLU, PivotRowsFollowTheScaledRuleOfThePlainDecomposition) {
    struct Case {
        const char* name;
        std::vector<double> matrix;
        int n;
        std::vector<int> indx;
    };
    const Case cases[] = {
        {"identity 3: no swap", Identity(3), 3, {0, 1, 2}},
        {"exchange: swap at step 0", {0.0, 1.0, 1.0, 0.0}, 2, {1, 1}},
        // Scaled candidates of column 0: 2/2000 = 0.001 and 1/1 = 1.0, so the row of smaller raw value wins.
        {"scaled pivot", {2.0, 2000.0, 1.0, 1.0}, 2, {1, 1}},
        // Scaled candidates 0.1, 0.5 and 0.5: of two equal ones the first row wins.
        {"tie: first row", {1.0, 10.0, 1.0, 2.0, 4.0, 1.0, 4.0, 8.0, 1.0}, 3, {1, 1, 2}},
        {"zero column: own row, TINY", {0.0, 1.0, 0.0, 2.0}, 2, {0, 1}},
        {"NaN column: own row", {kNaN, 1.0, kNaN, 2.0}, 2, {0, 1}},
    };
    for (const Case& c : cases) {
        std::vector<double> fast = c.matrix, plain = c.matrix;
        std::vector<int> fastIndx(c.n, -7), plainIndx(c.n, -7);
        kernels::FactorLU(fast.data(), c.n, fastIndx.data(), CCancelToken::Never());
        reference::LUdcmp(plain.data(), c.n, plainIndx.data());
        EXPECT_EQ(fastIndx, c.indx) << c.name << ": the kernel's pivots";
        EXPECT_EQ(plainIndx, c.indx) << c.name << ": the plain pivots";
    }
    std::vector<double> zeroPivot{0.0, 1.0, 0.0, 2.0};
    std::vector<int> indx(2);
    kernels::FactorLU(zeroPivot.data(), 2, indx.data(), CCancelToken::Never());
    EXPECT_EQ(zeroPivot[0], engine::kTinyPivot) << "an exact zero pivot must become TINY";
    std::vector<double> x(2);
    const double b[] = {1.0, 1.0};
    kernels::SolveWithFactors(zeroPivot.data(), 2, indx.data(), b, x.data());
    EXPECT_FALSE(std::isfinite(x[0]) && std::fabs(x[0]) < 1e30) << "a TINY pivot must give a huge or NaN solution";
}

TEST(FactorLU, RowWithoutMagnitudeRaisesSingularMatrixAndLeavesMatrixAlone) {
    std::vector<double> big = RandomGeneral(40, 2);
    for (int j = 0; j < 40; ++j) big[25 * 40 + j] = 0.0;
    struct Case {
        const char* name;
        std::vector<double> matrix;
        int n;
        const char* message;
    };
    const Case cases[] = {
        {"zero row", {1.0, 2.0, 0.0, 0.0}, 2, "Singular matrix in LUdcmp"},
        {"NaN row", {1.0, 2.0, kNaN, kNaN}, 2, "Singular matrix in LUdcmp"},
        {"zero row 25 of 40", big, 40, "Singular matrix in LUdcmp"},
        // A NaN among non-zero values still gives the row a magnitude.
        {"NaN beside a value", {1.0, 2.0, kNaN, 3.0}, 2, "no exception"},
    };
    for (const Case& c : cases)
        for (bool fast : {true, false})
            EXPECT_EQ(SingularMessage(c.matrix, c.n, fast), c.message) << c.name << (fast ? ", kernel" : ", plain");
}

TEST(FactorLU, AbandonedTokenThrowsCancelled) {
    CCancelToken token;
    token.Abandon();
    std::vector<double> a = Identity(3);
    std::vector<int> indx(3);
    EXPECT_THROW(kernels::FactorLU(a.data(), 3, indx.data(), token), engine::CCancelled);
}

TEST(FactorLU, BlockedFactorsAndSolveEqualThePlainOnesAcrossBlockSizes) {
    // Up to 1030, whose widest update splits into two strips of columns.
    for (int n : {1, 2, 5, 16, 17, 33, 64, 65, 130, 300, 1030}) {
        const std::vector<double> matrix = RandomGeneral(n, 100 + n);
        std::vector<double> fast = matrix, plain = matrix;
        std::vector<int> fastIndx(n), plainIndx(n);
        kernels::FactorLU(fast.data(), n, fastIndx.data(), CCancelToken::Never());
        reference::LUdcmp(plain.data(), n, plainIndx.data());
        EXPECT_EQ(fastIndx, plainIndx) << "pivot rows, n=" << n;
        EXPECT_LT(RelativeDifference(fast.data(), plain.data(), fast.size()), 1e-12) << "factors, n=" << n;
        // A right-hand side with leading zeros, which the plain forward pass skips.
        std::vector<double> b(n, 0.0), fastX(n), plainX(n);
        for (int i = n / 2; i < n; ++i) b[i] = 1.0 - 0.25 * i;
        kernels::SolveWithFactors(fast.data(), n, fastIndx.data(), b.data(), fastX.data());
        reference::LUBackSubstitute(plain.data(), n, plainIndx.data(), b.data(), plainX.data());
        EXPECT_LT(RelativeDifference(fastX.data(), plainX.data(), n), 1e-11) << "solve against the plain, n=" << n;
        for (int i = 0; i < n; ++i) {
            double s = 0.0, scale = 0.0;
            for (int j = 0; j < n; ++j) {
                s += matrix[static_cast<size_t>(i) * n + j] * fastX[j];
                scale += std::fabs(matrix[static_cast<size_t>(i) * n + j] * fastX[j]);
            }
            ASSERT_NEAR(s, b[i], 1e-12 * scale + 1e-300) << "residual of row " << i << ", n=" << n;
        }
    }
}
