// A console reporter that, after the usual table, prints for every benchmark family NAME_Fast / NAME_Blas,
// NAME_One / NAME_Fast and NAME_Fast / NAME_LU on each shape (0 where a variant did not run). A repeated
// benchmark counts by its median, one that ran once by its time.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

class CRatioReporter : public benchmark::ConsoleReporter {
public:
    explicit CRatioReporter(OutputOptions options) : ConsoleReporter(options) {}
    void ReportRuns(const std::vector<Run>& reports) override;
    void Finalize() override;

private:
    // family ("Accumulate") -> shape ({101, 1000}) -> variant ("Fast") -> seconds per iteration
    std::map<std::string, std::map<std::vector<long>, std::map<std::string, double>>> m_times;
};
