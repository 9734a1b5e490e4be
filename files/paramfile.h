// The parameter file: a stored network, four rows read by the number-row scanner, in the order of the value
// lines of a result block: input weights (u x n), output weights (u + 1, the bias first), centers (u x n),
// widths (u). The number of units u is what row 1 implies for the data set's n inputs. Whatever follows
// row 4 isn't read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

struct CNetworkParameters {
    UINT units = 0;
    std::vector<double> inputWeights;
    std::vector<double> outputWeights;
    std::vector<double> centers;
    std::vector<double> widths;
};

enum class ParamFileStatus { Ok, NoInputs, UnitsMismatch };

// The messages of a parameter file that can't be taken.
inline constexpr const char* kUnitsMismatch = "Number of RBF units does not match!";
inline constexpr const char* kParamFileTooLarge = "Parameter file is too large to load!";

// Reads the four rows of text for a data set of nInputs inputs. The counts are the only test: UnitsMismatch
// when a row's count disagrees with u, or when row 1 isn't a whole number of units.
ParamFileStatus ParseParameterText(std::string_view text, UINT nInputs, CNetworkParameters& params);

// The four rows of params as text that ParseParameterText reads back to the same bits: each value in the
// shortest fixed notation that keeps it exactly, one blank between values, CR LF after each row. Requires:
// every value finite (the scanner has no way to read an infinity or a NaN).
std::string ParameterFileText(const CNetworkParameters& params);
