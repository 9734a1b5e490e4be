// The data set reader: the counts that decide a file's shape, the values in reading order, and the limits of
// the arrays that a malformed file must not cross.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/datafile.h"
#include "files/scanner.h"
#include "support/tempfolder.h"

namespace {

constexpr double kGuard = -12345.0;

struct Loaded {
    CDataSetShape shape;
    UINT inputs = 0;
    std::size_t values = 0;
    std::vector<double> x;  // room for patterns x inputs, then guard elements
    std::vector<double> t;  // room for patterns, then guard elements
};

// Reads a file's bytes as the load does, with arrays sized from the counts and guard elements behind them.
Loaded Load(const std::string& fileBytes) {
    const std::string text = MakeScanText(fileBytes.data(), fileBytes.size());
    Loaded l;
    l.shape = MeasureDataSet(text);
    l.inputs = l.shape.columns > 0 ? static_cast<UINT>(l.shape.columns - 1) : 0;
    const std::size_t xRoom = l.shape.patterns * l.inputs;
    const std::size_t tRoom = l.shape.patterns;
    l.x.assign(xRoom + 8, kGuard);
    l.t.assign(tRoom + 8, kGuard);
    l.values = ReadPatternRows(text, l.inputs, l.x.data(), xRoom, l.t.data(), tRoom);
    return l;
}

bool Complete(const Loaded& l) { return l.values == (l.inputs + 1) * l.shape.patterns; }

std::vector<double> Head(const std::vector<double>& v, std::size_t n) { return {v.begin(), v.begin() + n}; }

void ExpectGuardsIntact(const Loaded& l, const char* what) {
    const std::size_t xRoom = l.shape.patterns * l.inputs;
    for (std::size_t k = xRoom; k < l.x.size(); ++k) EXPECT_EQ(l.x[k], kGuard) << what << ": inputs overrun at " << k;
    for (std::size_t k = l.shape.patterns; k < l.t.size(); ++k)
        EXPECT_EQ(l.t[k], kGuard) << what << ": targets overrun at " << k;
}

}  // namespace

TEST(DataSetReader, ReadsInputsAndTargetsOfAWellFormedFile) {
    const Loaded l = Load("0.10 0.25 1\r\n0.50 -1.5e-2 -1\r\n.75 1 1\r\n");
    EXPECT_EQ(l.shape.patterns, 3u);
    EXPECT_EQ(l.shape.columns, 3u);
    EXPECT_TRUE(Complete(l));
    EXPECT_EQ(Head(l.x, 6), (std::vector<double>{0.10, 0.25, 0.50, -0.015, 0.75, 1}));
    EXPECT_EQ(Head(l.t, 3), (std::vector<double>{1, -1, 1}));
}

TEST(DataSetReader, TitleRowWithAnEMakesTheFileOneColumnWide) {
    const Loaded l = Load("Pattern\r\n1 2 3\r\n");
    EXPECT_EQ(l.shape.patterns, 2u);
    EXPECT_EQ(l.inputs, 0u);
    EXPECT_FALSE(Complete(l));
    ExpectGuardsIntact(l, "title row");
}

TEST(DataSetReader, ShortRowFailsTheCountTest) {
    const Loaded l = Load("1 2 3\r\n4 5\r\n");
    EXPECT_EQ(l.values, 5u);
    EXPECT_FALSE(Complete(l));
    ExpectGuardsIntact(l, "short row");
}

TEST(DataSetReader, LongerRowsStayInsideTheArraysAndStillCount) {
    const Loaded l = Load("1 2 3\r\n4 5 6 7 8 9 10\r\n");
    EXPECT_EQ(l.values, 10u) << "every value read must count, stored or not";
    EXPECT_FALSE(Complete(l));
    EXPECT_EQ(Head(l.t, 2), (std::vector<double>{3, 6}));
    ExpectGuardsIntact(l, "long row");
}

TEST(DataSetReader, SurplusAndShortageThatCancelOutPassInReadingOrder) {
    const Loaded l = Load("1 2 3\r\n4 5\r\n6 7 8 9\r\n");
    EXPECT_TRUE(Complete(l));
    EXPECT_EQ(Head(l.x, 6), (std::vector<double>{1, 2, 4, 5, 6, 7}));
    EXPECT_EQ(Head(l.t, 3), (std::vector<double>{3, 8, 9}));
    ExpectGuardsIntact(l, "cancelling rows");
}

// The acceptance that the window's Load Data and the Python module's load_data share: each rule in its order,
// told with the window's message.
TEST(DataSetAcceptance, EachRuleRefusesWithItsMessageInOrder) {
    TempFolder folder;
    struct Case {
        const char* name;
        std::string bytes;
        DataSetStatus status;
        const char* message;
    };
    const Case cases[] = {
        {"whole", "1 2 3\r\n4 5 6\r\n", DataSetStatus::Ok, ""},
        {"short", "1 2 3\r\n4 5\r\n", DataSetStatus::Incomplete, "Data file is incompleted!"},
        {"empty", "\r\n", DataSetStatus::NoPatterns, "Data file holds no patterns!"},
        {"outputs", "1\r\n2\r\n", DataSetStatus::NoInputs, "Number of Inputs Should Be Larger Than Zero"},
    };
    for (const Case& c : cases) {
        CPatternRows rows;
        const DataSetStatus status = ReadDataSet(folder.Write(c.name, c.bytes).c_str(), rows);
        EXPECT_EQ(status, c.status) << c.name;
        EXPECT_STREQ(DataSetMessage(status), c.message) << c.name;
    }
    CPatternRows rows;
    EXPECT_EQ(ReadDataSet((folder.Path() + "/missing.txt").c_str(), rows), DataSetStatus::CannotOpen);
    EXPECT_STREQ(DataSetMessage(DataSetStatus::CannotOpen), "Sorry, Cannot Open File!");
    for (DataSetStatus tooLarge :
         {DataSetStatus::TextTooLarge, DataSetStatus::CountsTooLarge, DataSetStatus::RowsTooLarge})
        EXPECT_STREQ(DataSetMessage(tooLarge), "Data set is too large to load!");
    EXPECT_EQ(ReadDataSet(folder.Write("read", "1 2 3\r\n4 5 6\r\n").c_str(), rows), DataSetStatus::Ok);
    EXPECT_EQ(rows.inputs, (std::vector<double>{1, 2, 4, 5})) << "an accepted set keeps its values";
    EXPECT_EQ(rows.targets, (std::vector<double>{3, 6}));
}
