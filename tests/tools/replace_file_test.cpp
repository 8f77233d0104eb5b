#include "format/replace_file.h"

#include "support/files.h"
#include "support/playing.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

using tools::replaceFile;

class ReplaceFile : public testing::Test {
protected:
    ReplaceFile() { writeFile(file_, "old"); }

    std::vector<fs::path> files() const { return filesUnder(folder_.path(), ""); }

    TemporaryFolder folder_;
    const fs::path file_ = folder_.path() / "a.pellum";
};

TEST_F(ReplaceFile, LeavesNothingButTheNewContents) {
    replaceFile(file_, "new");
    EXPECT_EQ(readFile(file_), "new");
    EXPECT_EQ(files(), std::vector<fs::path>{file_});
}

TEST_F(ReplaceFile, KeepsThePermissions) {
    for (const mode_t mode : {0600U, 0644U, 0755U, 0620U}) {
        ASSERT_EQ(chmod(file_.c_str(), mode), 0);
        replaceFile(file_, "new");
        struct stat now {};
        ASSERT_EQ(stat(file_.c_str(), &now), 0);
        EXPECT_EQ(now.st_mode & 07777, mode);
    }
}

// Whoever has the old file open goes on reading the old contents.
TEST_F(ReplaceFile, MakesANewFile) {
    fs::create_hard_link(file_, folder_.path() / "other");
    replaceFile(file_, "new");
    EXPECT_EQ(readFile(folder_.path() / "other"), "old");
}

TEST_F(ReplaceFile, FollowsLinks) {
    fs::create_directory(folder_.path() / "b");
    fs::create_symlink("../a.pellum", folder_.path() / "b/link");
    fs::create_symlink("b/link", folder_.path() / "link");
    replaceFile(folder_.path() / "link", "new");
    EXPECT_TRUE(fs::is_symlink(folder_.path() / "link"));
    EXPECT_TRUE(fs::is_symlink(folder_.path() / "b/link"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(file_)));
    EXPECT_EQ(readFile(file_), "new");
}

TEST_F(ReplaceFile, RefusesWhatIsNoFile) {
    EXPECT_THROW(replaceFile(folder_.path(), "new"), std::system_error);
    EXPECT_THROW(replaceFile(folder_.path() / "none", "new"), std::system_error);
    EXPECT_THROW(replaceFile("/dev/null", "new"), std::system_error);
}

TEST_F(ReplaceFile, RefusesWhatMayNotBeWritten) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may write everything";
    ASSERT_EQ(chmod(file_.c_str(), 0444), 0);
    EXPECT_THROW(replaceFile(file_, "new"), std::system_error);
    ASSERT_EQ(chmod(file_.c_str(), 0644), 0);
    ASSERT_EQ(chmod(folder_.path().c_str(), 0555), 0);
    EXPECT_THROW(replaceFile(file_, "new"), std::system_error);
    ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
    EXPECT_EQ(readFile(file_), "old");
    EXPECT_EQ(files(), std::vector<fs::path>{file_});
}

TEST_F(ReplaceFile, IsNotDoneWhereNothingChanges) {
    using namespace std::chrono_literals;
    writeFile(file_, "let a = 1\n");
    const auto longAgo = fs::last_write_time(file_) - 1h;
    fs::last_write_time(file_, longAgo);
    EXPECT_EQ(playInProcess("pellum-fmt", {file_}, ""), Outcome{});
    EXPECT_EQ(fs::last_write_time(file_), longAgo);
    writeFile(file_, "let  a=1\n");
    fs::last_write_time(file_, longAgo);
    EXPECT_EQ(playInProcess("pellum-fmt", {file_}, ""), Outcome{});
    EXPECT_GT(fs::last_write_time(file_), longAgo);
}

}  // namespace

}  // namespace pellum::test
