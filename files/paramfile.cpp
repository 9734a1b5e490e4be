// The parameter file: the four rows of a stored network.
#include "files/paramfile.h"

#include <charconv>
#include <climits>

#include "files/scanner.h"

ParamFileStatus ParseParameterText(std::string_view text, UINT nInputs, CNetworkParameters& params) {
    // The unit count is row 1's count divided by the inputs: without inputs there is nothing to divide by.
    if (nInputs == 0) return ParamFileStatus::NoInputs;
    CRowScanner rows(text);
    const std::size_t n = nInputs;
    const std::size_t first = ScanRowValues(rows, params.inputWeights);
    // Row 1 must hold whole units. A surplus has no room in the input weights, and dropping it would take a
    // file made for another data set without a word: such a file is refused with the mismatch message.
    if (first % n != 0 || first / n > UINT_MAX) return ParamFileStatus::UnitsMismatch;
    const std::size_t u = first / n;
    if (ScanRowValues(rows, params.outputWeights) != u + 1) return ParamFileStatus::UnitsMismatch;
    if (ScanRowValues(rows, params.centers) != n * u) return ParamFileStatus::UnitsMismatch;
    if (ScanRowValues(rows, params.widths) != u) return ParamFileStatus::UnitsMismatch;
    params.units = static_cast<UINT>(u);
    return ParamFileStatus::Ok;
}

namespace {

void AppendRow(std::string& text, const std::vector<double>& values) {
    // Fixed notation of a double takes at most 309 digits before the point and 1074 after it.
    char number[1100];
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (k > 0) text += ' ';
        const std::to_chars_result end =
            std::to_chars(number, number + sizeof number, values[k], std::chars_format::fixed);
        text.append(number, end.ptr);
    }
    text += "\r\n";
}

}  // namespace

std::string ParameterFileText(const CNetworkParameters& params) {
    std::string text;
    AppendRow(text, params.inputWeights);
    AppendRow(text, params.outputWeights);
    AppendRow(text, params.centers);
    AppendRow(text, params.widths);
    return text;
}
