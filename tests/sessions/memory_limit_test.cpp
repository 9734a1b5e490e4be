// The session runner under an address-space limit set in its own child process: it starts, trains a large set
// or refuses it with the run's memory message, and exits, each within seconds. A buffer that the BLAS can't get
// would otherwise be retried for ever, at the latest in its shutdown at exit.
#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "support/tempfolder.h"

// A sanitizer's run-time reserves its shadow memory in address space far beyond any such limit, and can't start
// under one: built with a sanitizer, these tests skip.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VANTREL_SANITIZER_BUILD 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VANTREL_SANITIZER_BUILD 1
#endif
#endif

namespace {

class MemoryLimit : public ::testing::Test {
protected:
    void SetUp() override {
#ifdef VANTREL_SANITIZER_BUILD
        GTEST_SKIP() << "a sanitizer's run-time needs an unlimited address space";
#endif
    }
};

std::string AddressSpace(int megabytes) { return "prlimit --as=" + std::to_string(megabytes * 1024LL * 1024); }

TEST_F(MemoryLimit, StartsAndExitsUnderATightAddressSpace) {
    const TempFolder folder;
    const SessionOutput session = RunScript(folder, "echo hi\n", 20, AddressSpace(250));
    EXPECT_EQ(session.out, std::vector<std::string>{"hi"});
    EXPECT_EQ(session.err, std::vector<std::string>{});
    EXPECT_EQ(session.exitCode, 0) << "137: the session hung and was killed";
}

// 200000 patterns of two inputs: the BLAS's buffer for the products over them is far more than the room left
// under 250 MB, and fits under 600 MB.
TEST_F(MemoryLimit, ALargeSetTrainsOrIsRefusedAndTheSessionExits) {
    const TempFolder folder;
    std::ostringstream data;
    data << std::fixed << std::setprecision(4);
    for (int p = 0; p < 200000; ++p) {
        const double x = (p % 400) / 100.0 - 2, y = (p / 400) / 125.0 - 2;
        data << x << ' ' << y << ' ' << std::sin(x) * std::cos(y) << '\n';
    }
    folder.Write("large.txt", data.str());
    // The First Order Gradient Method: a drawn network can't make it fail for another reason.
    const std::string script = "file large.txt\ndialog 129 click 1044 ok\nclick 1009\nselect 1014 3\n"
                               "dialog 130 ok\nclick 1064\nset 1019 2\nclick 1010\nwait 30\ntext 1024\n";
    const struct {
        int megabytes;
        std::vector<std::string> out;
    } cases[] = {
        {250, {"box Error [stop]: Not enough memory: training stopped at iteration 1.", "text 1024: 0"}},
        {600, {"text 1024: 2"}},
    };
    for (const auto& c : cases) {
        const SessionOutput session = RunScript(folder, script, 30, AddressSpace(c.megabytes));
        EXPECT_EQ(session.out, c.out) << c.megabytes << " MB";
        EXPECT_EQ(session.exitCode, 0) << c.megabytes << " MB; 137: the session hung and was killed";
    }
}

}  // namespace
