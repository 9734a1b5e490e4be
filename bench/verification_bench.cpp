// Verification of a 2-D grid of side x side points on a network of two inputs and 50 units: every row computed,
// formatted and written to both files as the press does it. Beside it, in the same iteration, the practical
// limit: the same bytes only formatted and written once to one file, with the outputs computed beforehand.
// The benchmark's time is the verification's; the counters give the limit and the ratio of the two.
//
// Run: build/bench/vantrel_bench --benchmark_filter=VerifyGrid   (about 20 s)
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "files/verification.h"
#include "platform/files.h"
#include "reference/dialogsample.h"
#include "workspace/network.h"
#include "workspace/workspace.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

// Writes the rows as the limit: y of every point is known, each row is formatted and goes once to one file.
void FormatAndWriteOnce(const CPatternSet& grid, const std::vector<double>& outputs, const std::string& path) {
    CFile file;
    file.Open(path.c_str(), CFile::modeCreate);
    double x[2];
    std::string row;
    for (std::size_t p = 0; p < grid.Count(); ++p) {
        const double target = grid.Pattern(p, x);
        row.clear();
        AppendRow(row, x, 2, target, outputs[p]);
        file.Seek(0, CFile::end);
        file.Write(row.data(), static_cast<UINT>(row.size()));
    }
    file.Close();
}

void BM_VerifyGrid(benchmark::State& state) {
    CVantrelDlg dlg;
    MakeSample(dlg, CSampleShape{16, 2, 50, 0, 5});
    const UINT side = static_cast<UINT>(state.range(0));
    const CPatternSet grid(CGridAxis{-1.0, 1.0, side}, CGridAxis{-1.0, 1.0, side});
    std::vector<double> outputs(grid.Count());
    for (std::size_t p = 0; p < grid.Count(); ++p) {
        double x[2];
        grid.Pattern(p, x);
        outputs[p] = NetworkOutput(dlg, x);
    }
    char pattern[] = "/tmp/vantrel-bench-XXXXXX";
    const std::string dir = mkdtemp(pattern);
    const std::string stampedPath = dir + "/stamped_output.txt", outputPath = dir + "/output.txt";

    double limit = 0.0, verify = 0.0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        CFile stamped, output;
        stamped.Open(stampedPath.c_str(), CFile::modeCreate);
        output.Open(outputPath.c_str(), CFile::modeCreate);
        WriteVerificationRows(NetworkOf(dlg), grid, stamped, output);
        stamped.Close();
        output.Close();
        const Clock::time_point verified = Clock::now();
        FormatAndWriteOnce(grid, outputs, dir + "/limit.txt");
        const Clock::time_point end = Clock::now();
        state.SetIterationTime(Seconds(start, verified));
        verify += Seconds(start, verified);
        limit += Seconds(verified, end);
    }
    std::filesystem::remove_all(dir);
    state.counters["limit_ms"] = benchmark::Counter(1e3 * limit / state.iterations());
    state.counters["ratio"] = benchmark::Counter(limit > 0 ? verify / limit : 0.0);
}
BENCHMARK(BM_VerifyGrid)->Arg(1000)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
