#include "engine/curve.h"

#include <cmath>

namespace engine {
namespace {

constexpr std::uint64_t kExactIndexes = 1024;  // logarithmic: kept one by one up to here, then 1/1024 wide
constexpr std::uint64_t kLinearBuckets = 2048;

// A NaN is kept only where its bucket holds nothing else: it has no place on a plot.
bool Lower(double candidate, double kept) {
    return !std::isnan(candidate) && (std::isnan(kept) || candidate < kept);
}
bool Higher(double candidate, double kept) {
    return !std::isnan(candidate) && (std::isnan(kept) || candidate > kept);
}

}  // namespace

void CErrorCurve::Clear() {
    m_whole.clear();
    m_buckets.clear();
    m_linearWidth = 1;
    m_count = 0;
    m_first = 0.0;
    m_last = 0.0;
}

std::uint64_t CErrorCurve::BucketOf(std::uint64_t index) const {
    if (m_keeping == CurveKeeping::Linear) return index / m_linearWidth;
    const std::uint64_t x = index + 1;  // where the plot draws it
    if (x <= kExactIndexes) return x;
    const double share = std::log(static_cast<double>(x) / static_cast<double>(kExactIndexes));
    return kExactIndexes + static_cast<std::uint64_t>(static_cast<double>(kExactIndexes) * share);
}

void CErrorCurve::Take(CBucket& bucket, const CCurvePoint& point) const {
    if (Lower(point.error, bucket.low.error)) bucket.low = point;
    if (Higher(point.error, bucket.high.error)) bucket.high = point;
}

void CErrorCurve::HalveLinearBuckets() {
    m_linearWidth *= 2;
    std::vector<CBucket> merged;
    merged.reserve(m_buckets.size() / 2 + 1);
    for (const CBucket& bucket : m_buckets) {
        const std::uint64_t id = bucket.id / 2;
        if (merged.empty() || merged.back().id != id) {
            merged.push_back(CBucket{id, bucket.low, bucket.high});
        } else {
            Take(merged.back(), bucket.low);
            Take(merged.back(), bucket.high);
        }
    }
    m_buckets.swap(merged);
}

void CErrorCurve::Append(double error) {
    const CCurvePoint point{m_count, error};
    if (m_count == 0) m_first = error;
    ++m_count;
    m_last = error;
    if (m_keeping == CurveKeeping::Whole) {
        m_whole.push_back(error);
        return;
    }
    if (m_keeping == CurveKeeping::Linear)
        while (point.index / m_linearWidth >= kLinearBuckets) HalveLinearBuckets();
    const std::uint64_t id = BucketOf(point.index);
    if (m_buckets.empty() || m_buckets.back().id != id) m_buckets.push_back(CBucket{id, point, point});
    else Take(m_buckets.back(), point);
}

std::vector<CCurvePoint> CErrorCurve::Points() const {
    std::vector<CCurvePoint> points;
    if (m_keeping == CurveKeeping::Whole) {
        points.reserve(m_whole.size());
        for (std::uint64_t i = 0; i < m_whole.size(); ++i) points.push_back(CCurvePoint{i, m_whole[i]});
        return points;
    }
    points.reserve(2 * m_buckets.size() + 2);
    if (m_count > 0) points.push_back(CCurvePoint{0, m_first});
    for (const CBucket& bucket : m_buckets) {
        const bool lowFirst = bucket.low.index <= bucket.high.index;
        const CCurvePoint& first = lowFirst ? bucket.low : bucket.high;
        const CCurvePoint& second = lowFirst ? bucket.high : bucket.low;
        if (first.index != points.back().index) points.push_back(first);
        if (second.index != first.index) points.push_back(second);
    }
    if (m_count > 0 && points.back().index != m_count - 1) points.push_back(CCurvePoint{m_count - 1, m_last});
    return points;
}

std::vector<double> CErrorCurve::Errors() const {
    if (m_keeping == CurveKeeping::Whole) return m_whole;
    std::vector<double> errors;
    for (const CCurvePoint& point : Points()) errors.push_back(point.error);
    return errors;
}

}  // namespace engine
