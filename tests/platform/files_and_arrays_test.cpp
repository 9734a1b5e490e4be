// Files, the executable's directory, strings and the growable array.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "platform/strings.h"
#include "support/tempfolder.h"
#include "workspace/doublearray.h"

namespace {

TEST(CFileTest, CreateEmptiesThenWritesAppendAfterSeekToEnd) {
    const TempFolder folder;
    const std::string path = folder.Write("append.txt", "old contents");
    CFile create;
    ASSERT_TRUE(create.Open(path.c_str(), CFile::modeCreate));
    create.Close();
    EXPECT_EQ(TempFolder::Read(path), "") << "modeCreate empties an existing file";
    for (const char* block : {"first\r\n", "second\r\n"}) {
        CFile file;
        ASSERT_TRUE(file.Open(path.c_str(), CFile::modeWrite));
        file.Seek(0, CFile::end);
        file.Write(block, static_cast<UINT>(std::string(block).size()));
        file.Close();
    }
    EXPECT_EQ(TempFolder::Read(path), "first\r\nsecond\r\n");
    CFile reader;
    ASSERT_TRUE(reader.Open(path.c_str(), CFile::modeRead));
    EXPECT_EQ(reader.GetLength(), 15u);
}

TEST(CFileTest, WriteModeDoesNotCreateAMissingFile) {
    const TempFolder folder;
    CFile file;
    EXPECT_FALSE(file.Open((folder.Path() + "/no/such/dir/file.txt").c_str(), CFile::modeWrite));
    EXPECT_FALSE(file.Open((folder.Path() + "/missing_for_write.txt").c_str(), CFile::modeWrite));
    EXPECT_FALSE(file.Open(folder.Path().c_str(), CFile::modeRead)) << "a directory is no file";
}

TEST(ModuleDirectory, CanBeMovedForAScriptedSessionAndRestored) {
    char path[260];
    AfxSetModuleDirectory("/tmp/session-dir/");
    GetModuleFileNameA(nullptr, path, 260);
    const CString moved(path);
    EXPECT_EQ(moved.Left(moved.ReverseFind('/') + 1), "/tmp/session-dir/");
    AfxSetModuleDirectory("");
    GetModuleFileNameA(nullptr, path, 260);
    const CString real(path);
    char self[1024] = {};
    ASSERT_GT(readlink("/proc/self/exe", self, sizeof self - 1), 0);
    EXPECT_EQ(real, self);
}

TEST(WrittenFiles, GoBesideAProgramThatCanBeWrittenAndIntoADirectorySetForASession) {
    char self[1024] = {};
    ASSERT_GT(readlink("/proc/self/exe", self, sizeof self - 1), 0);
    const std::string program(self);
    int error = -1;
    EXPECT_EQ(AfxWrittenFilesDirectory(error).str(), program.substr(0, program.rfind('/') + 1))
        << "the test program's build folder can be written: nothing is redirected";
    EXPECT_EQ(error, 0);
    AfxSetModuleDirectory("/no/such/folder");
    EXPECT_EQ(AfxWrittenFilesDirectory(error), "/no/such/folder/") << "a folder chosen stays chosen";
    AfxSetModuleDirectory("");
}

// The XDG rules, with the variables of the test's own and those of the process put back.
class UserDataDirectoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"XDG_DATA_HOME", "HOME"})
            if (const char* value = std::getenv(name)) m_saved.emplace_back(name, value);
    }
    void TearDown() override {
        unsetenv("XDG_DATA_HOME");
        unsetenv("HOME");
        for (const auto& [name, value] : m_saved) setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<std::pair<std::string, std::string>> m_saved;
};

