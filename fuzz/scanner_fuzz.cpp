// Any bytes through the number-row scanner: rows, tokens and their values, read as a data set is.
#include <cstddef>
#include <cstdint>
#include <string>

#include "files/scanner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = MakeScanText(reinterpret_cast<const char*>(data), size);
    CRowScanner rows(text);
    std::string_view row;
    std::size_t count = 0, tokens = 0;
    while (rows.NextRow(row)) {
        ++count;
        // A row lies inside the text and never holds its line end.
        if (row.data() < text.data() || row.data() + row.size() > text.data() + text.size()) __builtin_trap();
        if (row.find('\n') != std::string_view::npos) __builtin_trap();
        CTokenScanner scanner(row);
        std::string_view token;
        while (scanner.NextToken(token)) {
            ++tokens;
            volatile double value = TokenValue(token);
            (void)value;
        }
    }
    if (count != CountRows(text)) __builtin_trap();
    return 0;
}
