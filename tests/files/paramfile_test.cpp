// The parameter file: its four rows, the count tests that refuse a file made for another network, and the
// round trip from the value lines of a result file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/paramfile.h"
#include "files/resultfiles.h"
#include "files/scanner.h"

namespace {

ParamFileStatus Parse(const std::string& fileBytes, UINT inputs, CNetworkParameters& params) {
    return ParseParameterText(MakeScanText(fileBytes.data(), fileBytes.size()), inputs, params);
}

ParamFileStatus Parse(const std::string& fileBytes, UINT inputs) {
    CNetworkParameters params;
    return Parse(fileBytes, inputs, params);
}

// Two inputs, three units: the counts 6, 4, 6, 3.
const std::string kTwoInputsThreeUnits =
    "1 2 3 4 5 6\r\n"
    "0 0.1 0.2 0.3\r\n"
    "7 8 9 10 11 12\r\n"
    "0.5 0.6 0.7\r\n";

using V = std::vector<double>;

}  // namespace

TEST(ParameterFile, ReadsTheFourRowsInFileOrder) {
    CNetworkParameters p;
    ASSERT_EQ(Parse("1.0 1.0 1.0 1.0\r\n0.0 0.5 -0.5\r\n0.1 0.2 0.3 0.4\r\n0.7 0.7\r\n", 2, p), ParamFileStatus::Ok);
    EXPECT_EQ(p.units, 2u);
    EXPECT_EQ(p.inputWeights, (V{1, 1, 1, 1}));
    EXPECT_EQ(p.outputWeights, (V{0, 0.5, -0.5}));
    EXPECT_EQ(p.centers, (V{0.1, 0.2, 0.3, 0.4}));
    EXPECT_EQ(p.widths, (V{0.7, 0.7}));
}

TEST(ParameterFile, UnitCountComesFromRowOneAndTheDataSetsInputs) {
    CNetworkParameters p;
    EXPECT_EQ(Parse(kTwoInputsThreeUnits, 2, p), ParamFileStatus::Ok);
    EXPECT_EQ(p.units, 3u);
    EXPECT_EQ(Parse(kTwoInputsThreeUnits, 3), ParamFileStatus::UnitsMismatch) << "3 inputs: u = 2, row 2 has 4";
    EXPECT_EQ(Parse(kTwoInputsThreeUnits, 1), ParamFileStatus::UnitsMismatch) << "1 input: u = 6, row 2 has 4";
}

TEST(ParameterFile, EachRowCountIsTested) {
    EXPECT_EQ(Parse("1 2 3 4 5 6\r\n0 0.1 0.2\r\n7 8 9 10 11 12\r\n0.5 0.6 0.7\r\n", 2),
              ParamFileStatus::UnitsMismatch) << "row 2 one short";
    EXPECT_EQ(Parse("1 2 3 4 5 6\r\n0 0.1 0.2 0.3\r\n7 8 9 10 11\r\n0.5 0.6 0.7\r\n", 2),
              ParamFileStatus::UnitsMismatch) << "row 3 one short";
    EXPECT_EQ(Parse("1 2 3 4 5 6\r\n0 0.1 0.2 0.3\r\n7 8 9 10 11 12\r\n0.5 0.6 0.7 0.8\r\n", 2),
              ParamFileStatus::UnitsMismatch) << "row 4 one long";
    EXPECT_EQ(Parse("1 2 3 4 5 6\r\n0 0.1 0.2 0.3\r\n7 8 9 10 11 12\r\n", 2), ParamFileStatus::UnitsMismatch)
        << "row 4 missing";
    EXPECT_EQ(Parse("", 2), ParamFileStatus::UnitsMismatch) << "empty file: u = 0, row 2 missing";
}

TEST(ParameterFile, RowOneMustHoldWholeUnits) {
    EXPECT_EQ(Parse("1 2 3 4 5\r\n0 0.1 0.2\r\n7 8 9 10\r\n0.5 0.6\r\n", 2), ParamFileStatus::UnitsMismatch)
        << "5 input weights for 2 inputs: the surplus would have no room";
    EXPECT_EQ(Parse("1\r\n0\r\n\r\n\r\n", 2), ParamFileStatus::UnitsMismatch) << "a row shorter than the inputs";
}

