// How the kernels use the machine: the cores, and the BLAS kept to one thread while they run.
#include <cblas.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

#include "engine/kernels.h"

namespace engine {
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
    return limit > 0 ? limit : cores;
}

void LimitThreads(int count) { g_limit.store(std::max(0, count), std::memory_order_relaxed); }

namespace {

// The BLAS's thread count is one setting for the whole process, so the holders of one thread are counted: runs
// on several threads at once overlap their holds in any order, and a count saved and restored per hold would
// leave the host's BLAS at one thread. The first holder saves the host's count, the last gives it back.
struct CBlasHolds {
    std::mutex mutex;
    int holders = 0;
    int hostCount = 0;
};

CBlasHolds& Holds() {
    static CBlasHolds holds;
    return holds;
}

}  // namespace

CSingleBlasThread::CSingleBlasThread() {
    CBlasHolds& holds = Holds();
    const std::lock_guard<std::mutex> lock(holds.mutex);
    if (holds.holders++ == 0) {
        holds.hostCount = openblas_get_num_threads();
        openblas_set_num_threads(1);
    }
}

CSingleBlasThread::~CSingleBlasThread() {
    CBlasHolds& holds = Holds();
    const std::lock_guard<std::mutex> lock(holds.mutex);
    if (--holds.holders == 0) openblas_set_num_threads(holds.hostCount);
}

}  // namespace kernels
}  // namespace engine
