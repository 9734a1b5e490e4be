// Work shared among threads in pieces that the shape fixes, never the number of threads: whatever runs where,
// every piece is computed the same way, so the results are the same on any number of cores. Internal to the
// engine's kernels.
#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "engine/kernels.h"

namespace engine {
namespace kernels {

// What the threads of RunParts share: the next part to claim and how many have ended.
struct CPartQueue {
    std::atomic<UINT> next{0};
    std::mutex mutex;
    std::condition_variable ended;
    UINT done = 0;
};

// Calls work(part, worker) once for every part, on up to `workers` threads; worker (0 .. workers - 1) names the
// scratch the call may use. Parts go to whichever thread comes to them first: on a machine whose cores are
// busy with other work a new thread may not run for a long while, and this one then does its parts instead of
// waiting for it. One worker, or one part, starts no thread at all.
template <typename Work>
inline void RunParts(UINT parts, UINT workers, Work work) {
    if (workers <= 1 || parts <= 1) {
        for (UINT part = 0; part < parts; ++part) work(part, 0u);
        return;
    }
    auto queue = std::make_shared<CPartQueue>();
    const std::function<void(UINT, UINT)> call = [&](UINT part, UINT worker) { work(part, worker); };
    const std::function<void(UINT, UINT)>* run = &call;  // touched only while a claimed part is under way
    auto drain = [queue, run, parts](UINT worker) {
        for (UINT part; (part = queue->next.fetch_add(1)) < parts;) {
            (*run)(part, worker);
            const std::lock_guard<std::mutex> lock(queue->mutex);
            if (++queue->done == parts) queue->ended.notify_one();
        }
    };
    for (UINT worker = 1; worker < workers; ++worker) {
        try {
            std::thread(drain, worker).detach();
        } catch (const std::system_error&) {
            break;  // no thread to be had: the ones there are, this one among them, take the parts
        }
    }
    drain(0);
    std::unique_lock<std::mutex> lock(queue->mutex);
    queue->ended.wait(lock, [&] { return queue->done == parts; });
}

// Calls strip(first, width) for the columns 0 .. cols - 1 in strips of equal width, on up to `threads`
// threads: as many strips as the work is worth (columnWork operations per column), at most eight, each at
// least `minWidth` wide. Small work is one strip on this thread.
template <class Strip>
void InEqualStrips(size_t cols, double columnWork, size_t minWidth, UINT threads, Strip strip) {
    // Below this much work (some milliseconds) a strip does not pay for the start of its thread and the wait
    // for it: split from 2e7 operations on, the factorization of 1201 x 1201 took twice as long on two cores as
    // on one while other builds kept the cores busy; from 2e8 on, only its widest updates split.
    constexpr double kStripThreadWork = 2.0e8;
    const size_t byWork = static_cast<size_t>(columnWork * cols / kStripThreadWork);
    const size_t byWidth = cols / std::max<size_t>(minWidth, 1);
    const UINT strips = static_cast<UINT>(std::clamp<size_t>(std::min(byWork, byWidth), 1, 8));
    RunParts(strips, threads, [&](UINT i, UINT) {
        const size_t first = cols * i / strips, end = cols * (i + 1) / strips;
        if (end > first) strip(first, end - first);
    });
}

}  // namespace kernels
}  // namespace engine
