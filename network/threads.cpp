// How many cores the kernels use, and the BLAS's thread count for each piece of work.
#include <cblas.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "network/kernels.h"

namespace kernels {

namespace {

std::atomic<int> g_limit{0};  // 0: no limit

int CoresOfProcess() {
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof(set), &set) == 0) return std::max(1, CPU_COUNT(&set));
    return std::max(1u, std::thread::hardware_concurrency());
}

}  // namespace

int ThreadCount() {
    static const int cores = CoresOfProcess();
    const int limit = g_limit.load(std::memory_order_relaxed);
    return limit > 0 ? std::min(limit, cores) : cores;
}

void LimitThreads(int count) { g_limit.store(std::max(0, count), std::memory_order_relaxed); }

CBlasThreads::CBlasThreads(double flops) : m_previous(openblas_get_num_threads()) {
    // Below this much work a second thread costs more in waking and waiting than it saves.
    constexpr double kParallelFlops = 4.0e6;
    openblas_set_num_threads(flops >= kParallelFlops ? ThreadCount() : 1);
}

CBlasThreads::~CBlasThreads() { openblas_set_num_threads(m_previous); }

}  // namespace kernels
