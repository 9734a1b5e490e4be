// The points of a generated verification grid's axis: ordinary ranges by min + n x step to the last bit, and
// ranges at the edge of the doubles without NaN or infinity.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "files/verification.h"

namespace {

TEST(GridAxis, OrdinaryRangeKeepsTheStepFormulaToTheLastBit) {
    const CGridAxis axis{0.0, 1.0, 11};
    // Weighing between the ends would give 0.3 here; the files written so far hold 0.30000000000000004.
    EXPECT_EQ(axis.At(3), 3 * 0.1);
    EXPECT_EQ(axis.At(10), 1.0);
    const CGridAxis negative{-2.5, 7.25, 7};
    for (UINT n = 0; n < 7; ++n) EXPECT_EQ(negative.At(n), n * (9.75 / 6) + -2.5) << "point " << n;
}

TEST(GridAxis, RangesAtTheEdgeOfTheDoublesGiveFiniteRisingPointsWithinThem) {
    const struct {
        double min, max;
        UINT points;
    } cases[] = {
        {-DBL_MAX, DBL_MAX, 5},  // the step itself overflows
        {-DBL_MAX, DBL_MAX, 2},
        {-1e308, 1e308, 1001},
        {0.0, DBL_MAX, 4},       // a finite step whose last point may round beyond the largest double
        {-DBL_MAX, -DBL_MAX / 4, 3},
    };
    for (const auto& c : cases) {
        const CGridAxis axis{c.min, c.max, c.points};
        EXPECT_EQ(axis.At(0), c.min) << c.min << " to " << c.max;
        for (UINT n = 1; n < c.points; ++n) {
            ASSERT_TRUE(std::isfinite(axis.At(n))) << c.min << " to " << c.max << ", point " << n;
            EXPECT_LT(axis.At(n - 1), axis.At(n)) << c.min << " to " << c.max << ", point " << n;
            EXPECT_LE(axis.At(n), c.max) << c.min << " to " << c.max << ", point " << n;
        }
    }
    EXPECT_EQ((CGridAxis{-DBL_MAX, DBL_MAX, 5}.At(4)), DBL_MAX);
    EXPECT_EQ((CGridAxis{-DBL_MAX, DBL_MAX, 5}.At(2)), 0.0);
}

}  // namespace
