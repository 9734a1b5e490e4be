// exp four at a time through the C library's vector math (AVX2 variant). This file alone is built for AVX2 and
// FMA; ExpArray calls into it only on a processor that has both.
#include <immintrin.h>

#include <cmath>
#include <cstddef>

extern "C" __m256d _ZGVdN4v_exp(__m256d x);

namespace engine {
namespace kernels {

void ExpAvx2(const double* in, double* out, size_t count) {
    size_t k = 0;
    for (; k + 4 <= count; k += 4) _mm256_storeu_pd(out + k, _ZGVdN4v_exp(_mm256_loadu_pd(in + k)));
    for (; k < count; ++k) out[k] = std::exp(in[k]);
}

}  // namespace kernels
}  // namespace engine
