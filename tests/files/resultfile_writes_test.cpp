// Result and output files on disk where the runs do not reach: a name made again, a block
// that cannot be written, and appends with a seek to the end.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "files/resultfiles.h"
#include "platform/files.h"
#include "shell/initialization.h"
#include "support/main_dialog.h"

namespace {

class ResultFileTest : public MainDialogTest {
protected:
    void SetUp() override {
        MainDialogTest::SetUp();
        // A loaded data set has one output: the output weights are the bias and one per unit.
        m_dlg.m_nInputs = 1;
        m_dlg.m_nOutputs = 1;
        ReplaceNetworkArrays(m_dlg, 1);
    }
    std::string LastInfoLine() {
        platform::DrainGuiQueue();
        const std::vector<std::string> lines = m_dlg.Window()->Items(IDC_INFO_LIST);
        return lines.empty() ? "<no line>" : lines.back();
    }
};

// The name is the run's start to the second and nothing more: a run that starts on the name of an earlier
// file gets the next free "NAME.N.txt", and the earlier file stays as it was.
TEST_F(ResultFileTest, TwoRunsInOneSecondKeepBothFiles) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        for (const std::string& file : m_folder.Files("_result")) std::remove(file.c_str());
        CString first, second;
        const std::time_t start = std::time(nullptr);
        ASSERT_EQ(m_dlg.CreateResultFile(&first), 1);
        m_dlg.WriteRunResults(&first, 1, 1, 0.1);
        const std::string kept = TempFolder::Read(first.str());
        ASSERT_NE(kept, "");
        ASSERT_EQ(m_dlg.CreateResultFile(&second), 1);
        if (std::time(nullptr) != start) continue;  // the second ticked over between the two: try again
        EXPECT_EQ(second.str(), AsideName(first.str(), 1)) << "the new run takes the next free name";
        EXPECT_EQ(TempFolder::Read(second.str()), "") << "the new file starts empty";
        EXPECT_EQ(TempFolder::Read(first.str()), kept) << "the earlier run's blocks are kept where they are";
        return;
    }
    FAIL() << "no two runs started within one second";
}

struct tm Moment(int year, int month, int day, int hour, int minute, int second) {
    struct tm t {};
    t.tm_year = year - 1900, t.tm_mon = month - 1, t.tm_mday = day;
    t.tm_hour = hour, t.tm_min = minute, t.tm_sec = second;
    return t;
}

