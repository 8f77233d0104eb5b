// Programs outside of the tree that build against the installed library. `script/embed` alone tries
// more of that.
#include "support/process.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace pellum::test {
namespace {

#if defined(PELLUM_HAS_LIBRARY)
TEST(EmbedConsumers, BuildAgainstTheInstalledLibraryAndRun) {
    Process script;
    script.executable = std::filesystem::absolute("script/embed");
    script.arguments = {"--build", PELLUM_BUILD};
    EXPECT_EQ(script.run(), (Outcome{0,
                                     "as built, cpp, by CMake: as expected\n"
                                     "as built, cpp, by pkg-config: as expected\n"
                                     "as built, c, by CMake: as expected\n"
                                     "as built, c, by pkg-config: as expected\n",
                                     ""}));
}
#endif

}  // namespace
}  // namespace pellum::test
