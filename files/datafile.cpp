// The data set file and every file of patterns: the shape of a text and its rows.
#include "files/datafile.h"

#include "files/scanner.h"

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
