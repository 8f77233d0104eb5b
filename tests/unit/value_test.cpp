#include "value/value.h"

#include "value/map.h"
#include "value/string.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <variant>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t maxInt = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t minInt = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t border = 1LL << 53;  // from here on not every integer is a double

struct NamedFunction final : CallableObj {
    explicit NamedFunction(ValueKind kind) : CallableObj(kind) {}
    std::string_view functionName() const noexcept override { return "f"; }
};

Value functionOf(ValueKind kind) { return Value(Ref<CallableObj>(makeRef<NamedFunction>(kind))); }

// One value of each kind, in the order of the kinds.
Values oneOfEach() {
    return {Value(),
            Value(true),
            Value(1),
            Value(1.0),
            Value("1"),
            makeList({Value(1)}),
            Value(makeRef<MapData>()),
            functionOf(ValueKind::Function),
            functionOf(ValueKind::Native),
            functionOf(ValueKind::Closure)};
}

TEST(Value, KindsHaveFixedNumbers) {
    const Values values = oneOfEach();
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(values[i].kind()), i);
    }
    EXPECT_TRUE(Value().isNil());
}

TEST(Value, KindTestsAnswerForTheirKindAlone) {
    const Values values = oneOfEach();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Value& value = values[i];
        EXPECT_EQ(value.isNil(), i == 0) << i;
        EXPECT_EQ(value.isBool(), i == 1) << i;
        EXPECT_EQ(value.isInt(), i == 2) << i;
        EXPECT_EQ(value.isFloat(), i == 3) << i;
        EXPECT_EQ(value.isNumber(), i == 2 || i == 3) << i;
        EXPECT_EQ(value.isString(), i == 4) << i;
        EXPECT_EQ(value.isList(), i == 5) << i;
        EXPECT_EQ(value.isMap(), i == 6) << i;
        EXPECT_EQ(value.isFunction(), i >= 7) << i;
        EXPECT_EQ(value.isObject(), i >= 4) << i;
    }
}

TEST(Value, TypeNames) {
    const char* const names[] = {"nil",  "bool", "number",   "number",   "string",
                                 "list", "map",  "function", "function", "function"};
    const Values values = oneOfEach();
    for (std::size_t i = 0; i < values.size(); ++i) EXPECT_STREQ(typeName(values[i]), names[i]);
}

TEST(Value, AccessorsGiveWhatTheConstructorsTook) {
    EXPECT_TRUE(Value(true).asBool());
    EXPECT_FALSE(Value(false).asBool());
    EXPECT_EQ(Value(minInt).asInt(), minInt);
    EXPECT_EQ(Value(maxInt).asInt(), maxInt);
    EXPECT_EQ(Value(0.1).asFloat(), 0.1);
    EXPECT_TRUE(std::isnan(Value(nan).asFloat()));
    EXPECT_TRUE(std::signbit(Value(-0.0).asFloat()));
    EXPECT_EQ(Value("a\0b"sv).asText(), "a\0b"sv);
    EXPECT_EQ(Value(std::string("text")).asString().length(), 4u);

    const auto list = makeRef<ListObj>();
    EXPECT_EQ(&Value(list).asList(), list.get());
    const auto map = makeRef<MapData>();
    EXPECT_EQ(&Value(map).asMap(), map.get());
    const Ref<CallableObj> function = makeRef<NamedFunction>(ValueKind::Closure);
    EXPECT_EQ(&Value(function).asFunction(), function.get());
    EXPECT_EQ(Value(function).kind(), ValueKind::Closure);
}

TEST(Value, NoReferenceCanBeCopied) {
    const Ref<ListObj> none;
    const Ref<ListObj> copy = none;
    EXPECT_EQ(copy.get(), nullptr);
    EXPECT_EQ(Ref<ListObj>(static_cast<ListObj*>(nullptr)), none);
}

TEST(Value, EveryIntegerTypeGivesAnInteger) {
    EXPECT_EQ(Value(7).asInt(), 7);
    EXPECT_EQ(Value(7u).asInt(), 7);
    EXPECT_EQ(Value(std::size_t{7}).asInt(), 7);
    EXPECT_EQ(Value(static_cast<short>(-7)).asInt(), -7);
    EXPECT_EQ(Value(std::int64_t{-7}).asInt(), -7);
}

TEST(Value, AsNumberConvertsIntegers) {
    EXPECT_EQ(Value(3).asNumber(), 3.0);
    EXPECT_EQ(Value(2.5).asNumber(), 2.5);
    EXPECT_EQ(Value(border + 1).asNumber(), 9007199254740992.0);
    EXPECT_EQ(Value(maxInt).asNumber(), 0x1p63);
    EXPECT_EQ(Value(minInt).asNumber(), -0x1p63);
}

