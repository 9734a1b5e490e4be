// The best kernel family the processor's features allow (blas_setup.h). A file of its own that needs no BLAS:
// the Python package asks it through a small module of its own before the BLAS loads.
#include "engine/blas_setup.h"

namespace engine {

const char* BestKernelFamily() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl"))
        return "SkylakeX";
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return "Haswell";
    if (__builtin_cpu_supports("avx")) return "Sandybridge";
    if (__builtin_cpu_supports("sse4.2")) return "Nehalem";
    return nullptr;
}

}  // namespace engine
