// The draw of a new network from the initialization settings.
#include "engine/draw.h"

#include <cstring>
#include <vector>

namespace engine {

CSeededRand::CSeededRand(unsigned seed) {
    // The library takes a seed of 0 for 1, and reads the seed as a signed word.
    std::int32_t word = static_cast<std::int32_t>(seed == 0 ? 1u : seed);
    m_state[0] = word;
    for (int i = 1; i < kDegree; ++i) {
        // 16807 * word modulo 2^31 - 1, by Schrage's method: no product overflows.
        const std::int64_t hi = word / 127773, lo = word % 127773;
        word = static_cast<std::int32_t>(16807 * lo - 2836 * hi);
        if (word < 0) word += 2147483647;
        m_state[i] = word;
    }
    for (int i = 0; i < 10 * kDegree; ++i) Next();  // the library drops the first 310 numbers
}

int CSeededRand::Next() {
    // Words add with wrap-around; the lowest bit, the least random one, is dropped.
    const std::uint32_t sum =
        static_cast<std::uint32_t>(m_state[m_front]) + static_cast<std::uint32_t>(m_state[m_rear]);
    m_state[m_front] = static_cast<std::int32_t>(sum);
    m_front = (m_front + 1) % kDegree;
    m_rear = (m_rear + 1) % kDegree;
    return static_cast<int>(sum >> 1);
}

namespace {

struct CDraw {
    CPatternSource& patterns;
    UINT nPatterns;
    const CNetwork& net;
    const CNetwork& initial;
    CRandomSource& random;
    const CCancelToken& cancel;

    // One of 10000 evenly spaced values from a up to, but never reaching, b.
    double Between(double a, double b) {
        const int r = random.Next() % 10000;
        const double f = r * 0.0001;
        return (b - a) * f + a;
    }

    UINT Pattern() { return static_cast<UINT>(random.Next()) % nPatterns; }

    void SetCenter(size_t at, double v) {
        net.pCenters[at] = v;
        initial.pCenters[at] = v;
    }

    // Unit h's center is row `pattern` of the patterns, for every unit at once: the rows are asked for once,
    // after every number is drawn, since a source may have to fetch them from afar.
    void CopyRows(const std::vector<UINT>& pickedRows) {
        const size_t n = net.nInputs;
        std::vector<double> rows(pickedRows.size() * n);
        patterns.PatternInputs(pickedRows.data(), static_cast<UINT>(pickedRows.size()), rows.data());
        for (size_t at = 0; at < rows.size(); ++at) SetCenter(at, rows[at]);
    }
};

// Fills count elements of a group and its initial copy: drawn in [min, max) in random mode, else fixed. A
// fixed group consumes no random number.
void FillGroup(CDraw& draw, double* values, double* initial, size_t count, const CGroupDraw& group) {
    for (size_t k = 0; k < count; ++k) {
        const double v = group.mode == kGroupRandom ? draw.Between(group.min, group.max) : group.fixed;
        values[k] = v;
        initial[k] = v;
    }
}

// Each center element drawn within the range of its input over all patterns.
void CentersFromInputRange(CDraw& draw) {
    const UINT n = draw.net.nInputs;
    std::vector<double> lo(n), hi(n);
    draw.patterns.InputRange(lo.data(), hi.data());
    for (UINT h = 0; h < draw.net.nUnits; ++h)
        for (UINT d = 0; d < n; ++d) draw.SetCenter(static_cast<size_t>(h) * n + d, draw.Between(lo[d], hi[d]));
}

// A random pattern row per unit; two units may share one.
void CentersFromPatterns(CDraw& draw) {
    std::vector<UINT> picked(draw.net.nUnits);
    for (UINT& row : picked) row = draw.Pattern();
    draw.CopyRows(picked);
}

// A random pattern row per unit, each row at most once.
void CentersFromPatternsUnique(CDraw& draw) {
    const UINT kNoEntry = 0xFFFFFFFFu;
    const UINT units = draw.net.nUnits;
    std::vector<UINT> used(units, kNoEntry);
    for (UINT h = 0; h < units; ++h) {
        draw.cancel.ThrowIfAbandoned();  // the search grows with the units already placed
        UINT q = draw.Pattern();
        // Once every row is taken, no fresh row exists and the search would never end. The Initialization
        // dialog refuses more units than patterns in this mode, so this only guards a stale count: the rest
        // of the units then take rows with repetition.
        const bool fresh = h < draw.nPatterns;
        for (UINT k = 0; fresh && k < units && used[k] != kNoEntry;) {
            if (used[k] == q) {
                q = draw.Pattern();
                k = 0;
            } else {
                ++k;
            }
        }
        used[h] = q;
    }
    draw.CopyRows(used);
}

}  // namespace

void DrawNetwork(const CInitSettings& settings, CPatternSource& patterns, const CNetwork& net,
                 const CNetwork& initial, CRandomSource& random, const CCancelToken& cancel) {
    CDraw draw{patterns, patterns.Patterns(), net, initial, random, cancel};
    const size_t u = net.nUnits;
    FillGroup(draw, net.pInputWeights, initial.pInputWeights, u * net.nInputs, settings.inputWeights);
    FillGroup(draw, net.pOutputWeights, initial.pOutputWeights, (u + 1) * net.nOutputs, settings.outputWeights);
    FillGroup(draw, net.pWidths, initial.pWidths, u, settings.widths);

    // With no pattern there is no row to pick and no range to search: the centers stay at 0.0 and no random
    // number is taken for them.
    if (draw.nPatterns == 0) {
        const size_t count = u * net.nInputs;
        if (count > 0) {
            std::memset(net.pCenters, 0, sizeof(double) * count);
            std::memset(initial.pCenters, 0, sizeof(double) * count);
        }
        return;
    }
    if (settings.centerMode == kCentersFromInputRange)
        CentersFromInputRange(draw);
    else if (settings.centerMode == kCentersFromPatterns)
        CentersFromPatterns(draw);
    else
        CentersFromPatternsUnique(draw);
}

void DrawNetwork(const CInitSettings& settings, const CPatterns& patterns, const CNetwork& net,
                 const CNetwork& initial, CRandomSource& random, const CCancelToken& cancel) {
    CPatternArrays source(patterns);
    DrawNetwork(settings, source, net, initial, random, cancel);
}

}  // namespace engine