TEST(Value, AccessorsRefuseOtherKinds) {
    const Values values = oneOfEach();
    for (std::size_t i = 0; i < values.size(); ++i) {
        SCOPED_TRACE(i);
        const Value& value = values[i];
        const auto refuses = [](auto access) {
            try {
                access();
                return false;
            } catch (const std::bad_variant_access&) {
                return true;
            }
        };
        EXPECT_EQ(refuses([&] { (void)value.asBool(); }), i != 1);
        EXPECT_EQ(refuses([&] { (void)value.asInt(); }), i != 2);
        EXPECT_EQ(refuses([&] { (void)value.asFloat(); }), i != 3);
        EXPECT_EQ(refuses([&] { (void)value.asNumber(); }), i != 2 && i != 3);
        EXPECT_EQ(refuses([&] { (void)value.asString(); }), i != 4);
        EXPECT_EQ(refuses([&] { (void)value.asText(); }), i != 4);
        EXPECT_EQ(refuses([&] { (void)value.asList(); }), i != 5);
        EXPECT_EQ(refuses([&] { (void)value.asMap(); }), i != 6);
        EXPECT_EQ(refuses([&] { (void)value.asFunction(); }), i < 7);
        EXPECT_EQ(refuses([&] { (void)value.object(); }), i < 4);
    }
}

TEST(Value, OnlyNilAndFalseAreFalse) {
    EXPECT_FALSE(isTruthy(Value()));
    EXPECT_FALSE(isTruthy(Value(false)));
    for (const Value& value : oneOfEach()) EXPECT_EQ(isTruthy(value), !value.isNil());
    for (const Value& value : {Value(0), Value(0.0), Value(-0.0), Value(nan), Value(""),
                               makeList({}), Value(makeRef<MapData>())}) {
        EXPECT_TRUE(isTruthy(value)) << typeName(value);
    }
}

struct Pair {
    Value a, b;
    bool equal;
};

// Pairs for which both equalities give the same answer.
const std::vector<Pair>& plainPairs() {
    static const std::vector<Pair> pairs = {
        {Value(), Value(), true},
        {Value(), Value(false), false},
        {Value(), Value(0), false},
        {Value(), Value(""), false},
        {Value(), makeList({}), false},
        {Value(true), Value(true), true},
        {Value(false), Value(false), true},
        {Value(true), Value(false), false},
        {Value(true), Value(1), false},
        {Value(false), Value(0.0), false},
        {Value(true), Value("true"), false},
        {Value(1), Value(1), true},
        {Value(1), Value(2), false},
        {Value(1), Value(1.0), true},
        {Value(1), Value(1.5), false},
        {Value(0.0), Value(-0.0), true},
        {Value(0), Value(-0.0), true},
        {Value(nan), Value(nan), false},
        {Value(nan), Value(0), false},
        {Value(infinity), Value(infinity), true},
        {Value(infinity), Value(-infinity), false},
        {Value(infinity), Value(maxInt), false},
        {Value(border - 1), Value(border), false},
        {Value(border), Value(border + 1), true},
        {Value(border + 1), Value(border + 2), false},
        {Value(border + 3), Value(border + 4), true},
        {Value(-border), Value(-border - 1), true},
        {Value(-border + 1), Value(-border), false},
        {Value(border + 1), Value(9007199254740992.0), true},
        {Value(border + 1), Value(9007199254740994.0), false},
        {Value(maxInt), Value(0x1p63), true},
        {Value(maxInt), Value(maxInt - 511), true},
        {Value(maxInt), Value(maxInt - 512), false},
        {Value(minInt), Value(-0x1p63), true},
        {Value(minInt), Value(maxInt), false},
        {Value(""), Value(""), true},
        {Value("abc"), Value("abc"), true},
        {Value("abc"), Value("abd"), false},
        {Value("abc"), Value("ab"), false},
        {Value("a\0b"sv), Value("a\0c"sv), false},
        {Value("a"), Value("a\0"sv), false},
        {Value(std::string(1000, 'x')), Value(std::string(1000, 'x')), true},
        {Value(std::string(1000, 'x')), Value(std::string(1001, 'x')), false},
        {Value("1"), Value(1), false},
        {makeList({Value(1)}), makeList({Value(1)}), false},
        {makeList({}), Value(makeRef<MapData>()), false},
        {Value(makeRef<MapData>()), Value(makeRef<MapData>()), false},
        {functionOf(ValueKind::Native), functionOf(ValueKind::Native), false},
        {functionOf(ValueKind::Function), functionOf(ValueKind::Closure), false},
    };
    return pairs;
}

TEST(Value, EqualityOfPlainValues) {
    for (std::size_t i = 0; i < plainPairs().size(); ++i) {
        const Pair& pair = plainPairs()[i];
        EXPECT_EQ(valuesEqual(pair.a, pair.b), pair.equal) << "pair " << i;
        EXPECT_EQ(valuesEqual(pair.b, pair.a), pair.equal) << "pair " << i << " turned around";
    }
}

