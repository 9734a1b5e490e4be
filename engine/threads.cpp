// How the kernels use the machine: the cores, the BLAS kept to one thread while they run, and the
// allocator's keeping of freed blocks.
#include <cblas.h>
#include <malloc.h>
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

void KeepFreedBlocks() {
    static std::once_flag once;
    std::call_once(once, [] {
        // A damped iteration releases its n x n blocks and allocates them anew. By default the C library hands
        // a freed block of that size back to the system, and every page of the next one faults in afresh: at
        // 1201 parameters that alone took longer than the quasi-Hessian's update. Blocks up to 32 MiB (the
        // most this threshold allows, n = 2048) now come from the heap, and freed memory stays with the
        // process for the next block.
        mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
        mallopt(M_TRIM_THRESHOLD, 1 << 30);
    });
}

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
