// The runs on the engine's own buffers: what the progress sink hears and in which order, how a run ends
// (stop, abandon, no result file, no patterns), and that the same numbers train to the same bits.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "engine/kernels.h"
#include "engine/runs.h"
#include "network_test_support.h"

namespace {

using engine::RunEnding;
using engine::UINT;

// Keeps the name of every call, the curves and the result blocks.
class CRecordingSink : public engine::CProgressSink {
public:
    bool createResultFile = true;
    std::vector<std::string> calls;
    std::vector<std::vector<double>> curves;
    std::vector<UINT> units, blockIterations;
    std::vector<double> blockErrors;

    bool CreateResultFile() override { return Called("CreateResultFile"), createResultFile; }
    void TrialStarted(double) override { Called("TrialStarted"); }
    void IterationDone(UINT, double) override { Called("IterationDone"); }
    void UnitAdded(UINT count) override { Called("UnitAdded"), units.push_back(count); }
    void TimesDone(double, double) override { Called("TimesDone"); }
    void IterationCurve(const engine::CErrorCurve& errors) override {
        Called("IterationCurve");
        curves.push_back(errors.Errors());
    }
    void NetworkDone() override { Called("NetworkDone"); }
    void TotalError(double) override { Called("TotalError"); }
    void SummaryCurve(const engine::CErrorCurve&, UINT) override { Called("SummaryCurve"); }
    void ResultBlock(UINT, UINT iterations, double error) override {
        Called("ResultBlock");
        blockIterations.push_back(iterations);
        blockErrors.push_back(error);
    }

private:
    void Called(const char* name) { calls.push_back(name); }
};

engine::CFixedSettings Settings(engine::Algorithm algorithm, UINT iterations) {
    engine::CFixedSettings s;
    s.algorithm = algorithm;
    s.iterations = iterations;
    s.desiredError = 0.0;  // never reached: every iteration runs
    s.maxUnits = 2;
    return s;
}

engine::CRunOutcome Train(engine::CNetworkBuffers& b, const engine::CFixedSettings& s, CRecordingSink& sink,
                        const engine::CCancelToken& token, bool online = false) {
    b.SetAlgorithm(s.algorithm);
    if (s.algorithm == engine::kErrorCorrection) return engine::RunErrorCorrection(b, s, sink, token, online);
    return engine::RunFixedSize(b, s, sink, token);
}

std::vector<std::string> Repeat(std::vector<std::string> head, int times, const std::vector<std::string>& block) {
    for (int k = 0; k < times; ++k) head.insert(head.end(), block.begin(), block.end());
    return head;
}

}  // namespace

TEST(Runs, SinkHearsEachTrialOrUnitInOrder) {
    const std::vector<std::string> trial{"TrialStarted",   "IterationDone", "IterationDone", "IterationDone",
                                         "TimesDone",      "IterationCurve", "NetworkDone", "TotalError",
                                         "SummaryCurve",   "ResultBlock"};
    const std::vector<std::string> unit{"UnitAdded",     "TrialStarted",   "IterationDone", "IterationDone",
                                        "IterationDone", "TimesDone",      "IterationCurve", "TotalError",
                                        "NetworkDone",   "SummaryCurve",   "ResultBlock"};
    for (int algorithm = 0; algorithm < engine::kAlgorithmCount; ++algorithm) {
        const bool growth = algorithm == engine::kErrorCorrection;
        engine::CFixedSettings s = Settings(engine::Algorithm(algorithm), 3);
        s.trials = 2;
        s.saveResults = true;
        CSample sample({20, 2, 3, algorithm, 2});
        CRecordingSink sink;
        EXPECT_EQ(Train(sample.buffers, s, sink, engine::CCancelToken::Never()).ending, RunEnding::Normal);
        EXPECT_EQ(sink.calls, Repeat({"CreateResultFile"}, 2, growth ? unit : trial)) << "algorithm " << algorithm;
        ASSERT_EQ(sink.curves.size(), 2u) << "algorithm " << algorithm;
        for (size_t k = 0; k < 2; ++k) {
            EXPECT_EQ(sink.curves[k].size(), 4u) << "algorithm " << algorithm << ": initial error and 3 iterations";
            EXPECT_EQ(sink.blockIterations[k], 3u) << "algorithm " << algorithm;
            EXPECT_EQ(sink.blockErrors[k], sink.curves[k].back()) << "algorithm " << algorithm << ": block's error";
        }
        if (growth) {
            EXPECT_EQ(sink.units, (std::vector<UINT>{1, 2})) << "units added";
            EXPECT_EQ(sample.buffers.Units(), 2u);
        }
    }
}

