// An error series of a run (one error per iteration of a trial, or one per trial or unit of a run) in memory
// that a plot's pixels bound rather than the run's length.
//
// A plot shows a few hundred pixel columns, while a first-order trial may run 10^8 iterations: a series kept
// whole would grow by 8 bytes an iteration for as long as the run goes on. A bounded series keeps, per bucket
// of consecutive indexes, the smallest and the largest error in the order in which they came, and always the
// first and the last: a line through the kept points reaches, in each bucket, as high and as low as the whole
// series, and starts and ends where it does.
// The buckets are far narrower than a pixel column: on a logarithmic axis the first 1024 indexes are kept
// one by one and later buckets span 1/1024 of their index (over 2000 buckets a decade, some 17,000 up to
// 2^32); on a linear axis at most 2048 buckets of equal width span all indexes, their width doubling as
// the series grows. Whole keeps every error, for callers that hand the series on to their own users.
#pragma once

#include <cstdint>
#include <vector>

namespace engine {

enum class CurveKeeping {
    Whole,        // every error
    Logarithmic,  // an iteration curve, drawn against log10(index + 1)
    Linear,       // a curve of trials or units, drawn against index + 1
};

// One kept error and its index: the iteration (0 before the first) or the trial or unit (from 0).
struct CCurvePoint {
    std::uint64_t index;
    double error;
};

class CErrorCurve {
public:
    explicit CErrorCurve(CurveKeeping keeping) : m_keeping(keeping) {}

    void Clear();
    // Appends the error of the next index, 0 after Clear.
    void Append(double error);
    // Errors appended since Clear, kept or not.
    std::uint64_t Count() const { return m_count; }
    // The last error appended; 0.0 when none was.
    double Last() const { return m_last; }
    // The kept points in index order; the first and the last error appended are always among them.
    std::vector<CCurvePoint> Points() const;
    // The kept errors in index order: with Whole, every error appended.
    std::vector<double> Errors() const;

private:
    struct CBucket {
        std::uint64_t id;
        CCurvePoint low;   // the smallest error of the bucket (a NaN only when all of them are)
        CCurvePoint high;  // the largest
    };
    std::uint64_t BucketOf(std::uint64_t index) const;
    void Take(CBucket& bucket, const CCurvePoint& point) const;
    void HalveLinearBuckets();

    CurveKeeping m_keeping;
    std::vector<double> m_whole;     // Whole
    std::vector<CBucket> m_buckets;  // Logarithmic and Linear, in id order
    std::uint64_t m_linearWidth = 1;
    std::uint64_t m_count = 0;
    double m_first = 0.0;
    double m_last = 0.0;
};

}  // namespace engine
