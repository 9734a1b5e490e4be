#include "platform/thread.h"

#include <atomic>
#include <system_error>
#include <thread>

namespace {
std::atomic<int> g_running{0};
const std::thread::id g_mainThread = std::this_thread::get_id();

class CWorkerThread : public CWinThread {};
CWorkerThread g_threadObject;  // the returned object is not kept by callers; one shared object suffices
}  // namespace

CWinThread* AfxBeginThread(AFX_THREADPROC proc, void* param, int, UINT, DWORD, void*) {
    ++g_running;
    try {
        std::thread([proc, param] {
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