TEST(Value, KeyEqualityOfPlainValues) {
    for (std::size_t i = 0; i < plainPairs().size(); ++i) {
        const Pair& pair = plainPairs()[i];
        EXPECT_EQ(keysEqual(pair.a, pair.b), pair.equal) << "pair " << i;
        EXPECT_EQ(keysEqual(pair.b, pair.a), pair.equal) << "pair " << i << " turned around";
    }
}

TEST(Value, ContainersAndFunctionsEqualThemselvesButAreNoKeys) {
    for (const Value& value : oneOfEach()) {
        const Value copy = value;
        EXPECT_TRUE(valuesEqual(value, copy)) << typeName(value);
        const bool isPlain = !value.isList() && !value.isMap() && !value.isFunction();
        EXPECT_EQ(keysEqual(value, copy), isPlain) << typeName(value);
    }
}

TEST(Value, DifferentKindsAreNeverEqualExceptTheTwoOfNumbers) {
    const Values values = oneOfEach();
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = 0; j < values.size(); ++j) {
            if (i == j) continue;
            const bool areNumbers = i + j == 5 && (i == 2 || i == 3);
            EXPECT_EQ(valuesEqual(values[i], values[j]), areNumbers) << i << " and " << j;
            EXPECT_EQ(keysEqual(values[i], values[j]), areNumbers) << i << " and " << j;
        }
    }
}

TEST(Value, CopiesShareContainers) {
    const Value list = makeList({Value(1)});
    const Value copy = list;
    copy.asList().items.push_back(Value(2));
    EXPECT_EQ(listLength(list.asList()), 2u);

    const Value map(makeRef<MapData>());
    const Value mapCopy = map;
    mapCopy.asMap().set(Value("k"), Value(1));
    EXPECT_EQ(mapSize(map.asMap()), 1u);
}

TEST(Value, AMovedFromValueHoldsNothing) {
    const Value watched = makeList({});
    {
        Value source = watched;
        Value target = std::move(source);
        EXPECT_TRUE(valuesEqual(target, watched));
        EXPECT_FALSE(watched.object()->isUnshared());
        source = Value(5);  // may be used again
        EXPECT_EQ(source.asInt(), 5);
        target = std::move(source);
        EXPECT_EQ(target.asInt(), 5);
        EXPECT_TRUE(watched.object()->isUnshared()) << "the old contents were not released";
    }
    EXPECT_TRUE(watched.object()->isUnshared());
}

TEST(Value, AssignmentToItselfChangesNothing) {
    Value list = makeList({Value("kept")});
    Value& same = list;
    list = same;
    EXPECT_EQ(list.asList().items[0].asText(), "kept");
    list = std::move(same);
    ASSERT_TRUE(list.isList());
    EXPECT_EQ(list.asList().items[0].asText(), "kept");
    EXPECT_TRUE(list.object()->isUnshared());
}

TEST(Value, AnElementMayReplaceItsOwnList) {
    Value value = makeList({makeList({Value("inner")})});
    value = value.asList().items[0];
    EXPECT_EQ(value.asList().items[0].asText(), "inner");
    value = std::move(value.asList().items[0]);
    EXPECT_EQ(value.asText(), "inner");
}

TEST(Value, AListHoldsWhatItWasMadeOf) {
    const Value list = makeList({Value(1), Value("two"), Value()});
    EXPECT_EQ(listLength(list.asList()), 3u);
    EXPECT_EQ(list.asList().items[1].asText(), "two");
    EXPECT_EQ(listLength(makeList({}).asList()), 0u);
}

// A chain of a million is longer than the host's stack is deep.
constexpr int chainLength = 1'000'000;

TEST(Value, AMillionListsInEachOtherAreReleased) {
    const Value last = makeList({});
    Value chain = last;
    for (int i = 0; i < chainLength; ++i) {
        Values elements;
        elements.push_back(std::move(chain));
        chain = makeList(std::move(elements));
    }
    EXPECT_FALSE(last.object()->isUnshared());
    chain = Value();
    EXPECT_TRUE(last.object()->isUnshared());
}

TEST(Value, AMillionMapsInEachOtherAreReleased) {
    const Value last = makeList({});
    {
        Value chain = last;
        for (int i = 0; i < chainLength; ++i) {
            auto map = makeRef<MapData>();
            map->set(Value("next"), std::move(chain));
            chain = Value(std::move(map));
        }
        EXPECT_FALSE(last.object()->isUnshared());
    }
    EXPECT_TRUE(last.object()->isUnshared());
}

TEST(Value, AWideTreeIsReleased) {
    const Value leaf = makeList({});
    Value tree = leaf;
    for (int level = 0; level < 5; ++level) {
        Values branches;
        for (int i = 0; i < 10; ++i) {
            branches.push_back(makeList({tree, Value("text long enough to be allocated")}));
        }
        tree = makeList(std::move(branches));
    }
    tree = Value(1);
    EXPECT_TRUE(leaf.object()->isUnshared());
}

}  // namespace

}  // namespace pellum::test
