// The plain algorithms (see reference.h).
#include "reference/reference.h"

#include <cmath>
#include <vector>

#include "engine/matrix.h"

namespace reference {

using namespace engine;

namespace {

// Row J of one pattern at the indices of a one-output network; returns e = target - output.
double FillRow(const CNetworkView& net, UINT p, double* phi, double* J) {
    const UINT u = net.layout.nUnits;
    const UINT n = net.layout.nInputs;
    const bool improved = net.layout.bImproved;
    const double* x = net.pInputs + static_cast<size_t>(p) * n;
    const double* W = net.pOutputWeights;
    const double* S = net.pWidths;
    const double* V = net.pInputWeights;
    const double* C = net.pCenters;

    double y = W[0];
    for (UINT h = 0; h < u; ++h) {
        double D = 0.0;
        for (UINT i = 0; i < n; ++i) {
            const double a = V[h * n + i] * x[i] - C[h * n + i];
            D += a * a;
        }
        phi[h] = std::exp(-D / S[h]);
        y += W[h + 1] * phi[h];
    }
    const double e = net.pTargets[p] - y;

    J[0] = -1.0;
    for (UINT h = 0; h < u; ++h) {
        J[h + 1] = -phi[h];
        double D = 0.0;
        for (UINT i = 0; i < n; ++i) {
            const double a = V[h * n + i] * x[i] - C[h * n + i];
            D += a * a;
            if (improved) {
                J[2 * u + 1 + h * n + i] = 2 * a * W[h + 1] * x[i] * phi[h] / S[h];
                J[(n + 2) * u + 1 + h * n + i] = -2 * a * W[h + 1] * phi[h] / S[h];
            } else {
                J[2 * u + 1 + h * n + i] = -2 * a * W[h + 1] * phi[h] / S[h];
            }
        }
        J[u + 1 + h] = -(W[h + 1] * phi[h] * D) / (S[h] * S[h]);
    }
    return e;
}

}  // namespace

void Accumulate(const CNetworkView& net, UINT nParams, double* hessian, double* gradient) {
    const size_t n = nParams;
    for (size_t k = 0; k < n; ++k) gradient[k] = 0.0;
    if (hessian)
        for (size_t k = 0; k < n * n; ++k) hessian[k] = 0.0;
    std::vector<double> phi(net.layout.nUnits);
    std::vector<double> J(std::max<size_t>(n, net.layout.Count()), 0.0);
    for (UINT p = 0; p < net.nPatterns; ++p) {
        const double e = FillRow(net, p, phi.data(), J.data());
        for (size_t k = 0; k < n; ++k) gradient[k] += e * J[k];
        if (!hessian) continue;
        for (size_t i = 0; i < n; ++i)
            for (size_t j = 0; j < n; ++j) hessian[i * n + j] += J[i] * J[j];
    }
}

void LUdcmp(double* a, int n, int* indx) {
    std::vector<double> vv(n);
    for (int i = 0; i < n; ++i) {
        double big = 0.0;
        for (int j = 0; j < n; ++j) {
            const double t = std::fabs(a[i * n + j]);
            if (t > big) big = t;
        }
        if (big == 0.0) throw CSingularMatrixException();
        vv[i] = 1.0 / big;
    }
    for (int k = 0; k < n; ++k) {
        double big = 0.0;
        int imax = k;  // kept when no candidate is positive (all 0 or NaN)
        for (int i = k; i < n; ++i) {
            const double t = vv[i] * std::fabs(a[i * n + k]);
            if (t > big) {
                big = t;
                imax = i;
            }
        }
        if (imax != k) {
            for (int j = 0; j < n; ++j) std::swap(a[imax * n + j], a[k * n + j]);
            vv[imax] = vv[k];
        }
        indx[k] = imax;
        if (a[k * n + k] == 0.0) a[k * n + k] = kTinyPivot;
        for (int i = k + 1; i < n; ++i) {
            const double t = a[i * n + k] = a[i * n + k] / a[k * n + k];
            for (int j = k + 1; j < n; ++j) a[i * n + j] -= t * a[k * n + j];
        }
    }
}

void LUBackSubstitute(const double* a, int n, const int* indx, const double* b, double* x) {
    for (int i = 0; i < n; ++i) x[i] = b[i];
    int f = -1;  // first index with a non-zero value; the terms before it are all 0
    for (int i = 0; i < n; ++i) {
        const int p = indx[i];
        double s = x[p];
        x[p] = x[i];
        if (f >= 0) {
            for (int j = f; j < i; ++j) s -= a[i * n + j] * x[j];
        } else if (s != 0.0) {
            f = i;
        }
        x[i] = s;
    }
    for (int i = n - 1; i >= 0; --i) {
        double s = x[i];
        for (int j = i + 1; j < n; ++j) s -= a[i * n + j] * x[j];
        x[i] = s / a[i * n + i];
    }
}

void InvertFromFactors(const double* lu, int n, const int* indx, double* inverse) {
    std::vector<double> b(n), x(n);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) b[i] = 0.0;
        b[j] = 1.0;
        LUBackSubstitute(lu, n, indx, b.data(), x.data());
        for (int i = 0; i < n; ++i) inverse[i * n + j] = x[i];
    }
}

void Invert(double* a, int n, double* inverse) {
    std::vector<int> indx(n);
    LUdcmp(a, n, indx.data());
    InvertFromFactors(a, n, indx.data(), inverse);
}

}  // namespace reference
