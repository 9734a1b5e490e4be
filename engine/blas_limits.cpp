#include "engine/blas_limits.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "engine/kernels.h"
#include "engine/memory.h"

namespace engine {

void FitBlasToAddressSpace(char** argv) {
    const unsigned long long limit = AddressSpaceLimit();
    if (limit == 0 || 4.0 * kernels::ThreadCount() * kBlasBufferBytes <= static_cast<double>(limit)) return;
    kernels::LimitThreads(1);
    const char* threads = std::getenv("OPENBLAS_NUM_THREADS");
    if (threads != nullptr && std::strcmp(threads, "1") == 0) return;
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    execv("/proc/self/exe", argv);
}

}  // namespace engine