TEST_F(UserDataDirectoryTest, IsUnderXdgDataHomeElseUnderTheHomesLocalShare) {
    setenv("HOME", "/home/someone", 1);
    setenv("XDG_DATA_HOME", "/data/someone/", 1);
    EXPECT_EQ(platform::UserDataDirectory(), "/data/someone/vantrel/");
    setenv("XDG_DATA_HOME", "relative/data", 1);
    EXPECT_EQ(platform::UserDataDirectory(), "/home/someone/.local/share/vantrel/")
        << "a relative XDG_DATA_HOME is ignored";
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(platform::UserDataDirectory(), "/home/someone/.local/share/vantrel/");
    unsetenv("HOME");
    const std::string fromPasswords = platform::UserDataDirectory();
    const std::string tail = "/.local/share/vantrel/";
    EXPECT_TRUE(fromPasswords.size() > tail.size() && fromPasswords[0] == '/' &&
                fromPasswords.compare(fromPasswords.size() - tail.size(), tail.size(), tail) == 0)
        << "without HOME the home comes from the password database: " << fromPasswords;
}

TEST(MakeDirectories, MakesEveryMissingFolderPrivateAndNamesWhatStandsInTheWay) {
    const TempFolder folder;
    const std::string nested = folder.Path() + "/a/b/vantrel/";
    ASSERT_EQ(platform::MakeDirectories(nested), 0);
    for (const std::string& made : {folder.Path() + "/a", nested}) {
        struct stat info {};
        ASSERT_EQ(stat(made.c_str(), &info), 0) << made;
        EXPECT_EQ(info.st_mode & 0777, 0700u) << made << ": the user's data is the user's alone";
    }
    EXPECT_EQ(platform::MakeDirectories(nested), 0) << "a folder that is there already is fine";
    const std::string file = folder.Write("plain", "x");
    EXPECT_EQ(platform::MakeDirectories(file + "/vantrel/"), ENOTDIR);
    EXPECT_EQ(platform::MakeDirectories(file), ENOTDIR);
}

// A build folder has its samples beside the program; an installed program finds them under its prefix.
TEST(SampleDataDirectory, IsBesideTheProgramElseInstalledUnderItsPrefixElseTheProgramsFolder) {
    const TempFolder folder;
    const std::string bin = folder.Path() + "/usr/bin";
    const std::string installed = folder.Path() + "/usr/share/vantrel/data";
    std::filesystem::create_directories(bin);
    EXPECT_EQ(platform::SampleDataDirectory(bin), bin) << "no samples anywhere";
    std::filesystem::create_directories(installed);
    EXPECT_EQ(platform::SampleDataDirectory(bin + "/"), installed);
    std::filesystem::create_directories(bin + "/data");
    EXPECT_EQ(platform::SampleDataDirectory(bin), bin + "/data") << "the samples beside the program come first";
}

TEST(CStringTest, FormatAndCuttingAtTheLastSeparator) {
    CString text;
    text.Format("%d%d%d_%d%d%d_result.txt", 2012, 2, 1, 3, 4, 5);
    EXPECT_EQ(text, "201221_345_result.txt");
    text.Format("%.12f", 1.0 / 3.0);
    EXPECT_EQ(text, "0.333333333333");
    const CString path("/a/b/c.txt");
    EXPECT_EQ(path.Left(path.ReverseFind('/') + 1), "/a/b/");
    EXPECT_EQ(path.Mid(path.ReverseFind('/') + 1), "c.txt");
    EXPECT_EQ(CString("abc").ReverseFind('x'), -1);
}

TEST(CDoubleArrayTest, ElementsThatComeBackIntoUseReadZero) {
    CDoubleArray array;
    for (int i = 0; i < 10; ++i) array.Add(i + 1.0);
    array.SetSize(3);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array.GetAt(2), 3.0);
    array.SetSize(6);
    EXPECT_EQ(array.GetAt(2), 3.0) << "kept elements keep their values";
    EXPECT_EQ(array.GetAt(3), 0.0);
    EXPECT_EQ(array.GetAt(5), 0.0);
    array.SetSize(0);
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.m_pData, nullptr) << "size 0 frees the block";
}

}  // namespace
