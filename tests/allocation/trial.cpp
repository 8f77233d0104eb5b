#include "allocation/trial.h"

#include "driver/run_main.h"
#include "value/pool.h"

#include <istream>
#include <memory>
#include <ostream>
#include <regex>
#include <sstream>
#include <streambuf>
#include <thread>
#include <utility>

namespace pellum::test {

namespace {

// Takes what is written into memory that is there already: a stream that fails to grow would hide
// what failed.
class Sink : public std::streambuf {
public:
    Sink() : memory_(std::make_unique<char[]>(size)) { clear(); }
    void clear() { setp(memory_.get(), memory_.get() + size); }
    std::string text() const { return {pbase(), pptr()}; }

private:
    static constexpr std::size_t size = std::size_t{4} << 20;
    std::unique_ptr<char[]> memory_;
};

struct Result {
    Outcome outcome;
    std::uint64_t allocations = 0;
    std::int64_t leftBlocks = 0;
    bool escaped = false;  // something has left the program as an exception
};

// Blocks in use, without those that cells are carved from, which are kept for the next run.
std::int64_t blocksInUse() noexcept {
    return liveBlocks() - static_cast<std::int64_t>(cellBlocks());
}

Result play(const Call& call, std::uint64_t nth, Failing failing) {
    static Sink output, errors;
    output.clear();
    errors.clear();
    Result result;
    const std::int64_t before = blocksInUse();
    {
        std::istringstream in(call.input);
        std::ostream out(&output), err(&errors);
        std::vector<std::string> arguments = call.arguments;
        const MemoryTrial trial(nth, failing);
        try {
            result.outcome.status = runMain(std::move(arguments), in, out, err);
        } catch (...) {
            result.escaped = true;
        }
        result.allocations = trial.allocations();
    }
    result.leftBlocks = blocksInUse() - before;
    result.outcome.output = output.text();
    result.outcome.errors = errors.text();
    return result;
}

// The blocks that a text of an outcome takes.
std::int64_t heldBy(const std::string& text) { return text.capacity() > 15 ? 1 : 0; }

// Without the lines that tell of a step that had to be done again.
std::string withoutAgain(const std::string& output) {
    static const std::regex again("again: [^\n]*: out of memory\n");
    return std::regex_replace(output, again, "");
}

bool endsForWantOfMemory(const Outcome& given) {
    static const std::regex line(
        "pellum: (warning: [^\n]*|out of memory)\n|RuntimeError: [^\n]*: out of memory\n"
        "(  --> [^\n]*\n([^\n]*\n *\\^\n)?)?");
    return given.status == 1 && given.errors.find("out of memory") != given.errors.npos &&
           std::regex_replace(given.errors, line, "").empty();
}

std::string describe(const Outcome& given) {
    return "status " + std::to_string(given.status) + ", output\n" + given.output + "errors\n" +
           given.errors;
}

}  // namespace

Trials::Trials(Call call, Handling handling) : call_(std::move(call)), handling_(handling) {
    play(call_, 0, Failing::Once);  // interns names, so that only the program itself is counted
    const auto start = std::chrono::steady_clock::now();
    const Result result = play(call_, 0, Failing::Once);
    duration_ = std::chrono::steady_clock::now() - start;
    normal_ = result.outcome;
    allocations_ = result.allocations;
    leavesCircles_ = result.leftBlocks != 0;
}

namespace {

// The report of "--bench", of which no two are the same.
bool isTimes(const Outcome& given) {
    return given.status == 0 && given.errors.empty() && given.output.starts_with("tree-walker: ");
}

}  // namespace

std::optional<std::string> Trials::judge(const Outcome& given, Failing failing) const {
    if (given.status != 0 && given.errors.empty()) return "a failure without a word";
    if (given.status < 0 || given.status > 2) return "a status that is none of 0, 1 and 2";
    if (given == normal_ || handling_ == Handling::Unknown) return std::nullopt;
    if (isTimes(given) && isTimes(normal_)) return std::nullopt;
    if (handling_ == Handling::Shown || failing == Failing::FromThenOn) {
        const std::string all = given.output + given.errors;
        for (const char* word : {"out of memory", "bench: program raised an error"}) {
            if (all.find(word) != all.npos) return std::nullopt;
        }
        return "another result, and no word about memory";
    }
    const std::string output = withoutAgain(given.output);
    if (output == normal_.output && given.errors == normal_.errors) return std::nullopt;
    if (!normal_.output.starts_with(output)) return "output that differs";
    if (!endsForWantOfMemory(given)) return "an end that does not name the lack of memory";
    return std::nullopt;
}

std::optional<std::string> Trials::fail(std::uint64_t nth, Failing failing) {
    return failBy([&] { return play(call_, nth, failing); }, nth, failing);
}

std::optional<std::string> Trials::failInFreshThread(std::uint64_t nth, Failing failing) {
    const auto playApart = [&] {
        Result result;
        const std::int64_t before = blocksInUse();
        std::thread([&] { result = play(call_, nth, failing); }).join();
        const std::int64_t held = heldBy(result.outcome.output) + heldBy(result.outcome.errors);
        result.leftBlocks = blocksInUse() - before - held;
        return result;
    };
    return failBy(playApart, nth, failing);
}

template <typename Play>
std::optional<std::string> Trials::failBy(Play play, std::uint64_t nth, Failing failing) {
    Result result = play();
    // What an unusual way has interned stays; nothing is left by going it a second time.
    if (result.leftBlocks != 0) result = play();
    given_ = result.outcome;
    std::optional<std::string> wrong = judge(given_, failing);
    if (result.escaped) {
        wrong = "an exception that left the program";
    } else if (!wrong && !leavesCircles_ && result.leftBlocks != 0) {
        wrong = std::to_string(result.leftBlocks) + " blocks that were not given back";
    }
    if (!wrong) return std::nullopt;
    return "allocation " + std::to_string(nth) + " of " + std::to_string(allocations_) +
           (failing == Failing::Once ? "" : " and all later ones") + ": " + *wrong + "; " +
           describe(given_);
}

}  // namespace pellum::test
