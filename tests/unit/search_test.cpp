#include "builtins/search.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace pellum {
namespace {

std::string repeated(std::string_view unit, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) text += unit;
    return text;
}

// The library's own search is the yardstick, from every place in turn.
void expectSameAsStandard(const std::string& text, const std::string& needle) {
    TextSearcher searcher(needle);
    std::size_t from = 0;
    for (;;) {
        const std::size_t wanted = text.find(needle, from);
        ASSERT_EQ(searcher.find(text, from), wanted)
            << "needle \"" << needle << "\" in \"" << text << "\" from " << from;
        if (wanted == std::string::npos) return;
        from = wanted + 1;
    }
}

TEST(Search, FindsTheFirstOccurrenceAtOrAfterThePlace) {
    TextSearcher searcher("ab");
    EXPECT_EQ(searcher.find("xabab"), 1U);
    EXPECT_EQ(searcher.find("xabab", 1), 1U);
    EXPECT_EQ(searcher.find("xabab", 2), 3U);
    EXPECT_EQ(searcher.find("xabab", 4), TextSearcher::npos);
    EXPECT_EQ(searcher.find("xabab", 5), TextSearcher::npos);
    EXPECT_EQ(searcher.find("a"), TextSearcher::npos);
    EXPECT_EQ(searcher.find(""), TextSearcher::npos);
}

TEST(Search, AnEmptyNeedleOccursEverywhere) {
    TextSearcher searcher("");
    EXPECT_EQ(searcher.find(""), 0U);
    EXPECT_EQ(searcher.find("abc", 2), 2U);
    EXPECT_EQ(searcher.find("abc", 3), 3U);
}

TEST(Search, BytesAreBytes) {
    const std::string text("a\0b\xff\0\x80", 6);
    EXPECT_EQ(TextSearcher(std::string_view("\0\x80", 2)).find(text), 4U);
    EXPECT_EQ(TextSearcher("\xff").find(text), 3U);
}

TEST(Search, AgreesOnAllShortTexts) {
    std::vector<std::string> words{""};
    for (std::size_t i = 0; words[i].size() < 9; ++i) {
        words.push_back(words[i] + 'a');
        words.push_back(words[i] + 'b');
    }
    for (const std::string& needle : words) {
        if (needle.empty() || needle.size() > 5) continue;
        for (const std::string& text : words) expectSameAsStandard(text, needle);
    }
}

// A long run of near misses at the front makes the search change its ways; what follows is then
// found by the second one.
TEST(Search, AgreesBehindALongRunOfNearMisses) {
    std::mt19937 random(20240817);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    const auto word = [&](std::size_t length) {
        std::string letters;
        while (letters.size() < length) letters += static_cast<char>('a' + below(2));
        return letters;
    };
    for (int round = 0; round < 2000; ++round) {
        const std::string unit = word(1 + below(5));
        const std::string tail = word(below(7));
        const std::string needle = repeated(unit, 40 + below(8)) + tail;
        std::string text = repeated(unit, 200);
        for (int piece = 0; piece < 8; ++piece) {
            text += repeated(unit, 38 + below(12));
            text += below(2) ? tail : word(below(7));
        }
        expectSameAsStandard(text, needle);
    }
}

// Each of these would take the better part of an hour if every place were tried from scratch.
TEST(Search, HostileTextsTakeLinearTime) {
    const std::size_t many = 4'000'000;
    const std::string text(many, 'a');
    const std::string half(many / 2, 'a');
    EXPECT_EQ(TextSearcher(half + "b").find(text), TextSearcher::npos);
    EXPECT_EQ(TextSearcher("b" + half).find(text), TextSearcher::npos);
    EXPECT_EQ(TextSearcher(half + "b" + half).find(text), TextSearcher::npos);
    EXPECT_EQ(TextSearcher("a" + repeated("ab", many / 8) + "a").find(repeated("ab", many / 2)),
              TextSearcher::npos);
    EXPECT_EQ(TextSearcher(half + "b").find(text + "b"), many / 2);

    // A first near miss, then a text in which only the front of the needle never fits.
    const std::string needle = "ba" + std::string(many / 2, 'b');
    const std::string nearMiss = needle.substr(0, needle.size() - 1) + "c";
    EXPECT_EQ(TextSearcher(needle).find(nearMiss + std::string(many, 'b')), TextSearcher::npos);

    // Periodic needles: every second unit is as good as the first.
    const std::string units = repeated("aab", many / 12);
    EXPECT_EQ(TextSearcher(units + "aab").find(repeated(units + "b", 4)), TextSearcher::npos);
}

}  // namespace
}  // namespace pellum
