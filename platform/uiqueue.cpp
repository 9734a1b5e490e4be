#include "platform/uiqueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>
#include <future>
#include <list>
#include <mutex>
#include <unordered_map>

#include "platform/thread.h"

namespace platform {
namespace {

struct Operation {
    std::function<void()> run;
    const void* key;
};

std::mutex g_mutex;
std::list<Operation> g_pending;
std::unordered_map<const void*, std::list<Operation>::iterator> g_pendingByKey;
bool g_drainPosted = false;

// The window takes in what workers queued at most this often: a run that writes its read-outs after every
// iteration then costs the main thread a few dozen updates a second, not all of its time (and not the core
// the worker needs).
constexpr int kDrainIntervalMs = 15;

void PostDrain() {
    QCoreApplication* app = QCoreApplication::instance();
    if (app == nullptr) return;
    // The timer must be started on the main thread, which has the event loop.
    QMetaObject::invokeMethod(
        app, [app] { QTimer::singleShot(kDrainIntervalMs, Qt::PreciseTimer, app, [] { DrainGuiQueue(); }); },
        Qt::QueuedConnection);
}

}  // namespace

void PostToGui(std::function<void()> operation, const void* coalesceKey) {
    if (QCoreApplication::instance() == nullptr) {
        // No window system: nothing shows, run in place so that state stays consistent.
        operation();
        return;
    }
    bool postDrain = false;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        auto found = coalesceKey != nullptr ? g_pendingByKey.find(coalesceKey) : g_pendingByKey.end();
        if (found != g_pendingByKey.end()) {
            // The newer operation takes the older one's node, moved to the end: no allocation per read-out.
            g_pending.splice(g_pending.end(), g_pending, found->second);
            found->second->run = std::move(operation);
        } else {
            g_pending.push_back(Operation{std::move(operation), coalesceKey});
            if (coalesceKey != nullptr) g_pendingByKey.emplace(coalesceKey, std::prev(g_pending.end()));
        }
        if (!g_drainPosted) {
            g_drainPosted = true;
            postDrain = true;
        }
    }
    if (postDrain) PostDrain();
}

void CallOnGui(const std::function<void()>& operation) {
    if (AfxIsGuiThread() || QCoreApplication::instance() == nullptr) {
        operation();
        return;
    }
    std::promise<void> done;
    std::future<void> finished = done.get_future();
    PostToGui([&operation, &done] {
        operation();
        done.set_value();
    });
    // A caller that waits is not kept waiting for the window's next regular pass.
    QMetaObject::invokeMethod(QCoreApplication::instance(), [] { DrainGuiQueue(); }, Qt::QueuedConnection);
    finished.wait();
}

void DrainGuiQueue() {
    std::list<Operation> batch;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        batch.swap(g_pending);
        g_pendingByKey.clear();
        g_drainPosted = false;
    }
    for (Operation& op : batch) op.run();
}

bool GuiQueueEmpty() {
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_pending.empty();
}

bool PumpUntilWorkersDone(int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        if (QCoreApplication::instance() != nullptr) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        DrainGuiQueue();
        if (AfxRunningWorkers() == 0 && GuiQueueEmpty()) return true;
        if (timeoutMs >= 0 && timer.elapsed() >= timeoutMs) return false;
        QThread::msleep(1);
    }
}

void PumpFor(int ms) {
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        DrainGuiQueue();
        if (timer.elapsed() < ms) QThread::msleep(1);
    } while (timer.elapsed() < ms);
}

}  // namespace platform

void AfxWaitForWorkers() { platform::PumpUntilWorkersDone(-1); }
