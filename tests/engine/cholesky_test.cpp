// The damped solve: the Cholesky factorization from the kept triangle against the plain decomposition across
// the block sizes, the kept triangle left as it was, and the fallback to the LU where the damped matrix is not
// positive definite, which must end every such case as the LU alone ends it.
#include <gtest/gtest.h>
#include <cblas.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
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

// A quasi-Hessian as the accumulation leaves it: B B^T of a random n x (n + 3) block B whose rows are of very
// different scales, in both triangles, and its diagonal apart.
struct CKept {
    CKept(int order, unsigned seed) : n(order), matrix(static_cast<size_t>(order) * order), diagonal(order) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        const int cols = n + 3;
        std::vector<double> b(static_cast<size_t>(n) * cols);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < cols; ++j) b[static_cast<size_t>(i) * cols + j] = unit(random) * std::pow(2.0, i % 5);
        {
            // On one BLAS thread, as the kernels keep it: the BLAS's own threads are out of the thread
            // sanitizer's sight, and their writes would meet the reads below as races.
            kernels::CSingleBlasThread single;
            cblas_dsyrk(CblasRowMajor, CblasUpper, CblasNoTrans, n, cols, 1.0, b.data(), cols, 0.0, matrix.data(), n);
        }
        kernels::MirrorUpperToLower(matrix.data(), n, CCancelToken::Never());
        for (int d = 0; d < n; ++d) diagonal[d] = matrix[static_cast<size_t>(d) * n + d];
    }
    // The whole damped matrix, as the plain algorithm factors it.
    std::vector<double> Damped(double damping) const {
        std::vector<double> damped = matrix;
        for (int d = 0; d < n; ++d) damped[static_cast<size_t>(d) * n + d] += damping;
        return damped;
    }
    // The strict lower triangle, which every solve must leave as it found it.
    std::vector<double> StrictLower(const std::vector<double>& a) const {
        std::vector<double> lower;
        for (int i = 0; i < n; ++i) lower.insert(lower.end(), a.begin() + i * n, a.begin() + i * n + i);
        return lower;
    }
    std::vector<double> WithNaNsOutsideTheKeptTriangle() const {
        std::vector<double> a = matrix;
        for (int i = 0; i < n; ++i) std::fill(a.begin() + i * n + i, a.begin() + (i + 1) * n, kNaN);
        return a;
    }
    int n;
    std::vector<double> matrix, diagonal;
};

std::vector<uint64_t> Bits(const std::vector<double>& v) {
    std::vector<uint64_t> bits(v.size());
    if (!v.empty()) std::memcpy(bits.data(), v.data(), v.size() * sizeof(double));  // an empty vector's data may be null
    return bits;
}

// What SolveDamped gives (its step, or the failure's text) and what the plain LU of the whole damped matrix
// gives through the kernels, bit for bit.
struct CBothWays {
    std::vector<double> damped, lu;
    std::string dampedFailure, luFailure;
};

CBothWays SolveBothWays(const CKept& k, double damping, const std::vector<double>& b) {
    CBothWays r{std::vector<double>(k.n), std::vector<double>(k.n), "", ""};
    std::vector<double> a = k.matrix, spare(a.size()), full = k.Damped(damping);
    std::vector<int> indx(k.n);
    try {
        kernels::SolveDamped(a.data(), k.n, k.diagonal.data(), damping, b.data(), r.damped.data(), spare.data(),
                             CCancelToken::Never());
    } catch (const engine::CSingularMatrixException& failure) {
        r.dampedFailure = failure.what();
    }
    try {
        kernels::FactorLU(full.data(), k.n, indx.data(), CCancelToken::Never());
        kernels::SolveWithFactors(full.data(), k.n, indx.data(), b.data(), r.lu.data());
    } catch (const engine::CSingularMatrixException& failure) {
        r.luFailure = failure.what();
    }
    EXPECT_EQ(Bits(k.StrictLower(a)), Bits(k.StrictLower(k.matrix))) << "the kept triangle changed";
    return r;
}

}  // namespace

