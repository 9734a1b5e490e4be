// The BLAS's environment, settled before it loads (blas_setup.h).
#include "engine/blas_setup.h"

#include <strings.h>
#include <unistd.h>

#include <cstdlib>

#include "engine/blas_limits.h"

extern "C" char* openblas_get_corename(void);

namespace engine {

namespace {

// The families that kernels are chosen among, weakest first; a family of the BLAS's own choice that is not
// listed here is one it chose on purpose, and stays.
struct CFamily {
    const char* name;
    int rank;
};
constexpr CFamily kFamilies[] = {
    {"Prescott", 0},    {"Atom", 0},     {"Core2", 1},    {"Penryn", 1},    {"Dunnington", 1},
    {"Nehalem", 2},     {"Sandybridge", 3}, {"Haswell", 4}, {"Zen", 4},     {"SkylakeX", 5},
    {"Cooperlake", 5},  {"SapphireRapids", 5},
};

int RankOf(const char* name) {
    for (const CFamily& family : kFamilies)
        if (strcasecmp(family.name, name) == 0) return family.rank;
    return -1;
}

}  // namespace

const char* BetterKernelFamily(const char* current, const char* best) {
    if (current == nullptr || best == nullptr) return nullptr;
    const int rank = RankOf(current);
    return rank >= 0 && rank < RankOf(best) ? best : nullptr;
}

void StartWithBlasSettings(char** argv) {
    bool restart = false;
    // After each product the BLAS's idle threads spin before they sleep, and on a machine of few cores the
    // accumulation's own threads then wait for the cores they hold: a damped iteration at 1201 parameters and
    // 1000 patterns took a third longer on two cores than on one. Threads that sleep at once cost a wake-up of
    // some microseconds per product instead.
    if (std::getenv("OPENBLAS_THREAD_TIMEOUT") == nullptr) {
        setenv("OPENBLAS_THREAD_TIMEOUT", "4", 1);
        restart = true;
    }
    // A processor that the BLAS build does not know gets its oldest kernels ("Prescott"): a dgemm on a core
    // with AVX-512 then runs at a fifth of the speed of the kernels written for it.
    if (std::getenv("OPENBLAS_CORETYPE") == nullptr) {
        if (const char* family = BetterKernelFamily(openblas_get_corename(), BestKernelFamily())) {
            setenv("OPENBLAS_CORETYPE", family, 1);
            restart = true;
        }
    }
    // Under an address-space limit too small for a BLAS buffer per core, one BLAS thread (blas_limits.h).
    if (FitBlasToAddressSpace()) {
        setenv("OPENBLAS_NUM_THREADS", "1", 1);
        restart = true;
    }
    if (restart) execv("/proc/self/exe", argv);
}

}  // namespace engine
