// The queue that carries control operations from a worker to the main thread (layer internals).
//
// Operations run on the main thread in the order they were queued. An operation queued with a key replaces a
// pending one of the same key (the older one is dropped, the newer one keeps its own place in the order), so a
// worker writing a read-out thousands of times a second costs the window one update per event-loop turn.
#pragma once

#include <functional>

namespace platform {

void PostToGui(std::function<void()> operation, const void* coalesceKey = nullptr);
// Runs operation on the main thread after everything queued before it, and waits for it. On the main thread
// it runs at once.
void CallOnGui(const std::function<void()>& operation);
// Main thread: runs every pending operation now.
void DrainGuiQueue();
bool GuiQueueEmpty();
// Main thread: processes window events until no worker runs and the queue is empty, or timeoutMs passes
// (negative: no limit). Returns true when the workers are done.
bool PumpUntilWorkersDone(int timeoutMs);
// Main thread: processes window events for ms milliseconds.
void PumpFor(int ms);

}  // namespace platform
