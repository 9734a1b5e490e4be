#include "fit_thread.h"

#include <chrono>
#include <set>
#include <stdexcept>
#include <thread>

namespace py = pybind11;

namespace {

// The runs under way, for the interpreter's exit. Never destroyed: calling threads that wait for the end of the
// process still read it while the process's static objects go.
struct CRegistry {
    std::mutex mutex;
    std::set<CFitThread*> runs;
    bool closing = false;
};

CRegistry& Registry() {
    static CRegistry* const registry = new CRegistry;
    return *registry;
}

// How long the calling thread waits without the GIL before it looks for Ctrl-C.
constexpr auto kSignalInterval = std::chrono::milliseconds(50);

bool Closing() {
    CRegistry& registry = Registry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    return registry.closing;
}

// The interpreter is exiting and does not wait for this thread (it waits for the others before it abandons
// the runs): rather than run the Python code of a fit that no longer exists, the thread waits here, without
// the GIL, until the process ends.
[[noreturn]] void WaitForTheEnd() {
    std::mutex mutex;
    std::condition_variable never;
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) never.wait(lock);
}

}  // namespace

void WithoutGil(const std::function<void()>& work) {
    std::exception_ptr failure;
    PyThreadState* state = PyEval_SaveThread();
    try {
        work();
    } catch (...) {
        failure = std::current_exception();  // thrown again once the GIL is back
    }
    if (Closing()) WaitForTheEnd();
    PyEval_RestoreThread(state);
    if (failure) std::rethrow_exception(failure);
}

// Enters a run into the registry for its lifetime; refuses one once the interpreter has begun to exit.
class CFitThread::CRegistration {
public:
    explicit CRegistration(CFitThread& run) : m_run(run) {
        CRegistry& registry = Registry();
        const std::lock_guard<std::mutex> lock(registry.mutex);
        if (registry.closing) throw std::runtime_error("The interpreter is exiting: no fit starts now.");
        registry.runs.insert(&m_run);
    }
    ~CRegistration() {
        CRegistry& registry = Registry();
        const std::lock_guard<std::mutex> lock(registry.mutex);
        registry.runs.erase(&m_run);
    }

private:
    CFitThread& m_run;
};

// Joins the run's thread: at once after a normal end; when the calling thread leaves early (an exception, or
// the exiting interpreter ending it), after abandoning the run, so that no thread is left inside the engine.
class CFitThread::CWorkerJoin {
public:
    CWorkerJoin(CFitThread& run, std::thread& worker) : m_run(run), m_worker(worker) {}
    ~CWorkerJoin() {
        if (!m_worker.joinable()) return;
        m_run.Abandon();
        m_worker.join();
    }
    void Now() { m_worker.join(); }

private:
    CFitThread& m_run;
    std::thread& m_worker;
};

engine::CRunOutcome CFitThread::Run(const Work& work, const Answer& answer) {
    CRegistration registration(*this);
    std::thread worker([this, &work] {
        try {
            m_outcome = work();
        } catch (...) {
            m_crash = std::current_exception();
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_done = true;
        m_changed.notify_all();
    });
    CWorkerJoin join(*this, worker);
    // The GIL is given up and taken back by hand, so that the thread can wait for the process's end instead of
    // taking it back at the interpreter's exit; nothing may throw while it is released.
    PyThreadState* state = PyEval_SaveThread();
    for (;;) {
        bool done = false, report = false;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait_for(lock, kSignalInterval, [this] { return m_done || (m_reportPending && !m_answerReady); });
            done = m_done;
            report = m_reportPending && !m_answerReady;
        }
        if (Closing()) WaitForTheEnd();
        PyEval_RestoreThread(state);
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();  // the join abandons the run first
        if (report) AnswerPending(answer);
        if (done) break;
        state = PyEval_SaveThread();
    }
    join.Now();
    if (m_crash) std::rethrow_exception(m_crash);
    return m_outcome;
}

void CFitThread::AnswerPending(const Answer& answer) {
    CProgressReport report;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        report = m_report;
    }
    bool goOn = true;
    if (report.call) (*report.call)();
    else goOn = answer(report);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_goOn = goOn;
    m_answerReady = true;
    m_changed.notify_all();
}

bool CFitThread::Report(const CProgressReport& report) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_abandoned) return true;
    m_report = report;
    m_reportPending = true;
    m_answerReady = false;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_answerReady || m_abandoned; });
    m_reportPending = false;
    return m_abandoned || m_goOn;
}

bool CFitThread::CallOnCaller(const std::function<void()>& call) {
    CProgressReport report;
    report.call = &call;
    Report(report);
    return !m_cancel.Abandoned();
}

void CFitThread::Abandon() {
    m_cancel.Abandon();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_abandoned = true;
    m_changed.notify_all();
}

void CFitThread::WaitForWorker() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_done; });
}

void CFitThread::AbandonAll() {
    const py::gil_scoped_release release;  // the runs' calling threads may need it to leave
    CRegistry& registry = Registry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.closing = true;
    for (CFitThread* run : registry.runs) {
        run->Abandon();
        run->WaitForWorker();
    }
}
