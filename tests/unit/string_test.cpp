#include "value/string.h"

#include "value/limits.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

TEST(String, HoldsAnyBytes) {
    std::string all;
    for (int code = 0; code < 256; ++code) all += static_cast<char>(code);
    for (const std::string& text :
         {std::string(), std::string("a"), std::string("seven b"), std::string("nine byte"), all,
          std::string(limit(100'000, 10'000), 'x')}) {
        const auto string = StringObj::make(text);
        EXPECT_EQ(string->view(), text);
        EXPECT_EQ(string->length(), text.size());
    }
}

TEST(String, CopiesItsText) {
    std::string text = "before";
    const auto string = StringObj::make(text);
    text = "after!";
    EXPECT_EQ(string->view(), "before");
}

TEST(String, StringsOfOneByteAndOfNoneAreShared) {
    for (int code = 0; code < 256; ++code) {
        const auto byte = static_cast<unsigned char>(code);
        const Ref<StringObj>& one = StringObj::oneByte(byte);
        ASSERT_EQ(one->length(), 1u);
        ASSERT_EQ(static_cast<unsigned char>(one->view()[0]), byte);
        const char text = static_cast<char>(code);
        EXPECT_EQ(StringObj::make({&text, 1}), one);
        EXPECT_EQ(StringObj::oneByte(byte), one);
    }
    EXPECT_EQ(StringObj::empty()->length(), 0u);
    EXPECT_EQ(StringObj::make(""), StringObj::empty());
}

TEST(String, EqualTextsHaveEqualHashes) {
    for (const std::size_t length : {0u, 1u, 7u, 8u, 9u, 16u, 129u, 5000u}) {
        const std::string text(length, 'h');
        const auto whole = StringObj::make(text);
        const auto built = StringObj::concatenate(StringObj::make(text.substr(length / 2)),
                                                  text.substr(0, length / 2));
        EXPECT_EQ(whole->hash(), built->hash()) << length;
        EXPECT_EQ(whole->hash(), hashBytes(text)) << length;
        EXPECT_NE(whole->hash(), 0u) << length;
    }
}

TEST(String, AHashIsForgottenWhenTheStringGrowsInPlace) {
    Ref<StringObj> string = StringObj::make(std::string(200, 'x'));
    for (int i = 0; i < 20; ++i) {
        string->hash();
        string = StringObj::concatenate(std::move(string), "y");
        ASSERT_EQ(string->hash(), hashBytes(string->view())) << i;
    }
}

TEST(String, ConcatenationOfAnyLengths) {
    std::string bytes;
    for (int i = 0; i < 400; ++i) bytes += static_cast<char>('a' + i % 26);
    for (const std::size_t left : {0u, 1u, 5u, 8u, 64u, 127u, 128u, 129u, 200u}) {
        for (const std::size_t right : {0u, 1u, 3u, 8u, 63u, 64u, 127u, 128u, 200u}) {
            const std::string a = bytes.substr(0, left);
            const std::string b = bytes.substr(left, right);
            const auto result = StringObj::concatenate(StringObj::make(a), b);
            EXPECT_EQ(result->view(), a + b) << left << " and " << right;
        }
    }
}

TEST(String, ConcatenationWithItself) {
    Ref<StringObj> string = StringObj::make("0123456789");
    std::string wanted = "0123456789";
    for (int i = 0; i < limit(12, 9); ++i) {
        const std::string_view right = string->view();
        string = StringObj::concatenate(string, right);
        wanted += wanted;
        ASSERT_EQ(string->view(), wanted);
    }
}

TEST(String, OlderHoldersSeeNothingOfAGrowth) {
    std::vector<Ref<StringObj>> holders;
    std::string text(150, '-');
    Ref<StringObj> string = StringObj::make(text);
    for (int i = 0; i < 500; ++i) {
        holders.push_back(string);
        string = StringObj::concatenate(std::move(string), std::to_string(i));
        text += std::to_string(i);
        ASSERT_EQ(string->view(), text);
    }
    std::string wanted(150, '-');
    for (std::size_t i = 0; i < holders.size(); ++i) {
        ASSERT_EQ(holders[i]->view(), wanted);
        wanted += std::to_string(i);
    }
}

