// The length of a text, counted without making it.
#include "value/format.h"
#include "value/limits.h"
#include "value/map.h"
#include "value/string.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <stdexcept>
#include <string>

namespace pellum::test {

namespace {

Value listOf(Values elements) { return makeList(std::move(elements)); }

Value doubled(int times) {
    Value list = listOf({Value(1)});
    for (int i = 0; i < times; ++i) list = listOf({list, list});
    return list;
}

TEST(TextLength, IsThatOfTheText) {
    const Value nan(std::numeric_limits<double>::quiet_NaN());
    for (const Value& value :
         {Value(), Value(true), Value(false), Value(0),
          Value(std::numeric_limits<std::int64_t>::min()), Value(0.1), Value(-1e-300),
          Value(std::numeric_limits<double>::infinity()), nan, Value(""), Value("a"),
          Value("tab\tand \"quotes\" \\ \r\n"), Value(std::string(100, '"')), listOf({}),
          Value(makeRef<MapData>())}) {
        const std::string text = toDisplayString(value);
        const Value both[] = {value, listOf({value, value})};
        EXPECT_EQ(reprLength(value), toReprString(value).size()) << text;
        EXPECT_EQ(displayLength({&value, 1}), text.size()) << text;
        EXPECT_EQ(displayLength(both), text.size() + toDisplayString(both[1]).size()) << text;
    }
    EXPECT_EQ(displayLength({}), 0u);
}

// As often as a text of it still fits into a string.
constexpr int mostDoubled = limit(28, 10);

TEST(TextLength, SharedPartsAreCountedAsOftenAsTheyAreShown) {
    for (const int times : {1, 2, 10}) {
        EXPECT_EQ(reprLength(doubled(times)), toReprString(doubled(times)).size());
    }
    // The last that fits and the first that does not.
    EXPECT_EQ(reprLength(doubled(mostDoubled)), 7ULL * (1 << mostDoubled) - 4);
    EXPECT_THROW(reprLength(doubled(mostDoubled + 1)), std::length_error);
    EXPECT_THROW(reprLength(doubled(60)), std::length_error);
    EXPECT_THROW(toDisplayString(doubled(60)), std::length_error);
}

TEST(TextLength, LongStringsThatAreSharedAreCountedOnce) {
    constexpr std::size_t length = limit(1 << 20, 4);
    constexpr std::size_t count = limit(1000, 800);
    const Value text(std::string(length, '\n'));
    const Values many(count, text);
    EXPECT_EQ(reprLength(listOf(many)), count * (2 * length + 2 + 2));
    EXPECT_THROW(reprLength(listOf(Values(1'000'000, text))), std::length_error);
}

TEST(TextLength, WhatHasBeenThereBeforeCounts) {
    const Value list = listOf({doubled(mostDoubled), doubled(mostDoubled - 3),
                               doubled(mostDoubled - 6), doubled(mostDoubled - 9)});
    constexpr std::size_t before = limit(1'000'000, 2'000);
    EXPECT_GT(reprLength(list), maxStringLength - before);
    std::string out(before, 'x');
    EXPECT_THROW(appendDisplay(out, list), std::length_error);
}

TEST(TextLength, ASingleReferenceMayLeadBack) {
    // The inner list has no holder but the outer one, where it is found.
    const Value outer = listOf({Value(1)});
    outer.asList().items.push_back(listOf({outer, Value(2)}));
    const Value& inner = outer.asList().items[1];
    EXPECT_EQ(toReprString(inner), "[[1, [...]], 2]");
    EXPECT_EQ(reprLength(inner), toReprString(inner).size());
    EXPECT_EQ(displayLength(outer.asList().items), 1 + toReprString(inner).size());
    outer.asList().items.clear();
}

// A handful of containers that hold each other, themselves and a few plain values at random.
class Tangle {
public:
    Tangle(std::mt19937_64& random, std::size_t count, unsigned references, bool hasCircles) {
        for (std::size_t i = 0; i < count; ++i) {
            all.push_back(random() % 3 ? listOf({}) : Value(makeRef<MapData>()));
        }
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned size = static_cast<unsigned>(random()) % (references + 1);
            for (unsigned k = 0; k < size; ++k) {
                const std::size_t lowest = hasCircles ? 0 : i + 1;
                const bool isPlain = lowest == count || random() % 4 == 0;
                add(all[i], isPlain ? plain(random) : all[lowest + random() % (count - lowest)]);
            }
        }
    }
    ~Tangle() {
        for (const Value& value : all) {
            if (value.isList()) value.asList().items.clear();
            if (!value.isMap()) continue;
            for (const Value& key : keysOf(value.asMap())) value.asMap().remove(key);
        }
    }

    Values all;

private:
    static Value plain(std::mt19937_64& random) {
        switch (random() % 3) {
            case 0: return Value(static_cast<std::int64_t>(random() % 1000));
            case 1: return Value("a\n" + std::string(random() % 100, '"'));
            default: return Value();
        }
    }
    static void add(const Value& container, Value element) {
        if (container.isList()) {
            container.asList().items.push_back(std::move(element));
        } else {
            MapData& map = container.asMap();
            map.set(Value("key " + std::to_string(map.size())), std::move(element));
        }
    }
    static Values keysOf(MapData& map) {
        Values keys;
        for (const MapData::Entry& entry : map.entries()) keys.push_back(entry.key);
        return keys;
    }
};

TEST(TextLength, IsThatOfTheTextInEveryTangle) {
    std::mt19937_64 random(577);
    for (int round = 0; round < 3000; ++round) {
        const bool hasCircles = round % 3 > 0;
        const std::size_t count = 1 + random() % (hasCircles ? 6 : limit(12, 7));
        const Tangle tangle(random, count, hasCircles ? 2 : 3, hasCircles);
        std::size_t together = 0;
        for (const Value& value : tangle.all) {
            const std::string text = toReprString(value);
            together += text.size();
            ASSERT_EQ(reprLength(value), text.size()) << "round " << round << ": " << text;
        }
        ASSERT_EQ(displayLength(tangle.all), together) << "round " << round;
    }
}

}  // namespace

}  // namespace pellum::test
