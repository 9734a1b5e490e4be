// The draw of a new network: input weights, output weights and widths drawn in bounds or fixed, centers from
// the input range or picked from the patterns. The order of the steps and loops fixes which random number goes
// where, so that a seed reproduces a network exactly.
#pragma once

#include <cstdint>

#include "engine/cancel.h"
#include "engine/network.h"
#include "engine/patternsource.h"

namespace engine {

// The source of random numbers, passed in: the window seeds its run's generator with the tick count, a script
// or a test with a number of its own.
class CRandomSource {
public:
    virtual ~CRandomSource() = default;
    // A number from 0 to RAND_MAX.
    virtual int Next() = 0;
};

// The C library's generator (the additive feedback generator behind rand and srand) with its state in the
// object: the same seed gives the same numbers as srand(seed) and then rand(), and so the same network as the
// window's draw from the same tick, while two runs on two threads each draw their own sequence.
class CSeededRand : public CRandomSource {
public:
    explicit CSeededRand(unsigned seed);
    int Next() override;

private:
    static constexpr int kDegree = 31;     // state words
    static constexpr int kSeparation = 3;  // how far the front index runs ahead of the rear one
    std::int32_t m_state[kDegree];
    int m_front = kSeparation;
    int m_rear = 0;
};

// How each group of a new network begins.
enum GroupMode : int { kGroupRandom = 0, kGroupFixed = 1 };
enum CenterMode : int { kCentersFromInputRange = 0, kCentersFromPatterns = 1, kCentersFromPatternsUnique = 2 };

struct CGroupDraw {
    int mode = kGroupFixed;  // GroupMode
    double min = 0.5;        // random mode: drawn in [min, max)
    double max = 1.0;
    double fixed = 1.0;      // fixed mode
};

struct CInitSettings {
    CGroupDraw inputWeights;
    CGroupDraw outputWeights;
    CGroupDraw widths;
    int centerMode = kCentersFromPatternsUnique;  // CenterMode
};

// Draws every array of net (its counts as they stand) and writes the same values to initial, a network of the
// same shape that keeps the draw. Requires: patterns has the network's inputs; with kCentersFromPatternsUnique
// a count of units above the patterns takes the rest of the rows with repetition instead of searching for
// ever. Throws CCancelled when cancel is abandoned during the long search for unique rows.
void DrawNetwork(const CInitSettings& settings, CPatternSource& patterns, const CNetwork& net,
                 const CNetwork& initial, CRandomSource& random, const CCancelToken& cancel);
// The same on patterns in the caller's arrays.
void DrawNetwork(const CInitSettings& settings, const CPatterns& patterns, const CNetwork& net,
                 const CNetwork& initial, CRandomSource& random, const CCancelToken& cancel);

}  // namespace engine
