// A fit's run on a thread of its own, while the calling Python thread waits without the GIL.
//
// The run's thread never touches the interpreter: what it has to tell Python (a progress report, answered by
// the estimators' callback) it hands to the calling thread and waits for the answer. The calling thread takes
// the GIL only at short intervals, to answer such a report and to look for Ctrl-C (any signal whose Python
// handler raises), which abandons the run.
//
// The interpreter may end while a fit runs on a thread that outlives its main thread (a daemon thread): at its
// exit every run is abandoned and its thread waited for, and the calling thread then waits without the GIL
// until the process ends. It never takes the GIL again: the interpreter would end it there by unwinding its
// stack, whose objects would give their Python references back without the GIL.
#pragma once

#include <pybind11/pybind11.h>

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>

#include "engine/runs.h"

// A report of the run's progress: after an iteration, or (Error Correction) after a unit.
struct CProgressReport {
    bool unit = false;
    engine::UINT number = 0;                // the iteration, or the number of units
    double error = 0.0;                     // the average sum square error of the training patterns
    double heldOutError = 0.0;              // of the held-out patterns; NaN when not followed
    const std::function<void()>* call = nullptr;  // instead of a report: a call the calling thread makes
};

// Runs work (which must not call into Python) without the GIL, for a caller that holds it, and throws again
// what it threw once the GIL is back. Once the interpreter has begun to exit, the thread waits for the end of
// the process instead of taking the GIL back.
void WithoutGil(const std::function<void()>& work);

class CFitThread {
public:
    using Work = std::function<engine::CRunOutcome()>;
    // Called under the GIL on the calling thread; false asks the run to stop. May raise a Python exception,
    // which abandons the run and reaches the caller of Run.
    using Answer = std::function<bool(const CProgressReport&)>;

    CFitThread() = default;
    CFitThread(const CFitThread&) = delete;
    CFitThread& operator=(const CFitThread&) = delete;

    // The token the work must run with.
    engine::CCancelToken& Cancel() { return m_cancel; }

    // Runs work on a thread of its own and returns its outcome. Call with the GIL held; it is held again on
    // return. Raises KeyboardInterrupt (or what the signal's handler raised) after Ctrl-C, what an answer
    // raised, and what the work threw; RuntimeError once the interpreter has begun to exit.
    engine::CRunOutcome Run(const Work& work, const Answer& answer);

    // On the run's thread: hands the report to the calling thread and returns its answer (true: go on). An
    // abandoned run is answered true at once.
    bool Report(const CProgressReport& report);

    // On the run's thread: has the calling thread make call under the GIL (what the run needs of Python, the
    // patterns of a cluster say) and waits for it. False when the run was abandoned: the call may not have
    // been made. What the call raises reaches the caller of Run, and abandons the run.
    bool CallOnCaller(const std::function<void()>& call);

    // Abandons every run that is under way and waits until their threads have left the engine. For the
    // interpreter's exit; later fits are refused.
    static void AbandonAll();

private:
    class CRegistration;
    class CWorkerJoin;

    void Abandon();
    void WaitForWorker();
    void AnswerPending(const Answer& answer);

    engine::CCancelToken m_cancel;
    std::mutex m_mutex;
    std::condition_variable m_changed;  // a report, the run's end, an answer, an abandon
    bool m_done = false;                // the run's thread has left the work
    bool m_reportPending = false;
    bool m_answerReady = false;
    bool m_goOn = true;
    bool m_abandoned = false;
    CProgressReport m_report;
    engine::CRunOutcome m_outcome;
    std::exception_ptr m_crash;         // what the work threw: a C++ exception, never a Python one
};
