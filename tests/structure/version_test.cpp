// The version is written in CMakeLists.txt, and wherever it has to be repeated it is the same one.
#include "driver/session.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <string>

namespace pellum::test {

namespace {

const std::string current = PELLUM_VERSION;

TEST(Version, IsThatOfTheBuild) { EXPECT_EQ(version, current); }

TEST(Version, IsThatOfThePackages) {
    EXPECT_TRUE(readFile("packaging/debian/changelog.in").starts_with("pellum (" + current + "-"));
    EXPECT_NE(readFile("packaging/homebrew/pellum.rb").find("/pellum-" + current + ".tar.gz\""),
              std::string::npos);
}

TEST(Version, HasItsChangesWrittenDown) {
    const std::string changes = readFile("CHANGELOG.md"), heading = "\n## " + current;
    EXPECT_TRUE(changes.find(heading + "\n") != changes.npos ||
                changes.find(heading + ",") != changes.npos);
}

}  // namespace

}  // namespace pellum::test
