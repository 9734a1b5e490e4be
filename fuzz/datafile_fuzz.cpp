// Any bytes as a data set file: its shape, then every row read into arrays sized by that shape.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "files/datafile.h"
#include "files/scanner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = MakeScanText(reinterpret_cast<const char*>(data), size);
    const CDataSetShape shape = MeasureDataSet(text);
    const UINT inputs = shape.columns > 0 ? static_cast<UINT>(shape.columns - 1) : 0;
    // Rows longer than the first must stay within the arrays: they are sized as the loader sizes them.
    std::vector<double> in(shape.patterns * inputs), out(shape.patterns);
    const std::size_t values = ReadPatternRows(text, inputs, in.data(), in.size(), out.data(), out.size());
    // Each token is one value: the count can't exceed the text's length.
    if (values > text.size()) __builtin_trap();
    return 0;
}
