// The kept threads of the kernels: every part done once, nested sharing, a failing share, and a forked child;
// the BLAS's thread count under holds that overlap.
#include <cblas.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "engine/parallel.h"

using engine::UINT;
using engine::kernels::RunParts;

namespace {

// How often each part ran, run with `workers` threads.
std::vector<int> PartCounts(UINT parts, UINT workers) {
    std::vector<std::atomic<int>> counts(parts);
    RunParts(parts, workers, [&](UINT part, UINT worker) {
        EXPECT_LT(worker, workers) << "a worker index past the scratch the caller sized";
        counts[part].fetch_add(1);
    });
    std::vector<int> result;
    for (const std::atomic<int>& c : counts) result.push_back(c.load());
    return result;
}

}  // namespace

TEST(KeptThreads, EveryPartRunsExactlyOnceWhateverTheWorkers) {
    for (UINT workers : {1u, 2u, 3u, 8u})
        for (UINT parts : {1u, 2u, 7u, 64u})
            for (int round = 0; round < 20; ++round)  // the kept threads are reused from round to round
                EXPECT_EQ(PartCounts(parts, workers), std::vector<int>(parts, 1))
                    << parts << " parts on " << workers << " workers";
}

TEST(KeptThreads, PartsThatShareTheirOwnWorkFinishEveryInnerPart) {
    std::atomic<int> inner{0};
    RunParts(4, 4, [&](UINT, UINT) { RunParts(8, 3, [&](UINT, UINT) { inner.fetch_add(1); }); });
    EXPECT_EQ(inner.load(), 32);
}

TEST(KeptThreads, AFailureOnTheCallersShareReachesTheCallerAfterTheHelpersEnd) {
    std::atomic<int> helping{0};
    const std::function<void(UINT)> drain = [&](UINT worker) {
        if (worker == 0) throw std::runtime_error("the caller's share failed");
        helping.fetch_add(1);
        helping.fetch_sub(1);
    };
    EXPECT_THROW(engine::kernels::CWorkerPool::OfProcess().Share(drain, 3), std::runtime_error);
    EXPECT_EQ(helping.load(), 0) << "a helper was still inside the failed share";
    EXPECT_EQ(PartCounts(16, 4), std::vector<int>(16, 1)) << "the pool stopped sharing after a failure";
}

// ThreadSanitizer ends a child of a threaded process that starts threads, which is what this test asks of it.
TEST(SingleBlasThread, OverlappingHoldsGiveTheHostsCountBackWhateverTheirOrder) {
    // Runs on two threads hold one BLAS thread at once and let go in either order.
    const int host = openblas_get_num_threads();
    openblas_set_num_threads(3);
    for (bool firstEndsFirst : {true, false}) {
        auto first = std::make_unique<engine::kernels::CSingleBlasThread>();
        auto second = std::make_unique<engine::kernels::CSingleBlasThread>();
        EXPECT_EQ(openblas_get_num_threads(), 1) << "while held";
        (firstEndsFirst ? first : second).reset();
        EXPECT_EQ(openblas_get_num_threads(), 1) << "while the other still holds";
        (firstEndsFirst ? second : first).reset();
        EXPECT_EQ(openblas_get_num_threads(), 3) << (firstEndsFirst ? "first" : "second") << " let go first";
    }
    openblas_set_num_threads(host);
}

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VANTREL_NO_THREADS_AFTER_FORK
#endif
#endif

#ifndef VANTREL_NO_THREADS_AFTER_FORK
// Whether two parts ran at the same time, on two threads: each waits (up to seconds) for the other to start.
bool TwoPartsRanSideBySide() {
    std::atomic<int> started{0}, metTheOther{0};
    RunParts(2, 2, [&](UINT, UINT) {
        started.fetch_add(1);
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (started.load() < 2 && std::chrono::steady_clock::now() < until) std::this_thread::yield();
        if (started.load() == 2) metTheOther.fetch_add(1);
    });
    return metTheOther.load() == 2;
}

TEST(KeptThreads, AForkedChildSharesWorkWithThreadsOfItsOwn) {
    ASSERT_TRUE(TwoPartsRanSideBySide()) << "no kept thread helped before the fork";
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) _exit(TwoPartsRanSideBySide() ? 0 : 1);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "the child crashed while sharing work after fork";
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the child's parts found no helper: it counted on its parent's threads";
}
#endif
