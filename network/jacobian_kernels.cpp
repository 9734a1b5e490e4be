// Blocked accumulation of gradient and quasi-Hessian.
#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "network/kernels.h"

namespace kernels {

size_t RowWidth(const CNetworkView& net, UINT nParams) {
    return std::max<size_t>(nParams, net.layout.Count());
}

namespace {

// The entries of unit h for one pattern; returns W[h + 1] * phi[h], its share of the output.
double FillUnitEntries(const CNetworkView& net, UINT h, const double* x, double* row) {
    const CParamLayout& layout = net.layout;
    const UINT n = layout.nInputs;
    const double* v = net.pInputWeights + static_cast<size_t>(h) * n;
    const double* c = net.pCenters + static_cast<size_t>(h) * n;
    double dist = 0.0;
    for (UINT i = 0; i < n; ++i) {
        const double a = v[i] * x[i] - c[i];
        dist += a * a;
    }
    const double s = net.pWidths[h];
    const double w = net.pOutputWeights[h + 1];
    const double phi = std::exp(-dist / s);
    if (h + 1 < layout.OutputWeightCount()) row[h + 1] = -phi;
    row[layout.Widths() + h] = -(w * phi * dist) / (s * s);

    double* centers = row + layout.Centers() + static_cast<size_t>(h) * n;
    double* weights = row + layout.InputWeights() + static_cast<size_t>(h) * n;
    for (UINT i = 0; i < n; ++i) {
        const double a = v[i] * x[i] - c[i];
        centers[i] = -2 * a * w * phi / s;
        if (layout.bImproved) weights[i] = 2 * a * w * x[i] * phi / s;
    }
    return w * phi;
}

}  // namespace

void FillJacobianRows(const CNetworkView& net, UINT first, UINT count, double* rows, size_t ld, double* errors) {
    const CParamLayout& layout = net.layout;
    const size_t n = layout.nInputs;
    const UINT outputs = layout.OutputWeightCount();
    // Output weights beyond the bias and the units' own belong to no formula: their entries are 0.0.
    const UINT used = std::min(outputs, layout.nUnits + 1);
    for (UINT r = 0; r < count; ++r) {
        const size_t p = static_cast<size_t>(first) + r;
        const double* x = net.pInputs + p * n;
        double* row = rows + r * ld;
        std::fill(row + used, row + outputs, 0.0);
        std::fill(row + layout.Count(), row + ld, 0.0);
        if (used > 0) row[0] = -1.0;
        double y = net.pOutputWeights[0];
        for (UINT h = 0; h < layout.nUnits; ++h) y += FillUnitEntries(net, h, x, row);
        errors[r] = net.pTargets[p] - y;
    }
}

void MirrorUpperToLower(double* a, size_t n) {
    // Tiles keep both the rows written and the columns read within the cache.
    const size_t tile = 64;
    for (size_t ib = 0; ib < n; ib += tile) {
        const size_t iEnd = std::min(ib + tile, n);
        for (size_t jb = 0; jb <= ib; jb += tile) {
            for (size_t i = ib; i < iEnd; ++i) {
                const size_t jEnd = std::min(jb + tile, i);
                for (size_t j = jb; j < jEnd; ++j) a[i * n + j] = a[j * n + i];
            }
        }
    }
}

void AccumulateDerivatives(const CNetworkView& net, UINT nParams, double* hessian, double* gradient) {
    const size_t ld = RowWidth(net, nParams);
    const UINT block = std::min(kRowBlock, net.nPatterns);
    // The block of rows outlives the call, per thread: a fresh block of this size would come from the
    // system on every iteration, page by page, and cost a fifth of a small accumulation. It is one block
    // of rows whatever the number of patterns, and a worker's goes with its thread.
    thread_local std::vector<double> rows, errors;
    if (rows.size() < block * ld) rows.resize(block * ld);
    if (errors.size() < block) errors.resize(block);
    std::fill(gradient, gradient + nParams, 0.0);

    const int n = static_cast<int>(nParams);
    for (UINT first = 0; first < net.nPatterns; first += block) {
        const UINT count = std::min(block, net.nPatterns - first);
        FillJacobianRows(net, first, count, rows.data(), ld, errors.data());
        if (n == 0) continue;
        cblas_dgemv(CblasRowMajor, CblasTrans, static_cast<int>(count), n, 1.0, rows.data(),
                    static_cast<int>(ld), errors.data(), 1, 1.0, gradient, 1);
        // The first block overwrites (beta 0), so the quasi-Hessian needs no clearing of its own.
        if (hessian)
            cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, n, static_cast<int>(count), 1.0, rows.data(),
                        static_cast<int>(ld), first == 0 ? 0.0 : 1.0, hessian, n);
    }
    if (!hessian) return;
    if (net.nPatterns == 0)
        std::fill(hessian, hessian + static_cast<size_t>(nParams) * nParams, 0.0);
    else
        MirrorUpperToLower(hessian, nParams);
}

}  // namespace kernels