// Moments whose unpadded digits read alike, and a third file on one name: each later file takes the next free
// number, so the higher the number, the later the file; output files are named as result files are.
TEST_F(ResultFileTest, CollidingMomentsTakeNumberedNamesInTheOrderMade) {
    struct Case {
        std::vector<struct tm> moments;
        const char* suffix;
        const char* name;
    };
    const Case cases[] = {
        {{Moment(2026, 11, 23, 1, 23, 45), Moment(2026, 11, 23, 12, 3, 45)}, "result.txt", "20261123_12345_result"},
        {{Moment(2026, 1, 11, 8, 0, 0), Moment(2026, 11, 1, 8, 0, 0)}, "result.txt", "2026111_800_result"},
        {{Moment(2026, 2, 3, 4, 5, 6), Moment(2026, 2, 3, 4, 5, 6), Moment(2026, 2, 3, 4, 5, 6)}, "output.txt",
         "202623_456_output"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> written;
        for (const struct tm& moment : c.moments) {
            CString path;
            int error = 0;
            ASSERT_TRUE(CreateStampedFile(c.suffix, moment, path, error)) << c.name << ": " << std::strerror(error);
            const std::string plain = m_folder.Path() + "/" + c.name + ".txt";
            EXPECT_EQ(path.str(), written.empty() ? plain : AsideName(plain, static_cast<int>(written.size())));
            EXPECT_EQ(TempFolder::Read(path.str()), "") << "a new file starts empty";
            written.push_back("file " + std::to_string(written.size() + 1));
            std::ofstream(path.str(), std::ios::binary) << written.back();
        }
        EXPECT_EQ(TempFolder::Read(m_folder.Path() + "/" + c.name + ".txt"), written[0]) << c.name;
        for (size_t k = 1; k < written.size(); ++k)
            EXPECT_EQ(TempFolder::Read(m_folder.Path() + "/" + c.name + "." + std::to_string(k) + ".txt"),
                      written[k]) << c.name;
        EXPECT_EQ(m_folder.Files(c.name).size(), written.size()) << c.name << ": one file per creation";
    }
}

// Two windows beside one program, started in the same second: each stamped name is taken by one of them
// alone, and what a window writes to the name it took stays in that file, whatever the other does meanwhile.
TEST_F(ResultFileTest, ProcessesTakingStampedNamesAtOnceNeverShareAFile) {
    constexpr int kProcesses = 4;
    constexpr int kFilesEach = 40;
    const struct tm moment = Moment(2026, 2, 3, 4, 5, 6);
    std::vector<pid_t> children;
    for (int k = 0; k < kProcesses; ++k) {
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            // The child makes only plain file calls, and leaves without running the test's exit handlers.
            int failures = 0;
            for (int n = 0; n < kFilesEach; ++n) {
                CString path;
                int error = 0;
                if (!CreateStampedFile("result.txt", moment, path, error)) ++failures;
                for (int block = 0; block < 3; ++block) {
                    CFile file;
                    if (!file.Open(path, CFile::modeWrite)) {
                        ++failures;
                        continue;
                    }
                    const std::string line = "writer " + std::to_string(k) + "\n";
                    file.Seek(0, CFile::end);
                    file.Write(line.data(), static_cast<UINT>(line.size()));
                    file.Close();
                }
            }
            _exit(failures == 0 ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a writer lost its file";
    }
    const std::vector<std::string> files = m_folder.Files("202623_456_result");
    EXPECT_EQ(files.size(), static_cast<size_t>(kProcesses * kFilesEach)) << "one file per name taken";
    for (const std::string& file : files) {
        const std::string text = TempFolder::Read(file);
        const std::string first = text.substr(0, text.find('\n') + 1);
        EXPECT_EQ(text, first + first + first) << file << " holds the blocks of more than one writer";
    }
}

TEST_F(ResultFileTest, AFullFileSystemShowsTheFileAndTheCauseAndEndsTheWriting) {
    CString path;
    ASSERT_EQ(m_dlg.CreateResultFile(&path), 1);
    // A file-size limit stands in for a full disk: the block is larger than what the file may hold.
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit small = old;
    small.rlim_cur = 100;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const CString written = path;
    m_dlg.WriteRunResults(&path, 1, 1, 0.1);
    m_dlg.WriteRunResults(&path, 1, 2, 0.1);
    setrlimit(RLIMIT_FSIZE, &old);
    const std::string box = "box Error [stop]: Cannot write " + written.str() + ": File too large.\n" +
                            "Nothing more is written to this file.";
    EXPECT_EQ(Boxes(), std::vector<std::string>{box}) << "one box, naming the file and the cause";
    EXPECT_TRUE(path.IsEmpty()) << "the run must stop writing to an incomplete file";
    EXPECT_LE(TempFolder::Read(written.str()).size(), 100u);
}

TEST_F(ResultFileTest, ABlockThatCannotBeWrittenIsReportedAndCreatesNothing) {
    CString path = CString(m_folder.Path() + "/missing/block.txt");
    m_dlg.WriteRunResults(&path, 1, 1, 0.1);
    EXPECT_EQ(Boxes(), std::vector<std::string>{Box("Open Result File Failed!")});
    EXPECT_EQ(LastInfoLine(), "Cannot write block.txt in " + m_folder.Path() + "/missing/: No such file or directory.");
    EXPECT_TRUE(m_folder.Files("missing").empty()) << "a failed open must not create the file";
}

// The box keeps its text; the information list says which folder refused the file, and why.
TEST_F(ResultFileTest, AResultFileThatCannotBeCreatedNamesItsFolderAndTheCause) {
    const std::string blocked = m_folder.Write("blocked", "a file where the folder should be");
    AfxSetModuleDirectory(CString(blocked));
    CString path;
    EXPECT_EQ(m_dlg.CreateResultFile(&path), 0);
    EXPECT_EQ(Boxes(), std::vector<std::string>{Box("Create Result File Failed!")});
    const std::string line = LastInfoLine();
    EXPECT_EQ(line.rfind("Cannot write ", 0), 0u) << line;
    EXPECT_NE(line.find("_result.txt in " + blocked + "/: Not a directory."), std::string::npos) << line;
}

}  // namespace

TEST(FileWrites, SeekToEndWritesReachTheFileInOrder) {
    const TempFolder folder;
    const std::string path = folder.Path() + "/appends.txt";
    CFile file;
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeCreate));
    std::string expected;
    for (int k = 0; k < 3000; ++k) {
        EXPECT_EQ(file.Seek(0, CFile::end), static_cast<long long>(expected.size())) << "writes not yet stored count";
        file.Write("abc", 3);
        expected += "abc";
    }
    file.Seek(0, CFile::begin);
    file.Write("A", 1);  // a write elsewhere, then the end again
    expected[0] = 'A';
    EXPECT_EQ(file.Seek(0, CFile::end), static_cast<long long>(expected.size()));
    file.Write("!", 1);
    file.Close();
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), expected + "!");
}