TEST(ParameterFile, WithoutInputsNothingIsRead) {
    EXPECT_EQ(Parse(kTwoInputsThreeUnits, 0), ParamFileStatus::NoInputs);
}

TEST(ParameterFile, LinesBehindRowFourAndLinesWithoutNumbersChangeNothing) {
    CNetworkParameters p;
    const std::string file = "\r\nWidth:\r\n" + kTwoInputsThreeUnits + "\r\n99 98\r\nanything at all 1 2 3\r\n";
    ASSERT_EQ(Parse(file, 2, p), ParamFileStatus::Ok);
    EXPECT_EQ(p.widths, (V{0.5, 0.6, 0.7}));
}

TEST(ParameterFile, LabelsWithAnEOrGroupsOnTwoLinesAreRefused) {
    EXPECT_EQ(Parse("Centers:\r\n" + kTwoInputsThreeUnits, 2), ParamFileStatus::UnitsMismatch);
    EXPECT_EQ(Parse("1 2 3\r\n4 5 6\r\n0 0.1 0.2 0.3\r\n7 8 9 10 11 12\r\n0.5 0.6 0.7\r\n", 2),
              ParamFileStatus::UnitsMismatch);
}

TEST(ParameterFile, BiasOnlyNetworkFromAnEmptyFirstRow) {
    // A bare LF line of one character is an empty row: no input weights, so no units.
    CNetworkParameters p;
    ASSERT_EQ(Parse("5\n0.25\r\n", 1, p), ParamFileStatus::Ok);
    EXPECT_EQ(p.units, 0u);
    EXPECT_EQ(p.outputWeights, (V{0.25}));
}

TEST(ParameterFile, ValueLinesOfAResultBlockComeBackRoundedToSixDecimals) {
    const double inputWeights[] = {1.0, -0.25, 2.0, 0.5};
    const double outputWeights[] = {0.1234567, 1.5, -2.0};
    const double centers[] = {0.3333333, 0.6666667, -1.0, 1.0};
    const double widths[] = {0.75, 1.25};
    const CResultSection trained{inputWeights, outputWeights, centers, widths};
    const std::vector<std::string> block = ResultBlock(2, 2, 10, 0.5, nullptr, trained);

    std::string whole;
    for (const std::string& write : block) whole += write;
    EXPECT_EQ(Parse(whole, 2), ParamFileStatus::UnitsMismatch) << "a whole result file is no parameter file";

    // The four value lines of the Training Results section, taken out as a user would.
    const std::string file = block[6] + block[8] + block[10] + block[12];
    CNetworkParameters p;
    ASSERT_EQ(Parse(file, 2, p), ParamFileStatus::Ok) << file;
    EXPECT_EQ(p.units, 2u);
    EXPECT_EQ(p.inputWeights, (V{1.0, -0.25, 2.0, 0.5}));
    EXPECT_EQ(p.outputWeights, (V{0.123457, 1.5, -2.0}));
    EXPECT_EQ(p.centers, (V{0.333333, 0.666667, -1.0, 1.0}));
    EXPECT_EQ(p.widths, (V{0.75, 1.25}));
}

TEST(ParameterFile, SampleFilesFitTheirDataSets) {
    struct Sample {
        const char* name;
        UINT inputs;
        UINT units;
    };
    for (const Sample& s : {Sample{"sin1d_3units.ini", 1, 3}, Sample{"twomoons_4units.ini", 2, 4}}) {
        std::string text;
        const std::string path = std::string(VANTREL_SOURCE_DIR) + "/data/" + s.name;
        ASSERT_EQ(ReadScanText(path.c_str(), text), ReadTextResult::Ok) << path;
        CNetworkParameters p;
        ASSERT_EQ(ParseParameterText(text, s.inputs, p), ParamFileStatus::Ok) << s.name;
        EXPECT_EQ(p.units, s.units) << s.name;
        for (double w : p.widths) EXPECT_GT(w, 0.0) << s.name;
    }
}
