// The result file that a whole session leaves beside the executable when Save Training Results is on: its
// blocks, line by line, and how their numbers agree with the read-outs that the session printed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "session_support.h"

namespace {

const std::string kLongRule(49, '/');
const std::string kShortRule(27, '/');

// Loads the one-input sample, chooses the algorithm and, for a fixed size, takes the network of the
// parameter file; Save Training Results is switched on.
std::string SetUpFromTheFile(int algorithm) {
    return "file " + SampleData("sin1d.txt") + "\ndialog 129 click 1044 ok\nclick 1009\nselect 1014 " +
           std::to_string(algorithm) + "\nfile " + SampleData("sin1d_3units.ini") +
           "\ndialog 130 click 1070 ok\nclick 1064\nclick 1055\n";
}

// Lines of a text whose every line ends in CR LF; false if a line ends otherwise.
bool SplitCrLf(const std::string& text, std::vector<std::string>& lines) {
    lines.clear();
    size_t start = 0;
    for (size_t at; (at = text.find('\n', start)) != std::string::npos; start = at + 1) {
        if (at == 0 || text[at - 1] != '\r') return false;
        const std::string line = text.substr(start, at - 1 - start);
        if (line.find('\r') != std::string::npos) return false;
        lines.push_back(line);
    }
    return start == text.size();
}

// A value line: count numbers of six decimals, one blank between them and none at the end.
bool IsValueLine(const std::string& line, int count) {
    if (count == 0) return line.empty();
    std::string pattern = "-?[0-9]+\\.[0-9]{6}";
    for (int k = 1; k < count; ++k) pattern += " -?[0-9]+\\.[0-9]{6}";
    return std::regex_match(line, std::regex(pattern));
}

struct Block {
    int iterations = -1;
    double error = 0.0;
    std::vector<std::string> lines;
};

// Checks one block against its layout: "#N" stands for a value line of N numbers, "#header" for the line of
// iterations and error, anything else for itself.
void ExpectLayout(const std::vector<std::string>& lines, size_t first, const std::vector<std::string>& layout,
                  Block& block) {
    static const std::regex header("total iterations: ([0-9]+), average sum square error: (-?[0-9]+\\.[0-9]{10})");
    for (size_t k = 0; k < layout.size(); ++k) {
        const std::string& want = layout[k];
        const std::string& got = lines.at(first + k);
        std::smatch match;
        if (want == "#header") {
            ASSERT_TRUE(std::regex_match(got, match, header)) << "block line " << k + 1 << ": " << got;
            block.iterations = std::atoi(match[1].str().c_str());
            block.error = std::strtod(match[2].str().c_str(), nullptr);
        } else if (want[0] == '#') {
            EXPECT_TRUE(IsValueLine(got, std::atoi(want.c_str() + 1)))
                << "block line " << k + 1 << " should hold " << want.substr(1) << " values: \"" << got << "\"";
        } else {
            EXPECT_EQ(got, want) << "block line " << k + 1;
        }
        block.lines.push_back(got);
    }
}

std::vector<std::string> Section(const char* title, int units) {
    const std::string perUnit = "#" + std::to_string(units), outputs = "#" + std::to_string(units + 1);
    return {kShortRule, title, "Input weights:", perUnit, "Output weights:", outputs, "Centers:", perUnit, "Width:", perUnit};
}

// Layout of a trial's block (with initial conditions) or of a unit's block (without), one input.
std::vector<std::string> BlockLayout(int units, bool initialConditions) {
    std::vector<std::string> layout = {kLongRule, "#header", "number of RBF units: " + std::to_string(units)};
    if (initialConditions) {
        const std::vector<std::string> initial = Section("Initial Conditions", units);
        layout.insert(layout.end(), initial.begin(), initial.end());
    }
    const std::vector<std::string> trained = Section("Training Results", units);
    layout.insert(layout.end(), trained.begin(), trained.end());
    layout.insert(layout.end(), {kLongRule, "", ""});
    return layout;
}

// Reads the session's one result file as blocks of the given layouts, the file ending after the last one.
std::vector<Block> ReadBlocks(const SessionDirectory& dir, const std::vector<std::vector<std::string>>& layouts) {
    std::vector<Block> blocks;
    const std::vector<std::string> files = dir.ResultFiles();
    EXPECT_EQ(files.size(), 1u) << "result files of the session";
    if (files.size() != 1) return blocks;
    std::vector<std::string> lines;
    EXPECT_TRUE(SplitCrLf(SessionDirectory::ReadBytes(files[0]), lines)) << "a line of " << files[0]
                                                                          << " does not end in CR LF";
    size_t at = 0;
    for (const std::vector<std::string>& layout : layouts) {
        if (at + layout.size() > lines.size()) {
            ADD_FAILURE() << "the file ends inside block " << blocks.size() + 1 << ":\n" << JoinLines(lines);
            return blocks;
        }
        blocks.emplace_back();
        ExpectLayout(lines, at, layout, blocks.back());
        at += layout.size();
    }
    EXPECT_EQ(at, lines.size()) << "lines after the last block:\n" << JoinLines(lines);
    return blocks;
}

double Readout(const std::vector<std::string>& transcript, int id) {
    const std::vector<std::string> texts = ReadoutTexts(transcript, id);
    return texts.empty() ? -1.0 : std::strtod(texts.back().c_str(), nullptr);
}

// The file's network, as a value line prints it.
const std::vector<std::string> kFileNetwork = {"1.000000 1.000000 1.000000", "0.000005 1.029501 -0.000009 -1.029506",
                                               "1.570800 3.141600 4.712400", "1.500000 1.500000 1.500000"};

std::vector<std::string> ValueLines(const Block& block, size_t firstLabel) {
    return {block.lines[firstLabel + 1], block.lines[firstLabel + 3], block.lines[firstLabel + 5],
            block.lines[firstLabel + 7]};
}

TEST(SessionResultFile, TwoTrialsThatRunOutWriteTwoBlocksStartingFromTheFilesNetworkAndAgreeWithTheReadouts) {
    SessionDirectory dir;
    int exitCode = -1;
    const std::vector<std::string> transcript = dir.Run(
        SetUpFromTheFile(3) + "set 1019 50\nset 1047 2\nclick 1010\nwait 60\ntext 1024\ntext 1025\ntext 1026\n", exitCode);
    ASSERT_EQ(exitCode, 0) << JoinLines(transcript);
    const std::vector<Block> blocks = ReadBlocks(dir, {BlockLayout(3, true), BlockLayout(3, true)});
    ASSERT_EQ(blocks.size(), 2u);

    for (const Block& block : blocks) {
        EXPECT_EQ(block.iterations, 50) << "a trial that runs out reports all its iterations";
        // Loaded from a file, no trial draws anew: every block shows the file's network as its start.
        EXPECT_EQ(ValueLines(block, 5), kFileNetwork) << "Initial Conditions";
        EXPECT_EQ(block.lines[16], kFileNetwork[0]) << "the plain method leaves the input weights alone";
    }
    EXPECT_NE(ValueLines(blocks[0], 15), ValueLines(blocks[1], 15)) << "the second trial goes on from the first";
    // The header has ten decimals, the read-outs twelve.
    EXPECT_NEAR(blocks[1].error, Readout(transcript, 1025), 1e-10) << "the last trial's error";
    EXPECT_NEAR((blocks[0].error + blocks[1].error) / 2, Readout(transcript, 1026), 1e-10) << "the average error";
}

TEST(SessionResultFile, TrialReachingTheGoalReportsTheIterationItStoppedAtAndTrainsTheInputWeightsWhenImproved) {
    SessionDirectory dir;
    int exitCode = -1;
    const std::vector<std::string> transcript =
        dir.Run(SetUpFromTheFile(4) + "set 1020 0.0027\nclick 1010\nwait 60\ntext 1024\ntext 1025\n", exitCode);
    ASSERT_EQ(exitCode, 0) << JoinLines(transcript);
    const std::vector<Block> blocks = ReadBlocks(dir, {BlockLayout(3, true)});
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(std::to_string(blocks[0].iterations), ReadoutTexts(transcript, 1024).at(0));
    EXPECT_LT(blocks[0].iterations, 100000);
    EXPECT_LT(blocks[0].error, 0.0027);
    EXPECT_NEAR(blocks[0].error, Readout(transcript, 1025), 1e-10);
    EXPECT_EQ(ValueLines(blocks[0], 5), kFileNetwork);
    EXPECT_NE(blocks[0].lines[16], kFileNetwork[0]) << "the Improved method trains the input weights";
}

TEST(SessionResultFile, ErrorCorrectionWritesOneBlockPerUnitWithoutInitialConditions) {
    SessionDirectory dir;
    int exitCode = -1;
    const std::string script = "file " + SampleData("sin1d.txt") +
                               "\ndialog 129 click 1044 ok\nclick 1009\nselect 1014 2\ndialog 1038 set 1097 3 ok\n"
                               "click 1064\nclick 1055\nclick 1010\nwait 60\ntext 1023\ntext 1026\n";
    const std::vector<std::string> transcript = dir.Run(script, exitCode);
    ASSERT_EQ(exitCode, 0) << JoinLines(transcript);
    // The sample set falls below the desired error with its second unit, so the run ends there.
    ASSERT_EQ(ReadoutTexts(transcript, 1023), std::vector<std::string>{"2"}) << JoinLines(transcript);
    const std::vector<Block> blocks = ReadBlocks(dir, {BlockLayout(1, false), BlockLayout(2, false)});
    ASSERT_EQ(blocks.size(), 2u);
    for (const Block& block : blocks) EXPECT_EQ(block.iterations, 200) << "each unit gets all its iterations";
    EXPECT_GE(blocks[0].error, 0.0001);
    EXPECT_NEAR(blocks[1].error, Readout(transcript, 1026), 1e-10);
    EXPECT_EQ(blocks[1].lines[6], "1.000000 1.000000") << "a new unit's input weights stay 1";
}

TEST(SessionResultFile, StoppedTrialLeavesNoBlock) {
    SessionDirectory dir;
    int exitCode = -1;
    const std::vector<std::string> transcript =
        dir.Run(SetUpFromTheFile(3) + "set 1019 100000000\nclick 1010\nsleep 100\nclick 1010\nwait 60\nenabled 1038\n", exitCode);
    ASSERT_EQ(exitCode, 0) << JoinLines(transcript);
    ASSERT_EQ(transcript, std::vector<std::string>{"enabled 1038: 0"}) << "the run should have been stopped";
    const std::vector<std::string> files = dir.ResultFiles();
    ASSERT_EQ(files.size(), 1u) << "the file is created when the run begins";
    EXPECT_EQ(SessionDirectory::ReadBytes(files[0]), "");
}

}  // namespace
