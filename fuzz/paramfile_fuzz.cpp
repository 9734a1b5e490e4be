// Any bytes as a parameter file, for a data set of 1 to 8 inputs chosen by the first byte.
#include <cstddef>
#include <cstdint>
#include <string>

#include "files/paramfile.h"
#include "files/scanner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const UINT inputs = data[0] % 8 + 1;
    const std::string text = MakeScanText(reinterpret_cast<const char*>(data + 1), size - 1);
    CNetworkParameters params;
    if (ParseParameterText(text, inputs, params) != ParamFileStatus::Ok) return 0;
    // A file that is taken fills each array of the network exactly.
    const std::size_t u = params.units;
    if (params.inputWeights.size() != u * inputs || params.outputWeights.size() != u + 1 ||
        params.centers.size() != u * inputs || params.widths.size() != u)
        __builtin_trap();
    return 0;
}
