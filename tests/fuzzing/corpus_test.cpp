// The kept inputs of the fuzzers, played through their targets with whatever compiler has built the
// tests. `script/fuzz --merge` adds to them.
#include "support/files.h"

#include "fuzz/targets.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace pellum::fuzz {

// So that a target is known by its name, and not by where its bytes are.
void PrintTo(const Target& target, std::ostream* out) { *out << target.name; }

}  // namespace pellum::fuzz

namespace pellum::test {

namespace {

class Corpus : public testing::TestWithParam<fuzz::Target> {};

TEST_P(Corpus, HasNoFindings) {
    const auto inputs = filesUnder(std::string("fuzz/corpus/") + GetParam().corpus, "");
    EXPECT_GE(inputs.size(), 100u);
    for (const auto& input : inputs) {
        SCOPED_TRACE(input.string());
        const std::string text = readFile(input);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        EXPECT_NO_THROW(GetParam().run({bytes, text.size()}));
    }
}

INSTANTIATE_TEST_SUITE_P(Fuzzing, Corpus, testing::ValuesIn(fuzz::targets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace

}  // namespace pellum::test
