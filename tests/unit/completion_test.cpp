// What Tab offers at the prompt.
#include "driver/completion.h"

#include "interp/environment.h"
#include "value/map.h"

#include <gtest/gtest.h>

namespace pellum {

namespace {

Value mapOf(const std::vector<std::pair<std::string, Value>>& entries) {
    auto map = makeRef<MapData>();
    for (const auto& [key, value] : entries) map->set(Value(key), Value(value));
    return Value(std::move(map));
}

class CompletionTest : public testing::Test {
protected:
    CompletionTest() {
        const Value inner = mapOf({{"deep", Value(1)}});
        globals_->define(Symbol("print"), Value(1));
        globals_->define(Symbol("printer"), inner);
        globals_->define(
            Symbol("point"),
            mapOf({{"x", Value(1)}, {"inner", inner}, {"two words", Value(2)}, {"end", Value(3)}}));
        globals_->define(Symbol("n"), Value(5));
    }

    std::string offered(std::string_view before) const {
        const Completion completion = completionOf(before, *globals_);
        std::string text = std::to_string(completion.wordLength) + ":";
        for (const std::string& word : completion.candidates) text += " " + word;
        return text;
    }
    std::string rest(std::string_view before) const {
        return std::string(completionOf(before, *globals_).commonRest());
    }

    Ref<Environment> globals_ = makeRef<Environment>();
};

TEST_F(CompletionTest, OffersKeywordsAndGlobals) {
    EXPECT_EQ(offered("p"), "1: point print printer");
    EXPECT_EQ(offered("1 + prin"), "4: print printer");
    EXPECT_EQ(offered("el"), "2: elif else");
    EXPECT_EQ(offered("f(n"), "1: n nil not");
    EXPECT_EQ(offered("xyz"), "3:");
    EXPECT_EQ(completionOf("", *globals_).candidates.size(), 22U + 4U);
}

TEST_F(CompletionTest, OffersTheKeysOfAMapThatAreNames) {
    EXPECT_EQ(offered("point."), "0: inner x");
    EXPECT_EQ(offered("print(point.i"), "1: inner");
    EXPECT_EQ(offered("point.inner.d"), "1: deep");
    EXPECT_EQ(offered("point.x."), "0:");
    EXPECT_EQ(offered("point.none."), "0:");
    EXPECT_EQ(offered("none."), "0:");
    EXPECT_EQ(offered("n."), "0:");
    EXPECT_EQ(offered("f()."), "0:");
    EXPECT_EQ(offered("."), "0:");
}

TEST_F(CompletionTest, KnowsNumbersFromNames) {
    EXPECT_EQ(offered("1."), "0:");
    EXPECT_EQ(offered("12p"), "0:");
}

TEST_F(CompletionTest, KnowsWhatAllCandidatesShare) {
    EXPECT_EQ(rest("pri"), "nt");
    EXPECT_EQ(rest("print"), "");
    EXPECT_EQ(rest("point.in"), "ner");
    EXPECT_EQ(rest("p"), "");
    EXPECT_EQ(rest("xyz"), "");
}

}  // namespace

}  // namespace pellum
