// Error curves in bounded memory: short curves whole, long ones by bucket, with the extremes and the last
// error a plot needs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "engine/curve.h"

namespace {

using engine::CCurvePoint;
using engine::CErrorCurve;
using engine::CurveKeeping;

// A falling curve with noise and spikes, as a first-order trial may give.
double Error(std::uint64_t i) {
    return 1.0 / std::sqrt(static_cast<double>(i) + 1.0) * (1.0 + 0.3 * std::sin(0.37 * static_cast<double>(i))) +
           (i % 99991 == 5 ? 10.0 : 0.0);
}

void ExpectIncreasingIndexes(const std::vector<CCurvePoint>& points) {
    for (size_t k = 1; k < points.size(); ++k) ASSERT_LT(points[k - 1].index, points[k].index) << "at " << k;
}

TEST(ErrorCurve, ShortCurvesAreKeptWholeInEveryKeeping) {
    for (CurveKeeping keeping : {CurveKeeping::Whole, CurveKeeping::Logarithmic, CurveKeeping::Linear}) {
        CErrorCurve curve(keeping);
        for (int i = 0; i < 1024; ++i) curve.Append(Error(i));
        ASSERT_EQ(curve.Points().size(), 1024u) << "a curve a plot draws point by point must stay whole";
        for (int i = 0; i < 1024; ++i) EXPECT_EQ(curve.Errors()[i], Error(i));
        EXPECT_EQ(curve.Count(), 1024u);
        curve.Clear();
        EXPECT_EQ(curve.Count(), 0u);
        EXPECT_TRUE(curve.Points().empty());
    }
}

// What a plot of a long curve must still show: where it starts and ends, and how high and low it goes in each
// stretch of iterations; in memory that its length does not decide.
TEST(ErrorCurve, LongCurvesKeepExtremesAndTheLastErrorInBoundedPoints) {
    const std::uint64_t count = 3000000;
    for (CurveKeeping keeping : {CurveKeeping::Logarithmic, CurveKeeping::Linear}) {
        CErrorCurve curve(keeping);
        for (std::uint64_t i = 0; i < count; ++i) curve.Append(Error(i));
        const std::vector<CCurvePoint> points = curve.Points();
        EXPECT_LT(points.size(), 40000u) << "the kept points must not grow with the curve";
        ExpectIncreasingIndexes(points);
        EXPECT_EQ(points.front().index, 0u);
        EXPECT_EQ(points.back().index, count - 1);
        EXPECT_EQ(points.back().error, Error(count - 1));
        EXPECT_EQ(curve.Count(), count);
        EXPECT_EQ(curve.Last(), Error(count - 1));
        // Every tenth of the axis (log10(index + 1) on the logarithmic one) reaches as high and as low among the
        // kept points, give or take a thousandth of the axis at its edges, as in the whole curve: a plot's pixel
        // column is a few hundredths wide.
        const double axis = keeping == CurveKeeping::Linear ? static_cast<double>(count) : std::log10(count + 1.0);
        const auto at = [&](std::uint64_t i) {
            const double x = static_cast<double>(i) + 1.0;
            return (keeping == CurveKeeping::Linear ? x - 1 : std::log10(x)) / axis;
        };
        for (int s = 0; s < 10; ++s) {
            double low = 1e300, high = -1e300, keptLow = 1e300, keptHigh = -1e300;
            for (std::uint64_t i = 0; i < count; ++i) {
                if (at(i) < s / 10.0 || at(i) >= (s + 1) / 10.0) continue;
                low = std::min(low, Error(i));
                high = std::max(high, Error(i));
            }
            for (const CCurvePoint& p : points) {
                if (at(p.index) < s / 10.0 - 0.001 || at(p.index) >= (s + 1) / 10.0 + 0.001) continue;
                keptLow = std::min(keptLow, p.error);
                keptHigh = std::max(keptHigh, p.error);
            }
            EXPECT_LE(keptLow, low) << "tenth " << s;
            EXPECT_GE(keptHigh, high) << "tenth " << s;
        }
    }
}

TEST(ErrorCurve, ANaNIsKeptOnlyWhereNothingElseIsAndAlwaysAsTheLastError) {
    CErrorCurve curve(CurveKeeping::Logarithmic);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int i = 0; i < 5000; ++i) curve.Append(i % 2 == 0 ? nan : 0.5);
    curve.Append(nan);
    const std::vector<CCurvePoint> points = curve.Points();
    EXPECT_TRUE(std::isnan(points.back().error)) << "the trial ended at NaN";
    EXPECT_EQ(points.back().index, 5000u);
    const auto numbers = std::count_if(points.begin(), points.end(), [](const CCurvePoint& p) {
        return !std::isnan(p.error);
    });
    EXPECT_GT(numbers, static_cast<long>(points.size()) / 3) << "beyond the first 1024, buckets keep the numbers";
}

}  // namespace
