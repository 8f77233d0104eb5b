#include "value/map.h"

#include "value/parse_number.h"
#include "value/string.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t border = 1LL << 53;

// A map that is small is scanned, one that is large has an index: every rule is tried in both, the
// map being filled with so many other entries first.
constexpr int fillings[] = {0, 200};

Ref<MapData> filledMap(int others) {
    auto map = makeRef<MapData>();
    for (int i = 0; i < others; ++i) map->set(Value("other " + std::to_string(i)), Value(i));
    return map;
}

std::int64_t intUnder(const MapData& map, const Value& key) {
    const Value* found = map.find(key);
    return found ? found->asInt() : -1;
}

std::size_t others(int count) { return static_cast<std::size_t>(count); }

TEST(Map, FindsWhatWasSet) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        EXPECT_EQ(map->find(Value("a")), nullptr);
        map->set(Value("a"), Value(1));
        map->set(Value(2), Value(20));
        map->set(Value(2.5), Value(30));
        map->set(Value(""), Value(40));
        EXPECT_EQ(intUnder(*map, Value("a")), 1);
        EXPECT_EQ(intUnder(*map, Value(2)), 20);
        EXPECT_EQ(intUnder(*map, Value(2.5)), 30);
        EXPECT_EQ(intUnder(*map, Value("")), 40);
        EXPECT_EQ(map->find(Value("b")), nullptr);
        EXPECT_EQ(map->find(Value("2")), nullptr);
        EXPECT_EQ(map->find(Value("a\0"sv)), nullptr);
        EXPECT_EQ(mapSize(*map), others(filling) + 4);
    }
}

TEST(Map, OneAndOnePointZeroAreOneKeyAndTheFirstStays) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        map->set(Value(1), Value(10));
        map->set(Value(1.0), Value(20));
        EXPECT_EQ(map->size(), others(filling) + 1);
        EXPECT_TRUE(map->entries().back().key.isInt());
        EXPECT_EQ(intUnder(*map, Value(1)), 20);
        EXPECT_EQ(intUnder(*map, Value(1.0)), 20);

        map->set(Value(7.0), Value(70));
        map->set(Value(7), Value(71));
        EXPECT_EQ(map->size(), others(filling) + 2);
        EXPECT_TRUE(map->entries().back().key.isFloat());
    }
}

TEST(Map, KeysMeetAsDoubles) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        map->set(Value(-0.0), Value(1));
        map->set(Value(0), Value(2));
        map->set(Value(0.0), Value(3));
        map->set(Value(border), Value(4));
        map->set(Value(border + 1), Value(5));
        map->set(Value(border + 2), Value(6));
        map->set(Value(9007199254740992.0), Value(7));
        EXPECT_EQ(map->size(), others(filling) + 3);
        EXPECT_EQ(intUnder(*map, Value(0)), 3);
        EXPECT_EQ(intUnder(*map, Value(border + 1)), 7);
        EXPECT_EQ(intUnder(*map, Value(border + 2)), 6);
        EXPECT_EQ(intUnder(*map, Value(border + 3)), -1);
        const Value& zero = map->entries()[others(filling)].key;
        EXPECT_TRUE(zero.isFloat() && std::signbit(zero.asFloat()));
    }
}

TEST(Map, NilAndBoolsAreKeysOfTheirOwn) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        EXPECT_EQ(map->find(Value()), nullptr);
        map->set(Value(), Value(1));
        map->set(Value(false), Value(2));
        map->set(Value(true), Value(3));
        map->set(Value(0), Value(4));
        map->set(Value(1), Value(5));
        map->set(Value(), Value(6));
        map->set(Value(true), Value(7));
        EXPECT_EQ(map->size(), others(filling) + 5);
        EXPECT_EQ(intUnder(*map, Value()), 6);
        EXPECT_EQ(intUnder(*map, Value(false)), 2);
        EXPECT_EQ(intUnder(*map, Value(true)), 7);
        EXPECT_EQ(intUnder(*map, Value(0)), 4);
        EXPECT_EQ(intUnder(*map, Value(1)), 5);
    }
}

TEST(Map, NaNAndContainersAreNeverFound) {
    for (const int filling : fillings) {
        const Value list = makeList({});
        const Value inner(makeRef<MapData>());
        for (const Value& key : {Value(nan), Value(-nan), list, inner}) {
            const auto map = filledMap(filling);
            map->set(key, Value(1));
            map->set(key, Value(2));
            EXPECT_EQ(map->size(), others(filling) + 2) << typeName(key);
            EXPECT_EQ(map->find(key), nullptr) << typeName(key);
            EXPECT_FALSE(map->remove(key)) << typeName(key);
            EXPECT_EQ(map->size(), others(filling) + 2) << typeName(key);
        }
    }
}

TEST(Map, ReplacingKeepsTheOrder) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        for (const char* name : {"c", "a", "b"}) map->set(Value(name), Value(0));
        for (const char* name : {"b", "c", "d", "a"}) map->set(Value(name), Value(1));
        std::string order;
        for (const MapData::Entry& entry : map->entries()) {
            if (entry.key.asText().size() == 1) order += entry.key.asText();
        }
        EXPECT_EQ(order, "cabd");
    }
}

