// What a session reads and writes, run through vantrel-session as a caller runs it: a script and a --dir whose
// names are not UTF-8, a --dir it can't use, and the rows of a 1-D grid over the whole range of doubles.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/tempfolder.h"

namespace {

// Three patterns of one input, an Error Correction run that may add no unit (every output is the bias, 1),
// its results saved, then a verification on the training patterns.
const std::string kTrainAndVerify =
    "file data.txt\ndialog 129 click 1044 ok\nclick 1009\nselect 1014 2\ndialog 1038 set 1097 0 ok\n"
    "click 1064\nclick 1055\nclick 1010\nwait 60\nclick 1038\n";
const std::string kData = "0 0\r\n0.5 1\r\n1 0\r\n";

// Runs the script at scriptPath with --dir dir; what it printed goes to files of output, a folder apart.
SessionOutput RunWithDir(const TempFolder& output, const std::string& dir, const std::string& scriptPath) {
    const std::string out = output.Path() + "/stdout.txt", err = output.Path() + "/stderr.txt";
    const std::string command = std::string("QT_QPA_PLATFORM=offscreen '") + VANTREL_SESSION_EXE + "' --dir '" +
                                dir + "' '" + scriptPath + "' >'" + out + "' 2>'" + err + "'";
    const int status = std::system(command.c_str());
    return SessionOutput{TempFolder::Lines(out), TempFolder::Lines(err), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

std::string MakeFolder(const TempFolder& root, const std::string& name) {
    const std::string path = root.Path() + "/" + name;
    EXPECT_EQ(mkdir(path.c_str(), 0755), 0) << "cannot make " << path;
    return path;
}

TEST(SessionFolders, ScriptAndDirectoryWhoseNamesAreNotUtf8ReadAndWriteThere) {
    const TempFolder root;
    const std::string scripts = MakeFolder(root, "scripts-\xff\xfe");
    const std::string dir = MakeFolder(root, "out-\xe9t\xe9");
    const TempFolder output;
    root.Write("scripts-\xff\xfe/data.txt", kData);
    const std::string script = root.Write("scripts-\xff\xfe/run.session", kTrainAndVerify + "png 1009 button.png\n");
    const SessionOutput session = RunWithDir(output, dir, script);

    ASSERT_EQ(session.err, std::vector<std::string>{});
    ASSERT_EQ(session.out.size(), 2u) << "the data beside the script was not read";
    EXPECT_EQ(session.out[0].rfind("opened " + dir + "/", 0), 0u) << session.out[0];
    EXPECT_EQ(session.out[1], "png 1009: button.png");
    EXPECT_EQ(session.exitCode, 0);
    EXPECT_EQ(TempFolder::Read(dir + "/output.txt"),
              "0.000000\t0.000000\t1.000000\t-1.000000\t\r\n0.500000\t1.000000\t1.000000\t0.000000\t\r\n"
              "1.000000\t0.000000\t1.000000\t-1.000000\t\r\n")
        << "the rows of the three patterns, y the bias";
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    ASSERT_EQ(names.size(), 4u) << "result file, two output files and the picture";
    EXPECT_EQ(names[3], "output.txt");
    EXPECT_NE(names[0].find("_output.txt"), std::string::npos);
    EXPECT_NE(names[1].find("_result.txt"), std::string::npos);
    EXPECT_EQ(names[2], "button.png");
}

// A chain of folders whose path grows past any length a single call may name: each is made inside the one
// before it, opened by its handle. rm, which walks by handles as well, removes it.
class FolderChain {
public:
    explicit FolderChain(const std::string& root) : m_path(root), m_fd(open(root.c_str(), O_DIRECTORY)) {}
    ~FolderChain() {
        if (m_fd >= 0) close(m_fd);
        if (!m_first.empty()) {
            EXPECT_EQ(std::system(("rm -rf '" + m_first + "'").c_str()), 0);
        }
    }

    // Grows the chain to a path of exactly length bytes.
    const std::string& GrowTo(size_t length) {
        while (m_path.size() < length) {
            const size_t left = length - m_path.size() - 1;
            const std::string name(left > 250 ? 200 : left, 'd');
            EXPECT_EQ(mkdirat(m_fd, name.c_str(), 0755), 0);
            const int next = openat(m_fd, name.c_str(), O_DIRECTORY);
            close(m_fd);
            m_fd = next;
            m_path += "/" + name;
            if (m_first.empty()) m_first = m_path;
        }
        return m_path;
    }

private:
    std::string m_path;
    std::string m_first;
    int m_fd;
};

TEST(SessionFolders, DirectoryItCannotUseIsRefusedByNameAndNothingRuns) {
    const TempFolder root;
    const TempFolder output;
    root.Write("data.txt", kData);
    const std::string script = root.Write("run.session", kTrainAndVerify);
    FolderChain chain(root.Path());
    // Too long to name the files written in it, and then too long for the system to name at all: the program's
    // path in such a folder, cut at its limit, named one of its parents.
    const std::string nearLimit = chain.GrowTo(PATH_MAX - 20);
    const std::string beyondLimit = chain.GrowTo(PATH_MAX + 300);
    const struct {
        std::string dir;
        std::string reason;
    } cases[] = {
        {nearLimit, "File name too long"},
        {beyondLimit, "File name too long"},
        {root.Path() + "/missing", "No such file or directory"},
        {root.Path() + "/data.txt", "Not a directory"},
    };
    for (const auto& c : cases) {
        const SessionOutput session = RunWithDir(output, c.dir, script);
        EXPECT_EQ(session.exitCode, 2) << c.reason;
        EXPECT_EQ(session.out, std::vector<std::string>{}) << c.reason << ": the session ran";
        EXPECT_EQ(session.err, std::vector<std::string>{"cannot use --dir " + c.dir + ": " + c.reason});
    }
}

// A row's first number, the grid's input.
double FirstNumber(const std::string& row) { return std::strtod(row.c_str(), nullptr); }

TEST(SessionFolders, GridOverTheWholeRangeOfDoublesHasFiniteRisingInputsFromEndToEnd) {
    const TempFolder folder;
    folder.Write("data.txt", kData);
    std::ostringstream script;
    script.precision(17);
    script << kTrainAndVerify << "click 1059\ndialog 138 set 1105 " << -DBL_MAX << " set 1106 " << DBL_MAX
           << " set 1107 5 ok\nclick 1038\n";
    const SessionOutput session = RunScript(folder, script.str());
    ASSERT_EQ(session.out.size(), 2u);
    const std::vector<std::string> rows = TempFolder::Lines(folder.Path() + "/output.txt");
    ASSERT_EQ(rows.size(), 5u);
    std::vector<double> inputs;
    for (const std::string& row : rows) {
        EXPECT_EQ(row.substr(row.find('\t')), "\t0.000000\t1.000000\t-1.000000\t") << row.substr(0, 40);
        inputs.push_back(FirstNumber(row));
    }
    EXPECT_EQ(inputs.front(), -DBL_MAX);
    EXPECT_EQ(inputs[2], 0.0);
    EXPECT_EQ(inputs.back(), DBL_MAX);
    for (size_t n = 1; n < inputs.size(); ++n) EXPECT_LT(inputs[n - 1], inputs[n]) << "point " << n;
}

}  // namespace
