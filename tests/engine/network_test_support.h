// Helpers shared by the network tests.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

// ||a - b|| / ||b||, Frobenius norms over count elements.
inline double RelativeDifference(const double* a, const double* b, size_t count) {
    double diff = 0.0, norm = 0.0;
    for (size_t k = 0; k < count; ++k) {
        diff += (a[k] - b[k]) * (a[k] - b[k]);
        norm += b[k] * b[k];
    }
    return std::sqrt(diff) / std::sqrt(norm);
}

// Largest |(A * B)[i][j] - I[i][j]| of two n x n row-major matrices.
inline double DistanceOfProductFromIdentity(const std::vector<double>& a, const double* b, int n) {
    double worst = 0.0;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double s = 0.0;
            for (int k = 0; k < n; ++k) s += a[static_cast<size_t>(i) * n + k] * b[static_cast<size_t>(k) * n + j];
            worst = std::fmax(worst, std::fabs(s - (i == j ? 1.0 : 0.0)));
        }
    return worst;
}
