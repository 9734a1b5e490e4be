// exp over arrays, with the widest vector instructions the processor has: chosen once, at the first call.
#include <cmath>
#include <cstddef>

#include "engine/kernels.h"

namespace engine {
namespace kernels {

void ExpAvx2(const double* in, double* out, size_t count);  // vector_exp_avx2.cpp, built for AVX2 and FMA

namespace {

void ExpScalar(const double* in, double* out, size_t count) {
    for (size_t k = 0; k < count; ++k) out[k] = std::exp(in[k]);
}

using ExpFunction = void (*)(const double*, double*, size_t);

ExpFunction ChooseExp() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return ExpAvx2;
    return ExpScalar;
}

}  // namespace

void ExpArray(const double* in, double* out, size_t count) {
    static const ExpFunction exp = ChooseExp();
    exp(in, out, count);
}

}  // namespace kernels
}  // namespace engine
