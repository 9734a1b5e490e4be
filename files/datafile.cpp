// The data set file and every file of patterns: the shape of a text and its rows.
#include "files/datafile.h"

#include <cctype>
#include <climits>
#include <cstring>
#include <new>
#include <string>

#include "files/scanner.h"
#include "engine/memory.h"

bool HasBareLineFeeds(std::string_view text) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
        if (at == 0 || text[at - 1] != '\r') return true;
    return false;
}

std::string CrLfConversion(std::string_view fileName) {
    bool plain = !fileName.empty();
    for (char c : fileName)
        plain = plain && (std::isalnum(static_cast<unsigned char>(c)) || (c != '\0' && std::strchr("._-+/", c)));
    std::string name;
    if (plain) {
        name = fileName;
    } else {
        name = "'";
        for (char c : fileName) name += c == '\'' ? std::string("'\\''") : std::string(1, c);
        name += "'";
    }
    return "sed -i 's/\\r*$/\\r/' " + name;
}

CDataSetShape MeasureDataSet(std::string_view text) {
    CDataSetShape shape;
    shape.patterns = CountRows(text);
    CRowScanner rows(text);
    std::string_view first;
    if (rows.NextRow(first)) shape.columns = CountTokens(first);
    return shape;
}

std::size_t ReadPatternRows(std::string_view text, UINT nInputs, double* inputs, std::size_t inputRoom,
                            double* targets, std::size_t targetRoom) {
    std::size_t i = 0;
    std::size_t t = 0;
    CRowScanner rows(text);
    std::string_view row;
    while (rows.NextRow(row)) {
        CTokenScanner tokens(row);
        std::string_view token;
        std::size_t column = 0;
        while (tokens.NextToken(token)) {
            ++column;
            if (column <= nInputs) {
                if (i < inputRoom) inputs[i] = TokenValue(token);
                ++i;
            } else {
                if (t < targetRoom) targets[t] = TokenValue(token);
                ++t;
            }
        }
    }
    return i + t;
}

bool ReadPatterns(std::string_view text, CPatternRows& rows) {
    rows = CPatternRows();
    rows.shape = MeasureDataSet(text);
    const std::size_t n = rows.shape.columns > 0 ? rows.shape.columns - 1 : 0;
    const std::size_t patterns = rows.shape.patterns;
    if (n > UINT_MAX || !engine::DoublesFit(double(patterns) * (double(n) + 1))) return false;
    rows.nInputs = static_cast<UINT>(n);
    try {
        rows.inputs.assign(patterns * n, 0.0);
        rows.targets.assign(patterns, 0.0);
    } catch (const std::bad_alloc&) {
        rows.inputs = std::vector<double>();
        rows.targets = std::vector<double>();
        return false;
    }
    rows.values = ReadPatternRows(text, rows.nInputs, rows.inputs.data(), rows.inputs.size(), rows.targets.data(),
                                  rows.targets.size());
    return true;
}

const char* DataSetMessage(DataSetStatus status) {
    switch (status) {
        case DataSetStatus::Ok: return "";
        case DataSetStatus::CannotOpen: return kCannotOpenFile;
        case DataSetStatus::TextTooLarge:
        case DataSetStatus::CountsTooLarge:
        case DataSetStatus::RowsTooLarge: return kDataSetTooLarge;
        case DataSetStatus::Incomplete: return kDataFileIncomplete;
        case DataSetStatus::NoPatterns: return kNoPatterns;
        case DataSetStatus::NoInputs: return kNoInputs;
    }
    return "";
}

DataSetStatus ReadDataSet(const char* path, CPatternRows& rows) {
    rows = CPatternRows();
    std::string text;
    const ReadTextResult read = ReadScanText(path, text);
    if (read != ReadTextResult::Ok)
        return read == ReadTextResult::CannotOpen ? DataSetStatus::CannotOpen : DataSetStatus::TextTooLarge;
    const bool fits = ReadPatterns(text, rows);
    rows.bareLineFeeds = HasBareLineFeeds(text);
    if (rows.shape.patterns > UINT_MAX || rows.shape.columns > UINT_MAX) {
        rows = CPatternRows();
        return DataSetStatus::CountsTooLarge;
    }
    if (!fits) return DataSetStatus::RowsTooLarge;
    return CountsStatus(rows.shape.patterns, rows.nInputs, rows.values);
}

DataSetStatus CountsStatus(std::size_t patterns, std::size_t nInputs, std::size_t values) {
    if (values != patterns * nInputs + patterns) return DataSetStatus::Incomplete;
    if (patterns == 0) return DataSetStatus::NoPatterns;
    if (nInputs == 0) return DataSetStatus::NoInputs;
    return DataSetStatus::Ok;
}
