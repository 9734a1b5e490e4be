// Result file text, byte for byte: file names, value lines and whole blocks.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "files/resultfiles.h"

namespace {

struct tm Moment(int year, int month, int day, int hour, int minute, int second) {
    struct tm t {};
    t.tm_year = year - 1900;
    t.tm_mon = month - 1;
    t.tm_mday = day;
    t.tm_hour = hour;
    t.tm_min = minute;
    t.tm_sec = second;
    return t;
}

std::string Joined(const std::vector<std::string>& writes) {
    std::string text;
    for (const std::string& w : writes) text += w;
    return text;
}

const std::string kLong = "/////////////////////////////////////////////////\r\n";
const std::string kShort = "///////////////////////////\r\n";

}  // namespace

TEST(ResultFileName, FieldsAreNotPadded) {
    EXPECT_EQ(TimestampedFileName(Moment(2011, 3, 17, 14, 5, 27), "result.txt"), "2011317_14527_result.txt");
    EXPECT_EQ(TimestampedFileName(Moment(2012, 2, 1, 3, 4, 5), "result.txt"), "201221_345_result.txt");
    EXPECT_EQ(TimestampedFileName(Moment(2011, 1, 11, 0, 0, 0), "result.txt"),
              TimestampedFileName(Moment(2011, 11, 1, 0, 0, 0), "result.txt"))
        << "different days may share a name, as the unpadded format has it";
    EXPECT_EQ(TimestampedFileName(Moment(2024, 12, 31, 23, 59, 59), "output.txt"), "20241231_235959_output.txt");
}

TEST(ResultValueLine, SixDecimalsOneBlankBetweenNoneAtTheEnd) {
    const double widths[] = {1.5, 2};
    EXPECT_EQ(ValueLine(widths, 2), "1.500000 2.000000\r\n");
    const double one[] = {-0.0000004};
    EXPECT_EQ(ValueLine(one, 1), "-0.000000\r\n");
    EXPECT_EQ(ValueLine(nullptr, 0), "\r\n") << "an empty array gives an empty line";
}

TEST(ResultValueLine, NonFiniteNumbersPrintAsTheCLibraryWritesThem) {
    const double values[] = {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(ValueLine(values, 4), "inf -inf nan -nan\r\n");
}

TEST(ResultBlock, RunBlockByteForByte) {
    const double initV[] = {1, 2}, initW[] = {0.5, 1, -1}, initC[] = {0.25, 0.75}, initS[] = {1, 1};
    const double V[] = {1.1, 2.2}, W[] = {0.123456789, 1.5, -1.5}, C[] = {0.3, 0.7}, S[] = {0.9, 1.2};
    const CResultSection initial{initV, initW, initC, initS};
    const CResultSection trained{V, W, C, S};
    const std::string expected = kLong +
                                 "total iterations: 7, average sum square error: 0.0001234568\r\n"
                                 "number of RBF units: 2\r\n" +
                                 kShort +
                                 "Initial Conditions\r\n"
                                 "Input weights:\r\n1.000000 2.000000\r\n"
                                 "Output weights:\r\n0.500000 1.000000 -1.000000\r\n"
                                 "Centers:\r\n0.250000 0.750000\r\n"
                                 "Width:\r\n1.000000 1.000000\r\n" +
                                 kShort +
                                 "Training Results\r\n"
                                 "Input weights:\r\n1.100000 2.200000\r\n"
                                 "Output weights:\r\n0.123457 1.500000 -1.500000\r\n"
                                 "Centers:\r\n0.300000 0.700000\r\n"
                                 "Width:\r\n0.900000 1.200000\r\n" +
                                 kLong + "\r\n\r\n";
    EXPECT_EQ(Joined(ResultBlock(2, 1, 7, 0.00012345678, &initial, trained)), expected);
}

TEST(ResultBlock, RowsOfUnitsStandOnOneLineUnitByUnit) {
    const double V[] = {1, 2, 3, 4, 5, 6}, W[] = {0, 1, 2}, C[] = {6, 5, 4, 3, 2, 1}, S[] = {1.5, 2};
    const std::vector<std::string> block = ResultBlock(2, 3, 1, 0, nullptr, CResultSection{V, W, C, S});
    EXPECT_EQ(block[6], "1.000000 2.000000 3.000000 4.000000 5.000000 6.000000\r\n");
    EXPECT_EQ(block[12], "1.500000 2.000000\r\n");
}

TEST(ResultBlock, ErrorCorrectionBlockHasNoInitialConditions) {
    const double V[] = {1}, W[] = {0.5, 2}, C[] = {0.1}, S[] = {3};
    const std::string text = Joined(ResultBlock(1, 1, 12, 0.5, nullptr, CResultSection{V, W, C, S}));
    const std::string expected = kLong +
                                 "total iterations: 12, average sum square error: 0.5000000000\r\n"
                                 "number of RBF units: 1\r\n" +
                                 kShort +
                                 "Training Results\r\n"
                                 "Input weights:\r\n1.000000\r\n"
                                 "Output weights:\r\n0.500000 2.000000\r\n"
                                 "Centers:\r\n0.100000\r\n"
                                 "Width:\r\n3.000000\r\n" +
                                 kLong + "\r\n\r\n";
    EXPECT_EQ(text, expected);
}

TEST(ResultBlock, WithoutUnitsTheArrayLinesAreEmptyAndTheBiasStandsAlone) {
    const double bias[] = {0.25};
    const CResultSection section{nullptr, bias, nullptr, nullptr};
    const std::vector<std::string> block = ResultBlock(0, 2, 0, 1.0, &section, section);
    ASSERT_EQ(block.size(), 24u) << "one write per line of the block";
    for (int line : {7, 11, 13, 17, 21, 23}) EXPECT_EQ(block[line - 1], "\r\n") << "line " << line;
    EXPECT_EQ(block[8], "0.250000\r\n");
    EXPECT_EQ(block[18], "0.250000\r\n");
}

TEST(ResultBlock, DivergedTrainingShowsInfAndNan) {
    const double bad[] = {std::numeric_limits<double>::infinity()};
    const double W[] = {std::nan(""), 1};
    const std::vector<std::string> block = ResultBlock(1, 1, 3, std::numeric_limits<double>::infinity(), nullptr,
                                                       CResultSection{bad, W, bad, bad});
    EXPECT_EQ(block[1], "total iterations: 3, average sum square error: inf\r\n");
    EXPECT_EQ(block[8], "nan 1.000000\r\n");
}
