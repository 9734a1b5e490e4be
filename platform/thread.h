// The worker thread of a training run.
#pragma once

#include <atomic>

#include "platform/types.h"

using AFX_THREADPROC = UINT (*)(void* param);

class CWinThread {
public:
    virtual ~CWinThread() = default;
};

// Starts proc(param) on a new thread. The thread runs detached from the caller, as the framework's does;
// AfxWaitForWorkers lets the window wait for it before releasing what the worker uses.
// Priority, stack size and flags are accepted for the call's shape and ignored. Returns null when the system
// has no thread to give.
CWinThread* AfxBeginThread(AFX_THREADPROC proc, void* param, int priority = 0, UINT stackSize = 0,
                           DWORD flags = 0, void* security = nullptr);

// Number of workers started by AfxBeginThread that have not yet returned.
int AfxRunningWorkers();

// Main thread: keeps the window responsive (a worker may be waiting on a message box) until every worker has
// returned and everything it queued for the window is shown.
void AfxWaitForWorkers();

// Closing the window abandons the work of running workers: the iteration under way is of no use once the
// window goes, and a large network may take minutes to finish it. AfxAbandonWorkers (main thread) marks the
// workers' work abandoned; the heavy loops call AfxThrowIfAbandoned at short intervals, which on a worker
// thread then throws CWorkAbandoned, so the run unwinds at once and writes nothing more. The mark is
// cleared when the next worker starts after all have ended.
class CWorkAbandoned {};
void AfxAbandonWorkers();
// True while the work of the workers is abandoned, on any thread but the window's: a loop on a helper thread
// of a worker stops early with it, and the worker throws once the helpers are joined.
bool AfxWorkAbandoned();
void AfxThrowIfAbandonedSlow();
extern std::atomic<bool> g_afxWorkersAbandoned;
inline void AfxThrowIfAbandoned() {
    if (g_afxWorkersAbandoned.load(std::memory_order_relaxed)) AfxThrowIfAbandonedSlow();
}

// True on the thread that created the windows (the main thread).
bool AfxIsGuiThread();