TEST(Map, RemovingKeepsTheOrderOfTheOthers) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        for (const int key : {1, 2, 3, 4}) map->set(Value(key), Value(key * 10));
        EXPECT_TRUE(map->remove(Value(2.0)));
        EXPECT_FALSE(map->remove(Value(2)));
        EXPECT_FALSE(map->remove(Value("2")));
        EXPECT_EQ(map->find(Value(2)), nullptr);
        map->set(Value(2), Value(21));
        ASSERT_EQ(map->size(), others(filling) + 4);
        const std::int64_t wanted[] = {1, 3, 4, 2};
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(map->entries()[others(filling) + i].key.asInt(), wanted[i]);
            EXPECT_NE(map->find(Value(wanted[i])), nullptr);
        }
        EXPECT_EQ(intUnder(*map, Value(2)), 21);
    }
}

TEST(Map, EntriesCanBeRemovedUntilNoneIsLeft) {
    const auto map = filledMap(50);
    for (int i = 49; i >= 0; --i) {
        const Value key("other " + std::to_string(i * 7 % 50));
        EXPECT_TRUE(map->remove(key));
        EXPECT_EQ(map->find(key), nullptr);
    }
    EXPECT_EQ(map->size(), 0u);
    map->set(Value("new"), Value(1));
    EXPECT_EQ(intUnder(*map, Value("new")), 1);
}

TEST(Map, AValueFoundCanBeChangedInPlace) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        map->set(Value("n"), Value(1));
        *map->find(Value("n")) = Value(2);
        EXPECT_EQ(intUnder(*map, Value("n")), 2);
    }
}

TEST(Map, StringsOfOneTextAreOneKeyHoweverTheyWereMade) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        const std::string text(200, 'k');
        map->set(Value(text), Value(1));
        Ref<StringObj> built = StringObj::make(text.substr(0, 150));
        built = StringObj::concatenate(std::move(built), text.substr(150));
        EXPECT_EQ(intUnder(*map, Value(built)), 1);
        EXPECT_EQ(map->find(Value(text + "k")), nullptr);

        map->set(Value("x"), Value(2));
        EXPECT_EQ(intUnder(*map, Value(StringObj::oneByte('x'))), 2);
        EXPECT_EQ(intUnder(*map, Value(Symbol("x").string())), 2);
    }
}

TEST(Map, ACopyHasTheSameEntriesAndALifeOfItsOwn) {
    for (const int filling : fillings) {
        const auto map = filledMap(filling);
        const Value shared = makeList({});
        map->set(Value("list"), Value(shared));
        const auto copy = map->copy();
        copy->set(Value("new"), Value(1));
        copy->remove(Value("other 0"));
        EXPECT_EQ(map->find(Value("new")), nullptr);
        EXPECT_EQ(map->size(), others(filling) + 1);
        EXPECT_EQ(map->find(Value("other 0")) != nullptr, filling > 0);
        EXPECT_TRUE(valuesEqual(*copy->find(Value("list")), shared));
        EXPECT_EQ(copy->entries().back().key.asText(), "new");
    }
}

TEST(Map, ReleasesWhatItHeld) {
    const Value value = makeList({});
    {
        const auto map = filledMap(20);
        map->set(Value("a"), Value(value));
        map->set(Value("a"), Value(1));
        EXPECT_TRUE(value.object()->isUnshared()) << "a replaced value stays held";
        map->set(Value("b"), Value(value));
        map->remove(Value("b"));
        EXPECT_TRUE(value.object()->isUnshared()) << "a removed value stays held";
        map->set(Value("c"), Value(value));
    }
    EXPECT_TRUE(value.object()->isUnshared());
}

// The plainest map there is: scanned from the front, by the equality of keys.
struct PlainMap {
    std::vector<MapData::Entry> entries;

    MapData::Entry* find(const Value& key) {
        for (MapData::Entry& entry : entries) {
            if (keysEqual(entry.key, key)) return &entry;
        }
        return nullptr;
    }
    void set(const Value& key, const Value& value) {
        MapData::Entry* entry = find(key);
        if (entry) {
            entry->value = value;
        } else {
            entries.push_back({key, value});
        }
    }
    bool remove(const Value& key) {
        MapData::Entry* entry = find(key);
        if (entry) entries.erase(entries.begin() + (entry - entries.data()));
        return entry != nullptr;
    }
};

Value randomKey(std::mt19937_64& random) {
    const auto small = static_cast<std::int64_t>(random() % 60) - 30;
    switch (random() % 8) {
        case 0: return Value(static_cast<double>(small));
        case 1: return Value(static_cast<double>(small) / 2);
        case 2: return Value(std::to_string(small));
        case 3: return Value("a longer key, number " + std::to_string(small));
        case 4: return Value(border + small);
        case 5: return small == 0 ? Value(nan) : small < 0 ? Value(small < -15) : Value();
        default: return Value(small);
    }
}

