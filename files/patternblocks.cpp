#include "files/patternblocks.h"

#include <algorithm>
#include <cstring>

#include "files/datafile.h"
#include "files/scanner.h"

CBlockText MakeBlockText(const char* bytes, std::size_t length) {
    CBlockText block;
    const void* nul = length > 0 ? std::memchr(bytes, '\0', length) : nullptr;
    block.endsText = nul != nullptr;
    if (block.endsText || length == 0 || bytes[length - 1] != '\n') {
        block.text = MakeScanText(bytes, length);
    } else {
        block.text.assign(bytes, length);
    }
    return block;
}

CBlockMeasure MeasureBlock(std::string_view text) {
    CBlockMeasure measure;
    CRowScanner rows(text);
    std::string_view row;
    while (rows.NextRow(row)) {
        const std::size_t tokens = CountTokens(row);
        if (measure.firstRowTokens < 0) measure.firstRowTokens = static_cast<long long>(tokens);
        if (measure.tokensOfRows.size() <= tokens) measure.tokensOfRows.resize(tokens + 1, 0);
        ++measure.tokensOfRows[tokens];
    }
    return measure;
}

std::size_t InputValues(const CBlockMeasure& measure, std::size_t nInputs) {
    std::size_t values = 0;
    for (std::size_t t = 0; t < measure.tokensOfRows.size(); ++t) values += measure.tokensOfRows[t] * std::min(t, nInputs);
    return values;
}

std::size_t TargetValues(const CBlockMeasure& measure, std::size_t nInputs) {
    std::size_t values = 0;
    for (std::size_t t = nInputs + 1; t < measure.tokensOfRows.size(); ++t)
        values += measure.tokensOfRows[t] * (t - nInputs);
    return values;
}

void ReadBlockValues(std::string_view text, UINT nInputs, std::vector<double>& inputs, std::vector<double>& targets) {
    const CBlockMeasure measure = MeasureBlock(text);
    inputs.assign(InputValues(measure, nInputs), 0.0);
    targets.assign(TargetValues(measure, nInputs), 0.0);
    ReadPatternRows(text, nInputs, inputs.data(), inputs.size(), targets.data(), targets.size());
}
