// What "cmake --install" leaves behind, in a folder that was empty before.
#include "support/files.h"
#include "support/process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

class Install : public testing::Test {
protected:
    void SetUp() override {
        Process cmake;
        cmake.executable = PELLUM_CMAKE;
        cmake.arguments = {"--install", PELLUM_BUILD, "--prefix", prefix_.path()};
        const Outcome outcome = cmake.run();
        ASSERT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
    }

    fs::path at(const std::string& path) const { return prefix_.path() / path; }

private:
    TemporaryFolder prefix_;
};

TEST_F(Install, TheProgramRuns) {
    Process program;
    program.executable = at("bin/pellum");
    program.arguments = {"-c", "print(6 * 7)"};
    EXPECT_EQ(program.run(), (Outcome{0, "42\n", ""}));
}

TEST_F(Install, TheManualAndTheCompletionsAreWhereTheyAreLookedFor) {
    const auto expectCopy = [&](const char* source, const char* path) {
        ASSERT_TRUE(fs::is_regular_file(at(path))) << path;
        EXPECT_EQ(readFile(at(path)), readFile(source)) << path;
    };
    expectCopy("man/pellum.1", "share/man/man1/pellum.1");
    expectCopy("completions/pellum.bash", "share/bash-completion/completions/pellum");
    expectCopy("completions/_pellum", "share/zsh/site-functions/_pellum");
    expectCopy("completions/pellum.fish", "share/fish/vendor_completions.d/pellum.fish");
    expectCopy("LICENSE", "share/doc/pellum/LICENSE");
}

// The links of an installed document lead to installed documents.
TEST_F(Install, TheDocumentsFindEachOther) {
    const std::vector<fs::path> pages = filesUnder(at("share/doc/pellum"), ".md");
    EXPECT_GE(pages.size(), filesUnder("docs", ".md").size() + 2);
    for (const fs::path& page : pages) {
        const std::string text = readFile(page);
        for (std::size_t open = 0; (open = text.find("](", open)) != text.npos;) {
            open += 2;
            const std::string target =
                text.substr(open, std::min(text.find_first_of("#)", open), text.size()) - open);
            if (!target.ends_with(".md") || target.find(':') != target.npos) continue;
            EXPECT_TRUE(fs::exists(page.parent_path() / target)) << page << " links to " << target;
        }
    }
}

}  // namespace

}  // namespace pellum::test