TEST(Map, AgreesWithAPlainScan) {
    std::mt19937_64 random(1618);
    for (int round = 0; round < 30; ++round) {
        const auto map = makeRef<MapData>();
        PlainMap plain;
        for (int step = 0; step < 600; ++step) {
            const Value key = randomKey(random);
            if (random() % 4 == 0) {
                ASSERT_EQ(map->remove(key), plain.remove(key));
            } else {
                map->set(key, Value(step));
                plain.set(key, Value(step));
            }
            const Value asked = randomKey(random);
            const Value* found = map->find(asked);
            const MapData::Entry* wanted = plain.find(asked);
            ASSERT_EQ(found != nullptr, wanted != nullptr);
            if (found) {
                ASSERT_EQ(found->asInt(), wanted->value.asInt());
            }
        }
        ASSERT_EQ(map->size(), plain.entries.size());
        for (std::size_t i = 0; i < plain.entries.size(); ++i) {
            const MapData::Entry& entry = map->entries()[i];
            ASSERT_EQ(entry.key.kind(), plain.entries[i].key.kind());
            ASSERT_EQ(entry.value.asInt(), plain.entries[i].value.asInt());
        }
    }
}

// Removals leave gaps, which are closed now and then; nobody may meet one.
TEST(Map, AgreesWithAPlainScanThroughWavesOfRemovals) {
    std::mt19937_64 random(2718);
    const auto map = makeRef<MapData>();
    PlainMap plain;
    for (int step = 0; step < 20'000; ++step) {
        const bool isFalling = step / 1000 % 2 == 1;
        const Value key(static_cast<std::int64_t>(random() % 500));
        if (random() % 10 < (isFalling ? 9U : 1U)) {
            ASSERT_EQ(map->remove(key), plain.remove(key)) << step;
        } else {
            map->set(key, Value(step));
            plain.set(key, Value(step));
        }
        ASSERT_EQ(map->size(), plain.entries.size()) << step;
        const Value asked(static_cast<std::int64_t>(random() % 500));
        ASSERT_EQ(map->find(asked) != nullptr, plain.find(asked) != nullptr) << step;
        if (random() % 100 > 0) continue;
        const auto shown = random() % 2 ? map->copy() : map;
        ASSERT_EQ(shown->entries().size(), plain.entries.size()) << step;
        for (std::size_t i = 0; i < plain.entries.size(); ++i) {
            ASSERT_TRUE(valuesEqual(shown->entries()[i].key, plain.entries[i].key)) << step;
            ASSERT_TRUE(valuesEqual(shown->entries()[i].value, plain.entries[i].value)) << step;
        }
    }
}

TEST(Map, NaNKeysStayWhereEntriesAreRemoved) {
    const auto map = filledMap(50);
    for (const char* text : {"nan", "-nan", "nan(7061676500000)", "nan(0x70616765)"}) {
        map->set(Value(parseFloatPrefix(text).value), Value(text));
    }
    for (int i = 0; i < 50; ++i) EXPECT_TRUE(map->remove(Value("other " + std::to_string(i))));
    ASSERT_EQ(map->size(), 4u);
    std::string values;
    for (const MapData::Entry& entry : map->entries()) {
        EXPECT_TRUE(entry.key.isFloat() && std::isnan(entry.key.asFloat()));
        values += std::string(entry.value.asText()) + " ";
    }
    EXPECT_EQ(values, "nan -nan nan(7061676500000) nan(0x70616765) ");
}

TEST(Map, APlaceIsGoodForItsKeyAlone) {
    constexpr std::uint32_t entrySize = sizeof(MapData::Entry);
    const auto map = filledMap(20);
    const Value key("other 15");
    const StringObj* const sameKey = &map->entries()[15].key.asString();
    const std::uint32_t place = map->placeOf(map->find(key));
    ASSERT_EQ(place, 15 * entrySize);
    EXPECT_EQ(map->valueAt(place, sameKey), map->find(key));
    EXPECT_EQ(map->valueAt(20 * entrySize, sameKey), nullptr);
    for (int i = 0; i < 5; ++i) map->remove(Value("other " + std::to_string(i)));
    EXPECT_EQ(map->valueAt(place, sameKey), map->find(key));
    EXPECT_EQ(map->entries()[10].value.asInt(), 15);  // closes the gaps
    EXPECT_EQ(map->valueAt(place, sameKey), nullptr);
    EXPECT_EQ(map->placeOf(map->find(key)), 10 * entrySize);
    map->remove(key);
    EXPECT_EQ(map->valueAt(10 * entrySize, sameKey), nullptr);
}

TEST(Map, AHundredThousandEntriesAreFoundInOrder) {
    constexpr int count = 100'000;
    const auto map = makeRef<MapData>();
    for (int i = 0; i < count; ++i) {
        map->set(i % 2 ? Value(i) : Value("key" + std::to_string(i)), Value(i));
    }
    ASSERT_EQ(map->size(), others(count));
    for (int i = 0; i < count; ++i) {
        const Value key = i % 2 ? Value(static_cast<double>(i)) : Value("key" + std::to_string(i));
        ASSERT_EQ(intUnder(*map, key), i);
        ASSERT_EQ(map->entries()[others(i)].value.asInt(), i);
    }
}

}  // namespace

}  // namespace pellum::test
