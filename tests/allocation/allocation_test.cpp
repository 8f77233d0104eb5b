// Programs whose allocations are refused one by one: the first of a run, the second, and so on, on
// both engines, alone and together with all that follow. Ordinary runs take samples;
//
//   PELLUM_ALLOCATIONS=all pellum_tests --gtest_filter='*Allocation*'
//
// leaves out none.
#include "allocation/trial.h"
#include "support/expectations.h"
#include "support/files.h"
#include "support/registration.h"
#include "support/transcript.h"

#include "builtins/builtins.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>

namespace fs = std::filesystem;

namespace pellum::test {
namespace {

constexpr Failing bothWays[] = {Failing::Once, Failing::FromThenOn};

bool leavesOutNone() {
    const char* const asked = std::getenv("PELLUM_ALLOCATIONS");
    return asked && std::string_view(asked) == "all";
}

// Lets `samples` allocations of a run fail, spread evenly from a start that `salt` picks. Stops at
// the first that goes wrong.
using Attempt = std::function<std::optional<std::string>(std::uint64_t nth, Failing failing)>;
void failEach(std::uint64_t allocations, std::uint64_t samples, std::size_t salt,
              const std::string& what, const Attempt& attempt) {
    const std::uint64_t stride = std::max(allocations / samples, std::uint64_t{1});
    for (std::uint64_t nth = 1 + salt % stride; nth <= allocations; nth += stride) {
        for (const Failing failing : bothWays) {
            if (const auto wrong = attempt(nth, failing)) {
                ADD_FAILURE() << what << ": " << *wrong;
                return;
            }
        }
    }
}

constexpr std::uint64_t everyOne = std::numeric_limits<std::uint64_t>::max();

void failIn(const Call& call, Handling handling, std::uint64_t samples, const std::string& what,
            bool makesCircles = false) {
    if (leavesOutNone()) samples = everyOne;
    Trials trials(call, handling);
    if (makesCircles) trials.ignoreWhatIsLeft();
    if (handling == Handling::Again) {
        ASSERT_EQ(trials.normal().status, 0) << what << ": " << trials.normal().errors;
    }
    // What circles leave behind must not fill the memory.
    if (trials.leavesCircles()) samples = std::min<std::uint64_t>(samples, 100);
    // A slow program would take its time a thousand times.
    using namespace std::chrono_literals;
    const auto most =
        static_cast<std::uint64_t>((leavesOutNone() ? 20s : 500ms) / (2 * trials.duration() + 1ns));
    failEach(trials.allocations(), std::min(samples, std::max(most, std::uint64_t{1})),
             std::hash<std::string>()(what), what,
             [&](std::uint64_t nth, Failing failing) { return trials.fail(nth, failing); });
}

void failOnBothEngines(const fs::path& path, const std::string& input, Handling handling,
                       std::uint64_t samples) {
    for (const Engine engine : bothEngines) {
        failIn({onEngine(engine, {path.string()}), input}, handling, samples,
               path.string() + " on the " + engineName(engine));
    }
}

constexpr const char* twoLines =
    "line one of the input\nand the second, which is rather longer than the first\n";

class OfAProgram : public testing::TestWithParam<const char*> {};

TEST_P(OfAProgram, LeavesEverythingWhole) {
    const fs::path path = fs::path("tests/allocation/programs") / GetParam();
    failOnBothEngines(path, twoLines, Handling::Again, 200);
}

INSTANTIATE_TEST_SUITE_P(Allocation, OfAProgram,
                         testing::Values("builtins.pellum", "calls.pellum", "containers.pellum",
                                         "errors.pellum"),
                         [](const auto& program) {
                             const std::string name = program.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(Allocation, TheProgramsUseEveryBuiltin) {
    const std::string source = readFile("tests/allocation/programs/builtins.pellum");
    for (const Builtin& row : builtinCatalogue()) {
        EXPECT_NE(source.find(std::string(row.name) + "("), source.npos) << row.name;
    }
}

// The cases of the suite, in slices that run side by side. What they do about an error that they do
// not expect is theirs.
class OfTheCases : public testing::TestWithParam<std::size_t> {};
constexpr std::size_t slices = 8;

TEST_P(OfTheCases, EndsWell) {
    std::size_t number = 0;
    for (const char* folder : {"lang", "errors", "builtins", "regression"}) {
        for (const fs::path& path : filesUnder(fs::path("tests") / folder, ".pellum")) {
            if (++number % slices != GetParam()) continue;
            const std::string source = readFile(path);
            const Expectations expectations = expectationsOf(source);
            const bool catches = source.find("catch") != source.npos;
            // Some containers that hold themselves are taken apart at the end, if that is reached.
            const std::string name = path.filename().string();
            const bool makesCircles =
                name.find("themselves") != name.npos || name.find("holds_itself") != name.npos;
            for (const Engine engine : bothEngines) {
                if (!expectations.runsOn(engine)) continue;
                const Call call{onEngine(engine, {path.string()}), expectations.input};
                failIn(call, catches ? Handling::Unknown : Handling::Shown, 2,
                       path.string() + " on the " + engineName(engine), makesCircles);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Allocation, OfTheCases, testing::Range<std::size_t>(0, slices));

TEST(Allocation, AtThePrompt) {
    std::size_t number = 0;
    for (const fs::path& path : filesUnder("tests/repl", ".transcript")) {
        const Transcript transcript = parseTranscript(readFile(path));
        failIn({transcript.arguments, transcript.input}, Handling::Shown, 8, path.string());
        ++number;
    }
    EXPECT_GT(number, 0U);
}

// What else the program does, and sources that end before they run.
TEST(Allocation, OfTheCommandLine) {
    const TemporaryFolder folder;
    const auto file = [&](const char* name, std::string_view text) {
        writeFile(folder.path() / name, text);
        return (folder.path() / name).string();
    };
    const std::string pragmas =
        file("pragmas", "#pragma version 5.10\n#pragma something else of some length\nprint(1)\n");
    const std::string tooNew =
        file("new", "#pragma version 70.1.2.3.4.5.6.7.8.9.10.11\nprint(1)\n");
    const std::string program =
        file("program",
             "let total = 0\nfor i = 1, 9 do total += i end\nprint(\"the total: ${total}\")\n");
    const std::vector<std::vector<std::string>> calls = {
        {"--help"},
        {"--version"},
        {"--tokens", program},
        {"--tokens", file("unlexed", "let text = \"never closed\n")},
        {"--tokens", "a file that is not there at all"},
        {"a file that is not there at all"},
        {"--bench", program},
        {"--bench", file("failing", "error(\"of the program\")")},
        {"--bench", file("unparsed", "let let")},
        {"-c"},
        {pragmas},
        {tooNew},
        {"-c", "let x = [1, {a: \"text ${1 + 1} and \\\"${\"more\"}\\\" of it\"}"},
        {"-c", "if x then elif y then while z do for i = 1, 2, 3 do for j in k do end end end"},
        {"-c", "function f(a, b, c) try return function(d) end catch e end break end"},
        {"-c", "x = 1 2"},
        {"-c", "f(x) = 1"},
        {"-c", "let a = 12e"},
        {"-c", "let a = 1e999"},
        {"-c", "let a = \"\\q\""},
        {"-c", "a = \"${\""},
        {"-c", "a = \"${1 2}\""},
        {"-c", "a ! b"},
        {"-c", "break"},
        {"-c", "f(" + std::string(600, ' ') + "nil" +
                   [] {
                       std::string arguments;
                       for (int i = 0; i < 256; ++i) arguments += ", nil";
                       return arguments;
                   }() +
                   ")"},
        {"-c", "error({why: \"a thrown map that nobody catches\"})"},
        {"-c", "return 1 + undefinedName"},
    };
    for (const std::vector<std::string>& arguments : calls) {
        std::string what;
        for (const std::string& argument : arguments) what += " " + argument.substr(0, 60);
        failIn({arguments, ""}, Handling::Shown, 60, "pellum" + what);
    }
}

// What a program hears of it: a refused allocation is an error of the operation that asked, and so
// can be caught.
TEST(Allocation, ErrorsNameWhoAskedForMemory) {
    struct Row {
        std::string_view statement;
        std::string_view message;
    };
    constexpr Row rows[] = {
        {"let t = text + text", "operator '+': out of memory"},
        {"list += list", "operator '+': out of memory"},
        {"map_[\"new\"] = 1", "cannot assign into map: out of memory"},
        {"map_.new = 1", "cannot assign into map: out of memory"},
        {"for x in list do end", "cannot iterate over list: out of memory"},
        {"for x in text do end", "cannot iterate over string: out of memory"},
        {"for x in map_ do end", "cannot iterate over map: out of memory"},
        {"push(list, 1)", "push: out of memory"},
        {"map(function(x) return [x] end, list)", "map: out of memory"},
    };
    const std::string values =
        "let text = repeat(\"some text that is longer than a few bytes\", 9)\n"
        "let list = range(32)\nlet map_ = {}\nfor i in list do map_[i] = i end\n";
    for (const Engine engine : bothEngines) {
        for (const Row& row : rows) {
            const std::string attempt = std::string(row.statement) + "\n";
            const std::string source =
                values + "try\n" + attempt + attempt + "catch e\nprint(\"caught:\", e)\nend\n";
            const std::string wanted = "caught: " + std::string(row.message) + "\n";
            const Call call{onEngine(engine, {"-c", source}), ""};
            Trials trials(call, Handling::Shown);
            bool isMet = false;
            for (std::uint64_t nth = 1; nth <= trials.allocations() && !isMet; ++nth) {
                ASSERT_EQ(trials.fail(nth, Failing::Once), std::nullopt);
                isMet = trials.given().output == wanted;
            }
            EXPECT_TRUE(isMet) << row.statement << " on the " << engineName(engine);
        }
    }
}

// The first strings, names and programs of a thread, for which nothing has been made yet.
TEST(Allocation, FromTheVeryBeginning) {
    const std::string source =
        "let m = {name: \"first\"}\nfor c in \"xyz\" do m[c] = [c, m.name] end\nprint(m)\n";
    for (const Engine engine : bothEngines) {
        const std::string what = std::string("a fresh start of the ") + engineName(engine);
        Trials trials({onEngine(engine, {"-c", source}), ""}, Handling::Again);
        // The names and shared strings come on top.
        const std::uint64_t allocations = trials.allocations() + 600;
        failEach(allocations, leavesOutNone() ? everyOne : 200, 0, what,
                 [&](std::uint64_t nth, Failing failing) {
                     return trials.failInFreshThread(nth, failing);
                 });
    }
}

// The machinery itself: what it counts, and that it notices.
TEST(Allocation, TrialsCountAndFail) {
    const std::int64_t before = liveBlocks();
    bool fails[4];
    std::uint64_t counted = 0;
    {
        const MemoryTrial trial(2, Failing::Once);
        for (bool& failed : fails) {
            try {
                operator delete(operator new(8));
                failed = false;
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        counted = trial.allocations();
    }
    EXPECT_EQ(std::vector<bool>(fails, fails + 4), (std::vector<bool>{false, true, false, false}));
    EXPECT_EQ(counted, 4U);
    void* given[2];
    {
        const MemoryTrial trial(1, Failing::FromThenOn);
        for (void*& memory : given) memory = operator new(8, std::nothrow);
    }
    EXPECT_EQ(given[0], nullptr);
    EXPECT_EQ(given[1], nullptr);
    EXPECT_EQ(liveBlocks(), before);
    void* const kept = operator new(8);
    EXPECT_EQ(liveBlocks(), before + 1);
    operator delete(kept);
}

}  // namespace
}  // namespace pellum::test
