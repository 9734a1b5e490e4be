// The one signal from whoever started a run to the run: a cancel token.
//
// A token has two degrees. A stop asks the run to end at the head of its next iteration: the iteration under
// way is finished first, and the run ends as stopped, with everything of the finished trials kept. An abandon
// (the window is closing, the caller has gone) drops the work under way at once: the heavy loops look at the
// token at short intervals and throw CCancelled, and the run unwinds without reporting anything more.
//
// Ownership: the caller owns the token and keeps it alive while any run or kernel that was handed it runs.
// Every member may be called from any thread.
#pragma once

#include <atomic>

namespace engine {

// Thrown out of a kernel or loop whose token was abandoned. The caller's run catches it.
class CCancelled {};

class CCancelToken {
public:
    // Ensures: StopRequested() from now until Reset().
    void RequestStop() { Raise(kStop); }
    // Ensures: StopRequested() and Abandoned() from now until Reset().
    void Abandon() { Raise(kAbandon); }
    // Before a new run: neither requested.
    void Reset() { m_state.store(kNone, std::memory_order_relaxed); }

    bool StopRequested() const { return m_state.load(std::memory_order_relaxed) >= kStop; }
    bool Abandoned() const { return m_state.load(std::memory_order_relaxed) == kAbandon; }
    // Throws CCancelled when abandoned. Call only on the thread that runs the run: a helper thread of a kernel
    // checks Abandoned() and returns early instead, and the run's thread throws once the helper is joined.
    void ThrowIfAbandoned() const {
        if (Abandoned()) throw CCancelled();
    }

    // A token that nothing ever cancels, for work that is not part of a run.
    static const CCancelToken& Never() {
        static const CCancelToken never;
        return never;
    }

private:
    enum State { kNone = 0, kStop = 1, kAbandon = 2 };
    void Raise(int state) {
        int seen = m_state.load(std::memory_order_relaxed);
        while (seen < state && !m_state.compare_exchange_weak(seen, state, std::memory_order_relaxed)) {
        }
    }
    std::atomic<int> m_state{kNone};
};

}  // namespace engine
