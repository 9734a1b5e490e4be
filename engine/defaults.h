// The settings a user starts from, in one place: the window's fields and dialogs, CFixedSettings and the
// Python estimators (through the native module) take their defaults from here.
#pragma once

#include "engine/network.h"

namespace engine {

// Iterations per trial (per unit of the Error Correction Algorithm). The first-order methods take far smaller
// steps and start with far more of them.
inline constexpr UINT kDefaultIterations = 200;
inline constexpr UINT kDefaultFirstOrderIterations = 100000;
constexpr UINT DefaultIterations(int algorithm) {
    return algorithm == kFirstOrder || algorithm == kImprovedFirstOrder ? kDefaultFirstOrderIterations
                                                                        : kDefaultIterations;
}

inline constexpr double kDefaultDesiredError = 0.0001;
inline constexpr UINT kDefaultTrials = 1;
inline constexpr UINT kDefaultMaxUnits = 5;  // units the Error Correction Algorithm may add
inline constexpr double kDefaultLearningConstant = 0.001;
inline constexpr double kDefaultMomentum = 0.5;

}  // namespace engine