TEST(SolveDamped, CholeskyAgreesWithThePlainDecompositionAcrossBlockSizesAndKeepsTheTriangle) {
    // Up to 480 one factorization; above, steps of 96 columns whose updates fall into strips of rows, 481 ending
    // in a step of one column, 1030 in strips of eight.
    for (int n : {1, 2, 5, 65, 300, 480, 481, 600, 1030}) {
        const CKept k(n, 300 + n);
        std::vector<double> b(n);
        for (int i = 0; i < n; ++i) b[i] = i < n / 2 ? 0.0 : 1.0 - 0.25 * i;
        for (double damping : {1.0, 0.01}) {
            // Only the kept triangle and the diagonal apart are read: what stands elsewhere must not matter.
            std::vector<double> a = k.WithNaNsOutsideTheKeptTriangle();
            ASSERT_TRUE(kernels::FactorDampedCholesky(a.data(), n, k.diagonal.data(), damping, CCancelToken::Never()))
                << "a damped quasi-Hessian must be positive definite, n=" << n;
            std::vector<double> x(n);
            kernels::SolveWithCholesky(a.data(), n, b.data(), x.data());
            EXPECT_EQ(Bits(k.StrictLower(a)), Bits(k.StrictLower(k.matrix))) << "the kept triangle changed, n=" << n;

            std::vector<double> plain = k.Damped(damping), plainX(n);
            std::vector<int> indx(n);
            reference::LUdcmp(plain.data(), n, indx.data());
            reference::LUBackSubstitute(plain.data(), n, indx.data(), b.data(), plainX.data());
            const double bound = damping == 1.0 ? 1e-11 : 1e-8;  // the condition grows as the damping falls
            EXPECT_LT(RelativeDifference(x.data(), plainX.data(), n), bound)
                << "against the plain decomposition, n=" << n << ", damping " << damping;
            const std::vector<double> damped = k.Damped(damping);
            for (int i = 0; i < n; ++i) {
                double s = 0.0, scale = 0.0;
                for (int j = 0; j < n; ++j) {
                    s += damped[static_cast<size_t>(i) * n + j] * x[j];
                    scale += std::fabs(damped[static_cast<size_t>(i) * n + j] * x[j]);
                }
                ASSERT_NEAR(s, b[i], 1e-12 * scale + 1e-300) << "residual of row " << i << ", n=" << n;
            }
        }
    }
}

TEST(SolveDamped, MatrixThatIsNotPositiveDefiniteEndsExactlyAsTheLUAloneEndsIt) {
    struct Case {
        const char* name;
        int n;
        std::function<void(CKept&)> spoil;
        const char* failure;
    };
    // Each spoils the kept matrix in both triangles and in the kept diagonal, as an accumulation would.
    auto set = [](CKept& k, int i, int j, double v) {
        k.matrix[static_cast<size_t>(i) * k.n + j] = k.matrix[static_cast<size_t>(j) * k.n + i] = v;
        if (i == j) k.diagonal[i] = v;
    };
    const Case cases[] = {
        {"negative diagonal element", 40, [&](CKept& k) { set(k, 20, 20, -5.0); }, ""},
        {"indefinite beyond the first blocks", 600, [&](CKept& k) { set(k, 0, 599, 1e6); }, ""},
        {"NaN off the diagonal", 70, [&](CKept& k) { set(k, 3, 50, kNaN); }, ""},
        {"NaN met in a late step", 700, [&](CKept& k) { set(k, 650, 10, kNaN); }, ""},
        {"infinite diagonal element", 5, [&](CKept& k) { set(k, 2, 2, INFINITY); }, ""},
        {"row of NaNs", 70, [&](CKept& k) { for (int j = 0; j < k.n; ++j) set(k, 33, j, kNaN); },
         "Singular matrix in LUdcmp"},
    };
    for (const Case& c : cases) {
        CKept k(c.n, 7);
        c.spoil(k);
        std::vector<double> factors = k.matrix;
        EXPECT_FALSE(kernels::FactorDampedCholesky(factors.data(), k.n, k.diagonal.data(), 0.01, CCancelToken::Never()))
            << c.name << ": Cholesky must refuse it";
        const std::vector<double> b(k.n, 1.0);
        const CBothWays r = SolveBothWays(k, 0.01, b);
        EXPECT_EQ(r.dampedFailure, c.failure) << c.name;
        EXPECT_EQ(r.luFailure, c.failure) << c.name;
        EXPECT_EQ(Bits(r.damped), Bits(r.lu)) << c.name << ": the step must be the LU's, bit for bit";
    }
}