TEST(String, TwoGrowthsOfOneStringDoNotMeet) {
    Ref<StringObj> stem = StringObj::make(std::string(200, 's'));
    stem = StringObj::concatenate(std::move(stem), "t");
    stem = StringObj::concatenate(std::move(stem), "u");  // has room behind it now
    const std::string text(stem->view());
    Ref<StringObj> first = StringObj::concatenate(stem, "first");
    const Ref<StringObj> second = StringObj::concatenate(stem, "second");
    const Ref<StringObj> third = StringObj::concatenate(first, "!");
    first = StringObj::concatenate(std::move(first), "?");
    EXPECT_EQ(stem->view(), text);
    EXPECT_EQ(first->view(), text + "first?");
    EXPECT_EQ(second->view(), text + "second");
    EXPECT_EQ(third->view(), text + "first!");
}

// Growing by a byte at a time must not copy what is there each time, whether others hold the
// shorter strings or nobody does.
TEST(String, ASumOfManyPiecesSeldomMoves) {
    for (const bool isHeld : {false, true}) {
        Ref<StringObj> sum = StringObj::make(std::string(129, 's'));
        Ref<StringObj> held;
        const char* place = sum->view().data();
        int moves = 0;
        for (int i = 0; i < 100'000; ++i) {
            if (isHeld) held = sum;
            sum = StringObj::concatenate(std::move(sum), "x");
            if (sum->view().data() == place) continue;
            place = sum->view().data();
            ++moves;
        }
        EXPECT_EQ(sum->length(), 100'129u);
        EXPECT_LT(moves, 30) << isHeld;  // each makes room for half as much again
    }
}

TEST(String, APartOutlivesTheStringItGrewInto) {
    const std::string text(300, 'p');
    const Ref<StringObj> part = StringObj::make(text);
    Ref<StringObj> whole = StringObj::concatenate(part, "q");
    const Ref<StringObj> kept = whole;
    whole = StringObj::concatenate(std::move(whole), std::string(9'000, 'r'));
    whole = StringObj::empty();
    EXPECT_EQ(part->view(), text);
    EXPECT_EQ(kept->view(), text + "q");
}

// Strings that share and leave their buffers in every order, beside std::string.
TEST(String, AgreesWithCopiesOfTheWholeText) {
    std::mt19937_64 random(577);
    std::vector<Ref<StringObj>> strings(8, StringObj::empty());
    std::vector<std::string> texts(8);
    for (int step = 0; step < 20'000; ++step) {
        const std::size_t from = random() % 8;
        const std::size_t to = random() % 8;
        const std::string right(random() % 40, static_cast<char>('a' + step % 26));
        if (from == to) {
            strings[to] = StringObj::concatenate(std::move(strings[to]), right);
        } else {
            strings[to] = StringObj::concatenate(strings[from], right);
        }
        texts[to] = texts[from] + right;
        if (texts[to].size() > 3000) {
            strings[to] = StringObj::make("new");
            texts[to] = "new";
        }
        for (std::size_t i = 0; i < 8; ++i) ASSERT_EQ(strings[i]->view(), texts[i]) << step;
    }
}

TEST(String, ALengthBeyondTheLimitIsRefused) {
    // Zero pages, none of which is ever touched.
    constexpr std::size_t tooMuch = maxStringLength + 1;
    const std::unique_ptr<void, decltype(&std::free)> zeros(std::calloc(tooMuch, 1), &std::free);
    if (!zeros) GTEST_SKIP() << "the system refuses the memory";
    const std::string_view tooLong(static_cast<const char*>(zeros.get()), tooMuch);
    const Ref<StringObj> one = StringObj::make("x");
    try {
        StringObj::make(tooLong);
        ADD_FAILURE() << "a string beyond the limit was made";
    } catch (const std::length_error& error) {
        EXPECT_EQ(error.what(), "string too long"sv);
    }
    EXPECT_THROW(StringObj::concatenate(one, tooLong.substr(1)), std::length_error);
    EXPECT_EQ(one->view(), "x");
}

TEST(Symbol, EqualTextsAreOneSymbol) {
    const Symbol one("name");
    const Symbol same(std::string("na") + "me");
    EXPECT_EQ(one, same);
    EXPECT_EQ(one.string(), same.string());
    EXPECT_EQ(one.text(), "name");
    EXPECT_FALSE(one == Symbol("Name"));
    EXPECT_FALSE(one == Symbol("name\0"sv));
    EXPECT_EQ(Symbol(), Symbol(""));
    EXPECT_EQ(Symbol().text(), "");
}

}  // namespace

}  // namespace pellum::test
