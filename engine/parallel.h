// Work shared among threads in pieces that the shape fixes, never the number of threads: whatever runs where,
// every piece is computed the same way, so the results are the same on any number of cores. Internal to the
// engine's kernels.
#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "engine/kernels.h"

namespace engine {
namespace kernels {

// Helper threads kept for the life of the process. Starting a thread takes tens of microseconds, and a new one
// may wait long before it is first scheduled: too much for work of a millisecond, which an iteration of a small
// network is. Kept threads wait a little while awake for the next piece of work, then sleep until offered one.
class CWorkerPool {
public:
    // This process's pool; a child made by fork gets a fresh one, since threads do not survive fork.
    static CWorkerPool& OfProcess();

    // Calls drain(0) on this thread and drain(worker) on up to `helpers` kept threads (worker 1 .. helpers, each
    // at most once), and returns when every call has returned. A kept thread that is busy elsewhere or slow to
    // wake simply does not join, so drain(0) alone must be able to do the whole work.
    void Share(const std::function<void(UINT)>& drain, UINT helpers);

    CWorkerPool(const CWorkerPool&) = delete;
    CWorkerPool& operator=(const CWorkerPool&) = delete;

private:
    struct CJob;
    CWorkerPool() = default;
    void StartThreads(UINT count);
    void Serve();
    CJob* OpenJob();

    std::mutex m_mutex;
    std::condition_variable m_offered;  // a job with a free slot was posted
    std::condition_variable m_left;     // a helper left its job
    std::vector<CJob*> m_jobs;          // posted jobs, until their poster has done its own share
    std::atomic<UINT> m_freeSlots{0};   // slots of posted jobs not yet taken: what an awake thread watches
    UINT m_threads = 0;                 // threads started; they run until the process ends
};

// Calls work(part, worker) once for every part, on up to `workers` threads; worker (0 .. workers - 1) names the
// scratch the call may use. Parts go to whichever thread comes to them first: on a machine whose cores are
// busy with other work a kept thread may not run for a long while, and this one then does its parts instead
// of waiting for it. One worker, or one part, involves no other thread at all.
template <typename Work>
inline void RunParts(UINT parts, UINT workers, Work work) {
    if (workers <= 1 || parts <= 1) {
        for (UINT part = 0; part < parts; ++part) work(part, 0u);
        return;
    }
    std::atomic<UINT> next{0};
    const std::function<void(UINT)> drain = [&](UINT worker) {
        for (UINT part; (part = next.fetch_add(1, std::memory_order_relaxed)) < parts;) work(part, worker);
    };
    CWorkerPool::OfProcess().Share(drain, std::min(workers, parts) - 1);
}

// Calls strip(first, width) for the columns 0 .. cols - 1 in strips of equal width, on up to `threads`
// threads: as many strips as the work is worth (columnWork operations per column), at most eight, each at
// least `minWidth` wide. Small work is one strip on this thread.
template <class Strip>
void InEqualStrips(size_t cols, double columnWork, size_t minWidth, UINT threads, Strip strip) {
    // Below this much work (a few tenths of a millisecond) a strip does not pay for handing it to a kept thread
    // and waiting for its end.
    constexpr double kStripThreadWork = 2.0e7;
    const size_t byWork = static_cast<size_t>(columnWork * cols / kStripThreadWork);
    const size_t byWidth = cols / std::max<size_t>(minWidth, 1);
    // A power of two, so that two or four threads share the strips evenly.
    UINT strips = 1;
    while (strips < 8 && strips * 2 <= std::min(byWork, byWidth)) strips *= 2;
    RunParts(strips, threads, [&](UINT i, UINT) {
        const size_t first = cols * i / strips, end = cols * (i + 1) / strips;
        if (end > first) strip(first, end - first);
    });
}

}  // namespace kernels
}  // namespace engine
