// The number-row scanner on the awkward inputs that real files bring.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/scanner.h"
#include "support/tempfolder.h"

namespace {

// Every piece that a scanner walks through, in order.
template <class Scanner, bool (Scanner::*Next)(std::string_view&)>
std::vector<std::string> Pieces(const std::string& text) {
    Scanner scanner(text);
    std::vector<std::string> pieces;
    std::string_view piece;
    while ((scanner.*Next)(piece)) pieces.emplace_back(piece);
    return pieces;
}

std::vector<std::string> Rows(const std::string& text) { return Pieces<CRowScanner, &CRowScanner::NextRow>(text); }

std::vector<std::string> Tokens(const std::string& row) {
    return Pieces<CTokenScanner, &CTokenScanner::NextToken>(row);
}

std::vector<std::vector<double>> Values(const std::string& fileBytes) {
    const std::string text = MakeScanText(fileBytes.data(), fileBytes.size());
    CRowScanner scanner(text);
    std::vector<std::vector<double>> rows;
    std::vector<double> values;
    for (std::size_t rowCount = CountRows(text); rowCount > 0; --rowCount) {
        ScanRowValues(scanner, values);
        rows.push_back(values);
    }
    return rows;
}

using Table = std::vector<std::vector<double>>;

}  // namespace

TEST(NumberCharacters, AreExactlyDigitsPointSignsAndE) {
    std::string accepted;
    for (int c = 0; c < 256; ++c)
        if (IsNumberChar(static_cast<char>(c))) accepted += static_cast<char>(c);
    EXPECT_EQ(accepted, "+-.0123456789Ee") << "the set of number characters changed";
}

TEST(ScanText, CutsAtNulAndAppendsCrLf) {
    const char bytes[] = {'1', ' ', '2', '\r', '\n', '\0', '3', ' ', '4', '\r', '\n'};
    EXPECT_EQ(MakeScanText(bytes, sizeof bytes), "1 2\r\n\r\n") << "bytes behind a NUL must not be read";
    EXPECT_EQ(MakeScanText("", 0), "\r\n");
    EXPECT_EQ(Values(std::string(bytes, sizeof bytes)), (Table{{1, 2}}));
}

TEST(ScanText, ReadsAFileWholeAndRefusesAMissingOne) {
    const TempFolder folder;
    const char bytes[] = {'1', ' ', '2', '\r', '\n', '3', ' ', '4', '\0', '5'};
    const std::string path = folder.Write("scanner.txt", std::string(bytes, sizeof bytes));

    std::string text;
    ASSERT_EQ(ReadScanText(path.c_str(), text), ReadTextResult::Ok);
    EXPECT_EQ(text, "1 2\r\n3 4\r\n") << "the file's last line without a line end gets CR LF in memory";

    std::string untouched = "kept";
    EXPECT_EQ(ReadScanText((path + ".missing").c_str(), untouched), ReadTextResult::CannotOpen);
    EXPECT_EQ(ReadScanText(folder.Path().c_str(), untouched), ReadTextResult::CannotOpen)
        << "a directory is no file";
    EXPECT_EQ(untouched, "kept");
}

TEST(Rows, CrLfLinesGiveTheirWholeText) {
    EXPECT_EQ(Rows("0.10 0.25 1\r\n0.50 -1.5e-2 -1\r\n.75 1 1\r\n\r\n"),
              (std::vector<std::string>{"0.10 0.25 1", "0.50 -1.5e-2 -1", ".75 1 1"}));
}

TEST(Rows, BareLfLinesLoseTheirLastByte) {
    EXPECT_EQ(Values("1 2 3\n0.5 0.75\n"), (Table{{1, 2}, {0.5, 0.7}}));
    // A one-character line with a bare LF is a row all the same, and an empty one.
    EXPECT_EQ(Rows("5\n"), (std::vector<std::string>{""}));
    EXPECT_EQ(Rows("\r\n"), std::vector<std::string>{});
}

TEST(Rows, LastLineWithoutLineEndIsRead) {
    EXPECT_EQ(Values("1 2\r\n3 4"), (Table{{1, 2}, {3, 4}}));
    EXPECT_EQ(CountRows(MakeScanText("1 2\r\n3 4\r\n", 10)), 2u) << "a second CR LF in memory adds no row";
}

TEST(Rows, LinesWithoutNumberCharactersAreSkipped) {
    const std::string file = "\r\n   \r\nInputs Outputs\r\n\t;,\r\n1 2\r\n\r\nhallo world\r\n3 4\r\n";
    EXPECT_EQ(Values(file), (Table{{1, 2}, {3, 4}}));
    EXPECT_EQ(CountRows(MakeScanText("abc xyz\r\n\r\n", 11)), 0u);
}

TEST(Rows, TitleWithAnEIsARowOfOneToken) {
    const std::string text = MakeScanText("Pattern\r\n1 2 3\r\n", 16);
    EXPECT_EQ(Rows(text), (std::vector<std::string>{"e", "1 2 3"}));
    EXPECT_EQ(TokenValue("e"), 0.0);
}

TEST(Rows, TextBeforeTheFirstNumberIsSkippedAndTrailingSeparatorsStripped) {
    EXPECT_EQ(Rows("x = 1 2 ;,\t \r\n"), (std::vector<std::string>{"1 2"}));
}

TEST(Tokens, AnyMixOfSeparatorsSplits) {
    EXPECT_EQ(Tokens("1\t2,3;4 5 ,; \t6"), (std::vector<std::string>{"1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(Tokens("1,5"), (std::vector<std::string>{"1", "5"}));
    EXPECT_EQ(Tokens("1\xC2\xA0" "2"), (std::vector<std::string>{"1", "2"})) << "bytes above 127 separate";
    EXPECT_EQ(CountTokens(""), 0u);
}

TEST(Tokens, ValueIsWhatAtofReadsOfTheLeadingPart) {
    EXPECT_EQ(Tokens("1-2"), (std::vector<std::string>{"1-2"}));
    EXPECT_EQ(TokenValue("1-2"), 1.0);
    EXPECT_EQ(TokenValue("1e3"), 1000.0);
    EXPECT_EQ(TokenValue("-1.5e-2"), -0.015);
    EXPECT_EQ(TokenValue(".75"), 0.75);
    EXPECT_EQ(TokenValue("+4"), 4.0);
    EXPECT_EQ(TokenValue("-"), 0.0);
    EXPECT_EQ(TokenValue("+"), 0.0);
    EXPECT_EQ(TokenValue("E"), 0.0);
    EXPECT_EQ(TokenValue("1..5"), 1.0);
}

TEST(Tokens, LongerThanNineteenCharactersAreReadWhole) {
    EXPECT_EQ(TokenValue("1.00000000000000000001e5"), 100000.0) << "a cut token would lose its exponent";
    EXPECT_DOUBLE_EQ(TokenValue("0.1234567890123456789012"), 0.1234567890123456789012);
    const std::string huge = "1" + std::string(200, '0');
    EXPECT_EQ(TokenValue(huge), 1e200);
}

TEST(ScanRow, ReportsZeroTokensPastTheLastRow) {
    const std::string text = MakeScanText("1 2", 3);
    CRowScanner scanner(text);
    std::vector<double> values{9.0};
    EXPECT_EQ(ScanRowValues(scanner, values), 2u);
    EXPECT_EQ(ScanRowValues(scanner, values), 0u);
    EXPECT_TRUE(values.empty()) << "an empty row must not keep the previous row's values";
}