// SolveDamped alone at one damping value, from a fresh copy of the kept matrix.
std::vector<double> SolvedAlone(const CKept& k, double damping, const std::vector<double>& b) {
    std::vector<double> a = k.WithNaNsOutsideTheKeptTriangle(), spare(a.size()), x(k.n);
    kernels::SolveDamped(a.data(), k.n, k.diagonal.data(), damping, b.data(), x.data(), spare.data(),
                         CCancelToken::Never());
    return x;
}

TEST(SolveDamped, NextTrySolvedBesideGivesTheBitsOfItsOwnSolve) {
    struct Case {
        const char* name;
        int n;
        double damping, nextDamping;
        bool spoiled;  // a late diagonal element far below zero: not positive definite at small dampings, and
                       // found so only near the end of the factorization, with time for a helper to join
        bool beside;   // whether the next try may be solved beside
    };
    const Case cases[] = {
        {"too small to hand over", 30, 0.01, 0.1, false, false},
        {"one factorization", 101, 0.01, 0.1, false, true},
        {"the largest factored whole", 480, 0.01, 0.1, false, true},
        {"factored in steps on every thread", 600, 0.01, 0.1, false, false},
        {"this try falls back to the LU, the next is positive definite", 101, 0.01, 1e9, true, true},
        {"neither positive definite", 101, 0.01, 0.1, true, false},
    };
    for (const Case& c : cases) {
        CKept k(c.n, 11);
        if (c.spoiled) k.diagonal[c.n - 3] = -1e6;
        std::vector<double> b(c.n);
        for (int i = 0; i < c.n; ++i) b[i] = 1.0 - 0.5 * (i % 3);
        const std::vector<double> own = SolvedAlone(k, c.damping, b), ownNext = SolvedAlone(k, c.nextDamping, b);
        // A kept thread that is slow to wake, or kept from a core by other work, may not join a call: it joins
        // one of many. Where the next try can't be solved beside, one call says so.
        const int attempts = c.beside ? 2000 : 1;
        bool solved = false;
        for (int attempt = 0; attempt < attempts && !solved; ++attempt) {
            std::vector<double> a = k.WithNaNsOutsideTheKeptTriangle(), spare(a.size(), kNaN), x(c.n), next(c.n, kNaN);
            solved = kernels::SolveDampedWithNext(a.data(), c.n, k.diagonal.data(), c.damping, b.data(), x.data(),
                                                  c.nextDamping, next.data(), spare.data(), CCancelToken::Never());
            ASSERT_EQ(Bits(x), Bits(own)) << c.name << ": this try's step";
            ASSERT_EQ(Bits(k.StrictLower(a)), Bits(k.StrictLower(k.matrix))) << c.name << ": the kept triangle changed";
            if (solved) EXPECT_EQ(Bits(next), Bits(ownNext)) << c.name << ": the next try's step";
        }
        EXPECT_EQ(solved, c.beside) << c.name;
    }
}

TEST(SolveDamped, AbandonedTokenThrowsCancelled) {
    const CKept k(100, 3);
    std::vector<double> a = k.matrix;
    CCancelToken token;
    token.Abandon();
    EXPECT_THROW(kernels::FactorDampedCholesky(a.data(), k.n, k.diagonal.data(), 0.01, token), engine::CCancelled);
}
