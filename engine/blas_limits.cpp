#include "engine/blas_limits.h"

#include <cstdlib>
#include <cstring>

#include "engine/kernels.h"
#include "engine/memory.h"

namespace engine {

bool FitBlasToAddressSpace() {
    const unsigned long long limit = AddressSpaceLimit();
    if (limit == 0 || 4.0 * kernels::ThreadCount() * kBlasBufferBytes <= static_cast<double>(limit)) return false;
    kernels::LimitThreads(1);
    const char* threads = std::getenv("OPENBLAS_NUM_THREADS");
    return threads == nullptr || std::strcmp(threads, "1") != 0;
}

}  // namespace engine
