// Ratio table after the benchmark table (see ratio_reporter.h).
#include "ratio_reporter.h"

#include <cstdio>

void CRatioReporter::ReportRuns(const std::vector<Run>& reports) {
    ConsoleReporter::ReportRuns(reports);
    for (const Run& run : reports) {
        const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        if (run.error_occurred || run.iterations == 0 || !(median || run.run_type == Run::RT_Iteration)) continue;
        // "BM_Accumulate_Fast/101/1000/min_time:0.300/repeats:3/real_time_median"
        const std::string name = run.benchmark_name();
        const size_t slash = name.find('/');
        const std::string head = name.substr(0, slash);
        const size_t underscore = head.rfind('_');
        // A name without a variant behind a second underscore (BM_VerifyGrid) has no place in the table.
        if (head.compare(0, 3, "BM_") != 0 || underscore <= 2 || slash == std::string::npos) continue;
        std::vector<long> shape;
        for (size_t at = slash + 1; at < name.size();) {
            const size_t next = std::min(name.find('/', at), name.size());
            const std::string part = name.substr(at, next - at);
            if (!part.empty() && part.find_first_not_of("0123456789") == std::string::npos)
                shape.push_back(std::stol(part));
            at = next + 1;
        }
        m_times[head.substr(3, underscore - 3)][shape][head.substr(underscore + 1)] =
            run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
    }
}

void CRatioReporter::Finalize() {
    ConsoleReporter::Finalize();
    std::printf("\n%-18s %-16s %11s %11s %11s %11s %10s %9s %8s\n", "work", "shape", "Fast ms", "One ms", "LU ms",
                "Blas ms", "Fast/Blas", "One/Fast", "Fast/LU");
    for (const auto& [family, shapes] : m_times) {
        for (const auto& [shape, variants] : shapes) {
            std::string label;
            for (long value : shape) label += (label.empty() ? "" : "/") + std::to_string(value);
            auto at = [&](const char* variant) {
                const auto found = variants.find(variant);
                return found == variants.end() ? 0.0 : found->second;
            };
            const double fast = at("Fast"), one = at("One"), lu = at("LU"), blas = at("Blas");
            std::printf("%-18s %-16s %11.3f %11.3f %11.3f %11.3f %10.2f %9.2f %8.2f\n", family.c_str(), label.c_str(),
                        fast * 1e3, one * 1e3, lu * 1e3, blas * 1e3, blas > 0 ? fast / blas : 0.0,
                        fast > 0 && one > 0 ? one / fast : 0.0, lu > 0 ? fast / lu : 0.0);
        }
    }
    std::fflush(stdout);
}
