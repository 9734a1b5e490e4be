// The sample data sets travel beside the program, in a folder data/ where the first Load Data dialog opens.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/tempfolder.h"

namespace fs = std::filesystem;

TEST(SampleData, EveryFileOfTheSourceFolderIsBesideTheProgram) {
    const fs::path source = fs::path(VANTREL_SOURCE_DIR) / "data";
    const fs::path beside = fs::path(VANTREL_SESSION_EXE).parent_path() / "data";
    ASSERT_TRUE(fs::is_directory(beside)) << beside << " is not a folder";
    int count = 0;
    for (const auto& entry : fs::directory_iterator(source)) {
        const fs::path copy = beside / entry.path().filename();
        ++count;
        ASSERT_TRUE(fs::is_regular_file(copy)) << copy << " is missing";
        EXPECT_EQ(TempFolder::Read(entry.path()), TempFolder::Read(copy)) << copy << " differs from its source";
    }
    EXPECT_GT(count, 0);
}
