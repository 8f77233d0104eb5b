// What "cmake --install" leaves behind, in a folder that was empty before.
#include "process/installing.h"
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
        ASSERT_EQ(install({"--prefix", prefix_.path()}), (Outcome{0, "", ""}));
    }

    const fs::path& prefix() const { return prefix_.path(); }
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

TEST_F(Install, TheFormatterRuns) {
    Process formatter;
    formatter.executable = at("bin/pellum-fmt");
    formatter.arguments = {"-"};
    formatter.input = "print( 6*7 )";
    EXPECT_EQ(formatter.run(), (Outcome{0, "print(6 * 7)\n", ""}));
}

TEST_F(Install, TheLinterRuns) {
    Process linter;
    linter.executable = at("bin/pellum-lint");
    linter.arguments = {"-"};
    linter.input = "print(x)\n";
    EXPECT_EQ(linter.run(), (Outcome{1, "<stdin>:1:7: undefined-name: nothing defines 'x'\n", ""}));
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
    expectCopy("man/pellum-fmt.1", "share/man/man1/pellum-fmt.1");
    expectCopy("completions/pellum-fmt.bash", "share/bash-completion/completions/pellum-fmt");
    expectCopy("completions/_pellum-fmt", "share/zsh/site-functions/_pellum-fmt");
    expectCopy("completions/pellum-fmt.fish", "share/fish/vendor_completions.d/pellum-fmt.fish");
    expectCopy("man/pellum-lint.1", "share/man/man1/pellum-lint.1");
    expectCopy("completions/pellum-lint.bash", "share/bash-completion/completions/pellum-lint");
    expectCopy("completions/_pellum-lint", "share/zsh/site-functions/_pellum-lint");
    expectCopy("completions/pellum-lint.fish", "share/fish/vendor_completions.d/pellum-lint.fish");
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

// Whatever is installed belongs to one component, or no package would have it.
TEST_F(Install, TheComponentsTogetherAreEverything) {
    std::set<fs::path> sum;
    for (const char* component : {"program", "development"}) {
        const TemporaryFolder folder;
        install({"--prefix", folder.path(), "--component", component});
        for (const fs::path& file : namesUnder(folder.path())) {
            EXPECT_TRUE(sum.insert(file).second) << file << " is in both components";
        }
    }
    EXPECT_EQ(namesUnder(prefix()), sum);
}

TEST_F(Install, TheProgramComesWithoutWhatDevelopersNeed) {
    const TemporaryFolder folder;
    ASSERT_EQ(install({"--prefix", folder.path(), "--component", "program"}).status, 0);
    const std::set<fs::path> names = namesUnder(folder.path());
    EXPECT_TRUE(names.contains("bin/pellum"));
    for (const fs::path& name : names) {
        EXPECT_TRUE(*name.begin() == "bin" || *name.begin() == "share") << name;
    }
}

// As those do who make packages: the prefix is where the files will be, DESTDIR where they are now.
TEST_F(Install, DestdirStandsBeforeThePrefix) {
    const TemporaryFolder folder;
    ASSERT_EQ(install({"--prefix", "/opt/here"}, folder.path()), (Outcome{0, "", ""}));
    EXPECT_EQ(namesUnder(folder.path() / "opt/here"), namesUnder(prefix()));
}

TEST_F(Install, NothingRemembersWhereItWasBuilt) {
    for (const fs::path& name : namesUnder(prefix())) {
#ifndef PELLUM_IS_FOR_USE
        // What a debugger or a profile reads does.
        if (name.parent_path() == "bin" || name.extension() == ".a") continue;
#endif
        const std::string contents = readFile(prefix() / name);
        for (const char* folder : {PELLUM_BUILD, PELLUM_ROOT}) {
            EXPECT_EQ(contents.find(folder), contents.npos) << name << " names " << folder;
        }
    }
}

}  // namespace

}  // namespace pellum::test
