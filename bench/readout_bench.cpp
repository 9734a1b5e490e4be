// What the read-outs cost a first-order run: one iteration of a small network, against the two read-outs the
// worker writes after it (formatted and queued for the window, coalescing with the ones not yet shown).
#include <benchmark/benchmark.h>

#include <string>

#include "engine/runs.h"
#include "platform/strings.h"
#include "platform/uiqueue.h"
#include "reference/samples.h"

namespace {

// The smallest network a user trains for long: 50 patterns, one input, three units (as the 1-D sample).
void BM_FirstOrderIteration(benchmark::State& state) {
    engine::CNetworkBuffers net;
    MakeSample(net, CSampleShape{50, 1, 3, engine::kFirstOrder, 7});
    for (auto _ : state) {
        net.Accumulate(false, false);
        engine::ApplyFirstOrderStep(net.Step(), 0.001, 0.5);
        net.UnpackParameters();
        benchmark::DoNotOptimize(net.ComputeError());
    }
}
BENCHMARK(BM_FirstOrderIteration);

// The two texts of edits 1024 and 1025 as a worker queues them while the window has not yet shown the last.
void BM_TwoReadoutsQueued(benchmark::State& state) {
    static const int iterationKey = 0;
    static const int errorKey = 0;
    unsigned iteration = 0;
    for (auto _ : state) {
        ++iteration;
        CString text;
        text.Format("%d", iteration);
        platform::PostToGui([t = text.str()] { benchmark::DoNotOptimize(t.size()); }, &iterationKey);
        text.Format("%.12f", 0.002607435864 + iteration * 1e-15);
        platform::PostToGui([t = text.str()] { benchmark::DoNotOptimize(t.size()); }, &errorKey);
    }
    platform::DrainGuiQueue();
}
BENCHMARK(BM_TwoReadoutsQueued);

}  // namespace
