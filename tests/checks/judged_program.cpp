// A test program of three tests whose middle one ends as VANTREL_END_MODE tells it: unset it passes; "fail"
// fails a test; "abort" kills the program; "quiet-exit" leaves with exit status 0 part way, as a sanitizer told
// to exit with 0 does when its run-time fails; "exit-status" has the program end with 66 after all its tests
// passed, as a report at exit does.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

std::string Mode() {
    const char* mode = std::getenv("VANTREL_END_MODE");
    return mode != nullptr ? mode : "";
}

TEST(Ending, First) { SUCCEED(); }

TEST(Ending, Middle) {
    const std::string mode = Mode();
    if (mode == "abort") std::abort();
    if (mode == "quiet-exit") std::_Exit(0);
    if (mode == "exit-status") std::atexit([] { std::_Exit(66); });
    EXPECT_NE(mode, "fail") << "failed as told";
}

TEST(Ending, Last) { SUCCEED(); }

}  // namespace
