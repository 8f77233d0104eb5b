// What the shells offer for what is typed behind "pellum", in a folder with programs, other files
// and a folder. A shell that is not there is skipped.
#include "support/files.h"
#include "support/process.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

// The words that are typed, from behind the command, with the one to be completed as the last; and
// what is offered for it, the slash behind folders left out.
struct Row {
    std::vector<std::string> typed;
    std::set<std::string> offered;
};

const std::set<std::string> files = {"a.pellum", "b.plm", "sub"};

const Row rows[] = {
    {{""}, files},
    {{"a"}, {"a.pellum"}},
    {{"sub/"}, {"sub/inner.pellum"}},
    {{"-"},
     {"--tree", "--interp", "--vm", "-c", "--bench", "--tokens", "-h", "--help", "-v",
      "--version"}},
    {{"--t"}, {"--tree", "--tokens"}},
    {{"--tree", ""}, files},
    {{"--interp", "--"}, {"--bench", "--tokens", "--help", "--version"}},
    {{"--bench", ""}, files},
    {{"--vm", "--tokens", "b"}, {"b.plm"}},
    {{"-c", ""}, {}},
    {{"--vm", "-c", ""}, {}},
    {{"--version", ""}, {}},
    {{"a.pellum", ""}, {}},
    {{"--tree", "a.pellum", ""}, {}},
};

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += " " + word;
    return text;
}

const std::string bashScript = R"(
    source "$1"; shift
    COMP_WORDS=(pellum "$@") COMP_CWORD=$#
    _pellum
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
)";

// Completion needs a terminal, so what _pellum calls is replaced by what prints. "-g" leaves it to
// the shell to offer folders, too.
const std::string zshScript = R"(
    setopt null_glob extended_glob
    fpath=(${1:h} $fpath); shift
    autoload -Uz _pellum
    words=(pellum "$@") CURRENT=$(($# + 1))
    _describe() { local entry; for entry in ${(P)3}; do print -r -- ${entry%%:*}; done }
    _message() { }
    _files() { print -rl -- ${words[CURRENT]}${~2} ${words[CURRENT]}*(-/) }
    _pellum
)";

const std::string fishScript = R"(
    source $argv[1]
    complete -C "pellum "(string join -- ' ' $argv[2..-1]) | string replace -r '\t.*' ''
)";

class Completions : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_.path() / "sub");
        for (const char* name : {"a.pellum", "b.plm", "c.txt", "sub/inner.pellum", "sub/d.txt"}) {
            writeFile(folder_.path() / name, "");
        }
    }

    // Plays all rows in a shell that starts with these words; the file with the completions and the
    // words that are typed follow them.
    void play(const std::vector<std::string>& shell, const char* completions) {
        Process process;
        process.executable = "/usr/bin/env";
        process.arguments = {shell.front(), "--version"};
        if (process.run().status != 0) GTEST_SKIP() << "there is no " << shell.front();

        process.folder = folder_.path();
        for (const Row& row : rows) {
            process.arguments = shell;
            process.arguments.push_back(fs::absolute(completions));
            process.arguments.insert(process.arguments.end(), row.typed.begin(), row.typed.end());
            const Outcome outcome = process.run();
            EXPECT_EQ(outcome.errors, "") << joined(row.typed);
            EXPECT_EQ(offeredIn(outcome.output, row.typed.back()), row.offered)
                << shell.front() << ": pellum" << joined(row.typed);
        }
    }

private:
    // Shells drop by themselves what does not begin with the word.
    static std::set<std::string> offeredIn(std::string_view output, const std::string& word) {
        std::set<std::string> offered;
        for (std::string line : splitLines(output)) {
            if (line.ends_with('/')) line.pop_back();
            if (!line.empty() && line.starts_with(word)) offered.insert(line);
        }
        return offered;
    }

    TemporaryFolder folder_;
};

TEST_F(Completions, OfBash) {
    play({"bash", "--norc", "-c", bashScript, "bash"}, "completions/pellum.bash");
}

TEST_F(Completions, OfZsh) { play({"zsh", "-f", "-c", zshScript, "zsh"}, "completions/_pellum"); }

TEST_F(Completions, OfFish) {
    play({"fish", "--no-config", "-c", fishScript}, "completions/pellum.fish");
}

}  // namespace

}  // namespace pellum::test
