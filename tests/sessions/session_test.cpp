// Runs every tests/sessions/NAME.session, every examples/NAME.session of the user's guide and the README's
// tour (docs/tour.session), through vantrel-session in a fresh directory, and compares what it printed with
// NAME.expected beside it. The transcript compared is standard output, then standard error as
// "stderr: LINE" lines, then "exit CODE". In an expected line "{}" matches any text.
#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "support/tempfolder.h"

namespace {

const std::string kSessionDir = std::string(VANTREL_SOURCE_DIR) + "/tests/sessions";
const std::string kExampleDir = std::string(VANTREL_SOURCE_DIR) + "/examples";
const std::string kDocsDir = std::string(VANTREL_SOURCE_DIR) + "/docs";

std::vector<std::string> SessionNames(const std::string& folder) {
    std::vector<std::string> names;
    if (DIR* dir = opendir(folder.c_str())) {
        while (dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            const std::string suffix = ".session";
            if (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
                names.push_back(name.substr(0, name.size() - suffix.size()));
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// True when text matches pattern, where "{}" in pattern stands for any text.
bool Matches(const std::string& pattern, const std::string& text) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t at; (at = pattern.find("{}", start)) != std::string::npos; start = at + 2)
        parts.push_back(pattern.substr(start, at - start));
    parts.push_back(pattern.substr(start));
    if (parts.size() == 1) return pattern == text;
    if (text.compare(0, parts.front().size(), parts.front()) != 0) return false;
    size_t pos = parts.front().size();
    for (size_t i = 1; i + 1 < parts.size(); ++i) {
        const size_t found = text.find(parts[i], pos);
        if (found == std::string::npos) return false;
        pos = found + parts[i].size();
    }
    const std::string& last = parts.back();
    return text.size() >= pos + last.size() && text.compare(text.size() - last.size(), last.size(), last) == 0;
}

std::vector<std::string> RunTranscript(const std::string& script) {
    TempFolder folder;
    const SessionOutput session = RunSession(folder, script);
    std::vector<std::string> transcript = session.out;
    for (const std::string& line : session.err) transcript.push_back("stderr: " + line);
    transcript.push_back("exit " + std::to_string(session.exitCode));
    return transcript;
}

void ExpectTranscript(const std::string& folder, const std::string& name) {
    const std::vector<std::string> expected = TempFolder::Lines(folder + "/" + name + ".expected");
    const std::vector<std::string> actual = RunTranscript(folder + "/" + name + ".session");
    std::ostringstream whole;
    for (const std::string& line : actual) whole << "    " << line << "\n";
    for (size_t i = 0; i < std::max(expected.size(), actual.size()); ++i) {
        const std::string want = i < expected.size() ? expected[i] : "<end of transcript>";
        const std::string got = i < actual.size() ? actual[i] : "<end of transcript>";
        ASSERT_TRUE(Matches(want, got)) << name << ".session, transcript line " << i + 1 << ":\n  expected: "
                                        << want << "\n  actual:   " << got << "\nwhole transcript:\n" << whole.str();
    }
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
    std::string id = info.param;
    std::replace_if(id.begin(), id.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return id;
}

class SessionTranscript : public ::testing::TestWithParam<std::string> {};
TEST_P(SessionTranscript, MatchesExpected) { ExpectTranscript(kSessionDir, GetParam()); }
INSTANTIATE_TEST_SUITE_P(Sessions, SessionTranscript, ::testing::ValuesIn(SessionNames(kSessionDir)), TestName);

// The guide's examples, run as a user runs them: when one stops working, the guide is wrong.
class ExampleTranscript : public ::testing::TestWithParam<std::string> {};
TEST_P(ExampleTranscript, MatchesExpected) { ExpectTranscript(kExampleDir, GetParam()); }
INSTANTIATE_TEST_SUITE_P(Examples, ExampleTranscript, ::testing::ValuesIn(SessionNames(kExampleDir)), TestName);

// The tour that makes the README's pictures: its pictures go to the test's own folder, not into docs/.
class TourTranscript : public ::testing::TestWithParam<std::string> {};
TEST_P(TourTranscript, MatchesExpected) { ExpectTranscript(kDocsDir, GetParam()); }
INSTANTIATE_TEST_SUITE_P(Docs, TourTranscript, ::testing::ValuesIn(SessionNames(kDocsDir)), TestName);

TEST(SessionMatcher, WildcardMatchesAnyTextBetweenFixedParts) {
    EXPECT_TRUE(Matches("text 1027: {}", "text 1027: 0.015"));
    EXPECT_TRUE(Matches("a{}b{}c", "aXXbYYc"));
    EXPECT_FALSE(Matches("a{}b", "aXXc"));
    EXPECT_FALSE(Matches("exit 0", "exit 2"));
}

}  // namespace