TEST(Runs, StopAbandonMissingResultFileAndNoPatternsEndTheRunBeforeAnyTrial) {
    struct Case {
        const char* name;
        RunEnding ending;
        std::string message;
        engine::RunFailure failure;
        UINT patterns;
        bool resultFileFails;
    };
    const Case cases[] = {
        {"stop", RunEnding::Stopped, "", engine::RunFailure::None, 10, false},
        {"abandon", RunEnding::Abandoned, "", engine::RunFailure::None, 10, false},
        {"no result file", RunEnding::Failed, "Create Result File Failed!", engine::RunFailure::ResultFile, 10, true},
        {"no patterns", RunEnding::Failed,
         "The data set has no patterns or no inputs: load another data set before training.",
         engine::RunFailure::NoData, 0, false},
    };
    for (const Case& c : cases)
        for (engine::Algorithm algorithm : {engine::kSecondOrder, engine::kFirstOrder, engine::kErrorCorrection}) {
            engine::CCancelToken token;
            CSample sample({c.patterns, 2, 3, algorithm, 4}, token);
            engine::CFixedSettings s = Settings(algorithm, 5);
            CRecordingSink sink;
            if (c.ending == RunEnding::Stopped) token.RequestStop();
            if (c.ending == RunEnding::Abandoned) token.Abandon();
            s.saveResults = c.resultFileFails;
            sink.createResultFile = !c.resultFileFails;
            const engine::CRunOutcome outcome = Train(sample.buffers, s, sink, token);
            EXPECT_EQ(outcome.ending, c.ending) << c.name << ", algorithm " << algorithm;
            EXPECT_EQ(outcome.message, c.message) << c.name << ", algorithm " << algorithm;
            EXPECT_EQ(outcome.failure, c.failure) << c.name << ", algorithm " << algorithm;
            // A stopped run has begun its trial (a growth placed its unit) before the first iteration's test;
            // nothing else is reported.
            const bool startAllowed = c.ending == RunEnding::Stopped;
            for (const std::string& call : sink.calls)
                EXPECT_TRUE(call == "CreateResultFile" ||
                            (startAllowed && (call == "UnitAdded" || call == "TrialStarted")))
                    << c.name << ", algorithm " << algorithm << ": reported " << call;
        }
}

namespace {

// The bits of what a run or an accumulation leaves, on `threads` threads: compared as bits, so that a NaN
// equals the same NaN.
using CTrainedBits = std::vector<double>;

std::vector<uint64_t> Bits(const CTrainedBits& values) {
    std::vector<uint64_t> bits(values.size());
    std::memcpy(bits.data(), values.data(), values.size() * sizeof(double));
    return bits;
}

CTrainedBits TrainedOn(int threads, int algorithm, const CSampleShape& shape) {
    engine::kernels::LimitThreads(threads);
    CSample sample(shape);
    engine::CFixedSettings s = Settings(engine::Algorithm(algorithm), 3);
    s.loadFromFile = true;  // trains the sample's own network
    s.maxUnits = 2;  // Error Correction goes on online from the sample's units, large enough for parts
    s.learningConstant = 1e-5;  // small enough for 8200 patterns: first order stays finite
    CRecordingSink sink;
    Train(sample.buffers, s, sink, engine::CCancelToken::Never(), true);
    engine::kernels::LimitThreads(0);
    const engine::CNetwork net = sample.Net();
    CTrainedBits bits = sink.curves.at(0);
    for (const std::vector<double>& block :
         {Copy(net.pOutputWeights, net.nUnits + 1), Copy(net.pWidths, net.nUnits),
          Copy(net.pInputWeights, net.nUnits * 2), Copy(net.pCenters, net.nUnits * 2)})
        bits.insert(bits.end(), block.begin(), block.end());
    return bits;
}

CTrainedBits AccumulatedOn(int threads, const CSampleShape& shape) {
    engine::kernels::LimitThreads(threads);
    CSample sample(shape);
    sample.buffers.Accumulate(false, true);
    const engine::CStepArrays a = sample.Step();
    CTrainedBits bits = Copy(a.pHessian, size_t(a.nParams) * a.nParams);
    bits.push_back(sample.buffers.AccumulateGradientAndError(false));
    const CTrainedBits gradient = Copy(a.pGradient, a.nParams);
    bits.insert(bits.end(), gradient.begin(), gradient.end());
    // And the damped step that the factors give.
    sample.buffers.Accumulate(false, true);
    std::vector<double> diagonal(a.nParams), step(a.nParams);
    for (size_t d = 0; d < a.nParams; ++d) diagonal[d] = a.pHessian[d * a.nParams + d];
    sample.buffers.SolveHessian(diagonal.data(), 0.01, step.data(), nullptr);
    bits.insert(bits.end(), step.begin(), step.end());
    engine::kernels::LimitThreads(0);
    return bits;
}

}  // namespace

TEST(Runs, SameNumbersTrainToTheSameBitsOnAnyNumberOfThreads) {
    // 8200 patterns make eight blocks, so eight parts; 1201 parameters on 1000 patterns make two parts whose sums
    // are added in bands of rows, and a factorization whose updates split into strips.
    const CSampleShape parts{8200, 2, 60, engine::kSecondOrder, 3}, wide{1000, 2, 300, engine::kSecondOrder, 4};
    for (const CSampleShape& shape : {parts, wide}) {
        const std::vector<uint64_t> one = Bits(AccumulatedOn(1, shape));
        for (int threads : {2, 3, 8})
            EXPECT_EQ(Bits(AccumulatedOn(threads, shape)), one) << shape.nPatterns << " patterns: accumulation on " << threads;
    }
    for (int algorithm = 0; algorithm < engine::kAlgorithmCount; ++algorithm) {
        CSampleShape shape = parts;
        shape.nAlgorithm = algorithm;
        const std::vector<uint64_t> one = Bits(TrainedOn(1, algorithm, shape));
        for (int threads : {2, 3, 8})
            EXPECT_EQ(Bits(TrainedOn(threads, algorithm, shape)), one) << "algorithm " << algorithm << " on " << threads;
    }
}
