// The kept helper threads of RunParts.
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>

#include "engine/parallel.h"

namespace engine {
namespace kernels {

// One call of Share: the work, its slots for helpers, and the helpers inside it. Guarded by the pool's mutex.
struct CWorkerPool::CJob {
    const std::function<void(UINT)>* drain;
    UINT slots;         // helpers wanted: workers 1 .. slots
    UINT taken = 0;     // slots handed out so far
    // Helpers inside drain now: changed under the mutex, read without it by a poster that waits awake.
    std::atomic<UINT> attached{0};
};

namespace {

std::atomic<CWorkerPool*> g_pool{nullptr};

// How long a thread that has done its share stays awake for the next: longer than the gap between two pieces of
// one iteration (the accumulation's parts, then the factorization's strips), short enough not to take a
// core for long from other programs once training has stopped.
constexpr auto kAwake = std::chrono::microseconds(200);

// How long a poster whose own share is done waits awake for its helpers before it sleeps until they leave.
constexpr auto kAwaitHelpers = std::chrono::microseconds(100);

inline void Pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

}  // namespace

CWorkerPool& CWorkerPool::OfProcess() {
    static const bool forkHandled = [] {
        // The child's copy of the pool would wait for threads that are not there: it starts a pool of its own.
        pthread_atfork(nullptr, nullptr, [] { g_pool.store(nullptr); });
        return true;
    }();
    (void)forkHandled;
    CWorkerPool* pool = g_pool.load(std::memory_order_acquire);
    if (pool) return *pool;
    // Never deleted: its threads wait on it until the process ends.
    auto* fresh = new CWorkerPool();
    if (g_pool.compare_exchange_strong(pool, fresh, std::memory_order_acq_rel)) return *fresh;
    delete fresh;  // another thread made the pool first; pool now holds it
    return *pool;
}

void CWorkerPool::StartThreads(UINT count) {
    // Under m_mutex.
    while (m_threads < count) {
        try {
            std::thread([this] { Serve(); }).detach();
        } catch (const std::system_error&) {
            return;  // no thread to be had: the ones there are, the caller among them, take the work
        }
        ++m_threads;
    }
}

CWorkerPool::CJob* CWorkerPool::OpenJob() {
    for (CJob* job : m_jobs)
        if (job->taken < job->slots) return job;
    return nullptr;
}

void CWorkerPool::Serve() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        CJob* job = OpenJob();
        if (!job) {
            lock.unlock();
            const auto until = std::chrono::steady_clock::now() + kAwake;
            while (m_freeSlots.load(std::memory_order_acquire) == 0 && std::chrono::steady_clock::now() < until)
                for (int i = 0; i < 32; ++i) Pause();
            lock.lock();
            m_offered.wait(lock, [this] { return OpenJob() != nullptr; });
            job = OpenJob();
        }
        const UINT worker = ++job->taken;
        ++job->attached;
        m_freeSlots.fetch_sub(1, std::memory_order_relaxed);
        lock.unlock();
        (*job->drain)(worker);
        lock.lock();
        if (--job->attached == 0) m_left.notify_all();
    }
}

void CWorkerPool::Share(const std::function<void(UINT)>& drain, UINT helpers) {
    CJob job{&drain, 0};
    if (helpers > 0) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        StartThreads(helpers);
        job.slots = std::min(helpers, m_threads);
        if (job.slots > 0) {
            m_jobs.push_back(&job);
            m_freeSlots.fetch_add(job.slots, std::memory_order_release);
        }
    }
    if (job.slots > 0) m_offered.notify_all();
    // Whatever drain(0) does, the job leaves the list and its helpers finish before it goes out of scope.
    auto close = [&] {
        if (job.slots == 0) return;
        std::unique_lock<std::mutex> lock(m_mutex);
        m_jobs.erase(std::find(m_jobs.begin(), m_jobs.end(), &job));
        m_freeSlots.fetch_sub(job.slots - job.taken, std::memory_order_relaxed);
        if (job.attached.load(std::memory_order_acquire) == 0) return;
        // The helpers' shares end about when this thread's does: a short wait awake is over before a sleeping
        // thread would be woken (tens of microseconds on a virtual machine), and the kept threads' shares
        // are often that short.
        lock.unlock();
        const auto until = std::chrono::steady_clock::now() + kAwaitHelpers;
        while (job.attached.load(std::memory_order_acquire) != 0 && std::chrono::steady_clock::now() < until)
            for (int i = 0; i < 32; ++i) Pause();
        lock.lock();
        m_left.wait(lock, [&] { return job.attached.load(std::memory_order_relaxed) == 0; });
    };
    try {
        drain(0);
    } catch (...) {
        close();
        throw;
    }
    close();
}

}  // namespace kernels
}  // namespace engine
