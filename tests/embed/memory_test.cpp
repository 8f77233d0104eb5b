// Memory that the system refuses a host, one allocation after the other: what leaves the library is
// an Error all the same, and the engine goes on.
#include "allocation/failing_memory.h"
#include "embed/embedding.h"

namespace pellum::test {
namespace {

using embed::Engine;
using embed::Error;
using embed::Failure;
using embed::Value;
using embed::Values;

constexpr const char* source =
    "let list = []\n"
    "function add(x)\n    push(list, {value: x, text: 'number ' + str(x)})\n    return "
    "same(list)\nend\n"
    "try\n    for i = 1, 40 do add(i) end\n    error(list)\ncatch e\n    list = [e]\nend\n"
    "return map(function(x) return len(str(x)) end, list)";

// The work as a whole, whose every failure must be an Error; false once nothing is refused any
// more.
bool failsAt(std::uint64_t nth, Failing failing) {
    std::optional<Failure> failure;
    bool isOver = false;
    {
        const MemoryTrial trial(nth, failing);
        try {
            Engine engine;
            engine.define("same", [](Engine&, const Values& args) { return args[0]; });
            engine.run(source);
        } catch (const Error& error) {
            failure = error.failure();
        }
        isOver = trial.allocations() < nth;
    }
    if (failure) {
        EXPECT_TRUE(*failure == Failure::OutOfMemory || *failure == Failure::Runtime)
            << "allocation " << nth << ": " << static_cast<int>(*failure);
    }
    return !isOver;
}

TEST(EmbedMemory, RefusedOnceOrForGoodIsAnError) {
    { Engine warm; }
    for (const Failing failing : {Failing::Once, Failing::FromThenOn}) {
        std::uint64_t nth = 1;
        while (failsAt(nth, failing)) nth += 1 + nth / 40;
        EXPECT_GT(nth, 100u);
    }
}

TEST(EmbedMemory, TheEngineGoesOn) {
    Engine engine;
    engine.define("same", [](Engine&, const Values& args) { return args[0]; });
    engine.run("let kept = 'kept'");
    const auto expected = textOf(engine, source);
    for (std::uint64_t nth = 1; nth < 400; nth += 1 + nth / 20) {
        {
            const MemoryTrial trial(nth, Failing::Once);
            try {
                engine.run(source);
            } catch (const Error&) {
            }
        }
        ASSERT_EQ(textOf(engine, source), expected) << nth;
        ASSERT_EQ(engine.get("kept").asString(), "kept") << nth;
    }
}

}  // namespace
}  // namespace pellum::test
