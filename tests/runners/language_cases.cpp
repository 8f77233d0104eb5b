// Small programs with their expectations beside the lines, played on both engines.
#include "runners/runners.h"

#include "support/expectations.h"
#include "support/files.h"
#include "support/playing.h"
#include "support/registration.h"
#include "support/text.h"

#include "value/limits.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

constexpr std::string_view folders[] = {"lang", "errors", "limits", "builtins", "regression"};

class LanguageCase {
public:
    LanguageCase(const fs::path& path, Engine engine)
        : path_(path.generic_string()),
          engine_(engine),
          source_(readFile(path)),
          expectations_(expectationsOf(source_)),
          wanted_(expectations_.on(engine)),
          given_(playOn(engine)) {}

    void check() const {
        checkOutput();
        checkErrors();
        if (testing::Test::HasFailure()) noteDifferenceBetweenEngines();
    }

    // Rewrites the output that both engines are expected to print from what this one prints.
    void update() const {
        const std::vector<std::string> lines = splitKeepingNewlines(given_.output);
        if (expectations_.onlyEngine || !expectations_.areOneForBoth) return;
        if (lines.size() != wanted_.output.size()) return;
        std::string text = source_;
        for (std::size_t i = lines.size(); i-- > 0;) {
            const ExpectedLine& expected = wanted_.output[i];
            if (expected.text.ends_with('\n') != lines[i].ends_with('\n')) return;
            std::string line = splitLines(lines[i]).front();
            const bool hasBlank = source_[expected.byteOffset - 1] == ' ';
            if (!hasBlank && !line.empty()) line.insert(0, " ");
            text.replace(expected.byteOffset, expected.byteLength, line);
        }
        if (text != source_) writeFile(path_, text);
    }

private:
    Outcome playOn(Engine engine) const {
        return playCase(onEngine(engine, {path_}), expectations_.input);
    }

    void checkOutput() const {
        const std::vector<std::string> given = splitKeepingNewlines(given_.output);
        const std::size_t count = std::max(given.size(), wanted_.output.size());
        for (std::size_t i = 0; i < count; ++i) {
            const bool isWanted = i < wanted_.output.size(), isGiven = i < given.size();
            if (isWanted && isGiven && wanted_.output[i].text == given[i]) continue;
            const std::size_t line = isWanted                 ? wanted_.output[i].commentLine
                                     : wanted_.output.empty() ? 1
                                                              : wanted_.output.back().commentLine;
            ADD_FAILURE_AT(path_.c_str(), static_cast<int>(line))
                << "line " << i + 1 << " of the output on the " << name()
                << "\n  wanted: " << (isWanted ? visible(wanted_.output[i].text) : "nothing more")
                << "\n  given:  " << (isGiven ? visible(given[i]) : "nothing more");
            return;
        }
    }

    void checkErrors() const {
        const std::string errors =
            wanted_.error ? wantedErrors(*wanted_.error, source_, path_) : std::string();
        const int status = wanted_.error ? 1 : 0;
        const int line = static_cast<int>(wanted_.error ? wanted_.error->commentLine : 1);
        if (const auto difference = firstDifference(std::string("standard error of the ") + name(),
                                                    errors, given_.errors)) {
            ADD_FAILURE_AT(path_.c_str(), line) << *difference << "\nall of it:\n" << given_.errors;
        } else if (given_.status != status) {
            ADD_FAILURE_AT(path_.c_str(), line)
                << "exit status on the " << name() << "\n  wanted: " << status
                << "\n  given:  " << given_.status;
        }
    }

    void noteDifferenceBetweenEngines() const {
        if (!expectations_.areOneForBoth || expectations_.onlyEngine) return;
        const Outcome other = playOn(otherEngine(engine_));
        if (other.output == given_.output && other.status == given_.status) return;
        ADD_FAILURE_AT(path_.c_str(), 1)
            << "the engines differ here, and no expectation says so; the "
            << engineName(otherEngine(engine_)) << " prints\n"
            << other.output << other.errors;
    }

    const char* name() const { return engineName(engine_); }

    std::string path_;
    Engine engine_;
    std::string source_;
    Expectations expectations_;
    Wanted wanted_;
    Outcome given_;
};

void play(const fs::path& path, Engine engine) {
    try {
        if (updatesExpectations()) LanguageCase(path, Engine::Vm).update();
        LanguageCase(path, engine).check();
    } catch (const BadExpectation& error) {
        ADD_FAILURE_AT(path.c_str(), static_cast<int>(error.line)) << error.what();
    }
}

// A case that could do with small limits is played with them, and says nothing else.
void expectNeedOfOrdinaryLimits(const fs::path& path, Engine engine) {
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter collect(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        play(path, engine);
    }
    EXPECT_GT(failures.size(), 0) << path << " needs no ordinary limits on the "
                                  << engineName(engine);
}

void addCase(const std::string& suite, const fs::path& path, Engine engine) {
    const std::string name = engineName(engine);
    try {
        const Expectations expectations = expectationsOf(readFile(path));
        if (!expectations.runsOn(engine)) return;
        if (!hasSmallLimits && expectations.needsSmallLimits) return;
        if (hasSmallLimits && expectations.on(engine).needsOrdinaryLimits) {
            return addTest(suite, name + "_needs_ordinary_limits", path,
                           [=] { expectNeedOfOrdinaryLimits(path, engine); });
        }
    } catch (const BadExpectation&) {  // playing it reports what is wrong
    }
    addTest(suite, name, path, [=] { play(path, engine); });
}

}  // namespace

void registerLanguageCases() {
    for (const std::string_view folder : folders) {
        if (!mayRun(folder)) continue;
        for (const fs::path& path : filesUnder(fs::path("tests") / folder, ".pellum")) {
            const std::string suite = suiteName(path);
            if (!mayRun(suite + ".")) continue;
            for (const Engine engine : bothEngines) addCase(suite, path, engine);
        }
    }
}

}  // namespace pellum::test
