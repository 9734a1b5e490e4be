// A copy of the session runner in a folder that its user can't write into, as an installed program's is: its
// result and output files go to the user's data folder, with the names and rows they have beside a build.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/tempfolder.h"

namespace fs = std::filesystem;

namespace {

// Root may write anywhere; the session then runs as the user nobody, as an ordinary user would.
constexpr int kNobody = 65534;

// Trains two trials of three iterations with Save Training Results, then verifies on the training patterns.
const char* const kSavingSession = R"(file sin1d.txt
dialog 129 click 1044 ok
click 1009
click 1055
select 1014 0
set 1019 3
set 1047 2
file sin1d_3units.ini
dialog 130 click 1070 ok
click 1064
click 1010
wait 60
click 1038
)";

int Count(const std::string& text, const std::string& what) {
    int count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
}

// Paths of the files in folder whose names contain part.
std::vector<std::string> Matching(const fs::path& folder, const std::string& part) {
    std::vector<std::string> paths;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().find(part) != std::string::npos) paths.push_back(entry.path());
    return paths;
}

// A folder that the session's user owns.
fs::path OwnFolder(const fs::path& path, bool asNobody) {
    fs::create_directory(path);
    fs::permissions(path, fs::perms::owner_all);
    if (asNobody) {
        EXPECT_EQ(chown(path.c_str(), kNobody, kNobody), 0) << path;
    }
    return path;
}

TEST(InstalledCopy, WritesResultAndOutputFilesIntoTheUsersDataFolder) {
    const TempFolder folder;
    const fs::path root = folder.Path();
    const bool asNobody = geteuid() == 0;
    fs::permissions(root, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                              fs::perms::others_read | fs::perms::others_exec);
    for (const char* name : {"sin1d.txt", "sin1d_3units.ini"})
        fs::copy_file(fs::path(VANTREL_SOURCE_DIR) / "data" / name, root / name);
    const std::string script = folder.Write("save.session", kSavingSession);
    const fs::path bin = root / "bin";
    fs::create_directory(bin);
    fs::copy_file(VANTREL_SESSION_EXE, bin / "vantrel-session");
    fs::permissions(bin, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                             fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
    const fs::path dataHome = OwnFolder(root / "data-home", asNobody);
    const fs::path runtime = OwnFolder(root / "runtime", asNobody);

    const std::string launcher = asNobody ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    const std::string command = launcher + "env -i PATH=/usr/bin:/bin QT_QPA_PLATFORM=offscreen HOME=/nonexistent" +
                                " XDG_DATA_HOME='" + dataHome.string() + "' XDG_RUNTIME_DIR='" + runtime.string() +
                                "' '" + (bin / "vantrel-session").string() + "' '" + script + "' >'" +
                                (root / "stdout.txt").string() + "' 2>'" + (root / "stderr.txt").string() + "'";
    const int status = std::system(command.c_str());
    fs::permissions(bin, fs::perms::owner_all, fs::perm_options::add);  // the folder's removal needs it
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << command << "\n" << TempFolder::Read(root / "stdout.txt") << TempFolder::Read(root / "stderr.txt");

    const fs::path written = dataHome / "vantrel";
    ASSERT_TRUE(fs::is_directory(written)) << "no folder vantrel in the user's data folder; the session printed:\n"
                                           << TempFolder::Read(root / "stdout.txt");
    EXPECT_EQ(fs::status(written).permissions(), fs::perms::owner_all) << "the user's data is the user's alone";
    const std::vector<std::string> results = Matching(written, "_result.txt");
    ASSERT_EQ(results.size(), 1u) << "one result file for the run";
    const std::string result = TempFolder::Read(results[0]);
    EXPECT_EQ(Count(result, "Training Results\r\n"), 2) << "a block per trial:\n" << result;
    const std::vector<std::string> stamped = Matching(written, "_output.txt");
    ASSERT_EQ(stamped.size(), 1u) << "one stamped output file for the press";
    const std::string rows = TempFolder::Read(written / "output.txt");
    EXPECT_EQ(Count(rows, "\r\n"), 50) << "a row per pattern of sin1d.txt";
    EXPECT_EQ(TempFolder::Read(stamped[0]), rows);
    EXPECT_EQ(TempFolder::Lines(root / "stdout.txt"), std::vector<std::string>{"opened " + stamped[0]});
    EXPECT_EQ(std::distance(fs::directory_iterator(bin), fs::directory_iterator()), 1)
        << "nothing is written beside the program";
}

}  // namespace
