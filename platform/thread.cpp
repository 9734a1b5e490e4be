#include "platform/thread.h"

#include <atomic>
#include <system_error>
#include <thread>

std::atomic<bool> g_afxWorkersAbandoned{false};

namespace {
std::atomic<int> g_running{0};
thread_local bool t_isWorker = false;
const std::thread::id g_mainThread = std::this_thread::get_id();

class CWorkerThread : public CWinThread {};
CWorkerThread g_threadObject;  // the returned object is not kept by callers; one shared object suffices
}  // namespace

CWinThread* AfxBeginThread(AFX_THREADPROC proc, void* param, int, UINT, DWORD, void*) {
    // A worker of a window closed earlier has ended: its mark must not abandon this one.
    if (g_running++ == 0) g_afxWorkersAbandoned = false;
    try {
        std::thread([proc, param] {
            t_isWorker = true;
            proc(param);
            --g_running;
        }).detach();
    } catch (const std::system_error&) {
        --g_running;  // no thread: nothing to wait for
        return nullptr;
    }
    return &g_threadObject;
}

int AfxRunningWorkers() { return g_running.load(); }

bool AfxIsGuiThread() { return std::this_thread::get_id() == g_mainThread; }

void AfxAbandonWorkers() {
    if (g_running.load() > 0) g_afxWorkersAbandoned = true;
}

bool AfxWorkAbandoned() { return g_afxWorkersAbandoned.load(std::memory_order_relaxed) && !AfxIsGuiThread(); }

void AfxThrowIfAbandonedSlow() {
    // The window's own thread never gives up what it does: only a worker's work was abandoned.
    if (t_isWorker && g_afxWorkersAbandoned.load()) throw CWorkAbandoned();
}
