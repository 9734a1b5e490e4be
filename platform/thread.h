// The worker thread of a training run.
#pragma once

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

// True on the thread that created the windows (the main thread).
bool AfxIsGuiThread();
