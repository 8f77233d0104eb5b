// Values between a host and its engine, both ways and beyond the engine's end.
#include "embed/embedding.h"

#include "value/limits.h"

#include <limits>
#include <memory>

namespace pellum::test {
namespace {

using embed::Engine;
using embed::Kind;
using embed::Value;
using embed::Values;

TEST(EmbedValue, PlainOnesBelongToNobody) {
    EXPECT_EQ(Value().kind(), Kind::Nil);
    EXPECT_EQ(Value(nullptr).kind(), Kind::Nil);
    EXPECT_EQ(Value(true).kind(), Kind::Bool);
    EXPECT_EQ(Value(7).kind(), Kind::Int);
    EXPECT_EQ(Value(std::uint8_t{7}).asInt(), 7);
    EXPECT_EQ(Value(std::numeric_limits<std::uint64_t>::max()).asInt(), -1);
    EXPECT_EQ(Value(2.5f).kind(), Kind::Float);
    EXPECT_EQ(Value("text").kind(), Kind::String);
    EXPECT_EQ(Value(std::string("a\0b", 3)).asString().size(), 3u);
    EXPECT_EQ(Value(3).asFloat(), 3.0);
    EXPECT_EQ(Value(3.0).text(), "3.0");
    EXPECT_EQ(Value().text(), "nil");
    EXPECT_FALSE(Value(false).isTruthy());
    EXPECT_FALSE(Value().isTruthy());
    EXPECT_TRUE(Value(0).isTruthy());
    EXPECT_TRUE(Value("").isTruthy());
}

TEST(EmbedValue, GoIntoAProgramAndComeBackTheSame) {
    Engine engine;
    engine.define(
        "same", [](Engine&, const Values& args) { return args[0]; }, 1, 1);
    const auto trip = [&](const Value& value) {
        engine.set("given", value);
        return engine.run("return same(given)");
    };
    EXPECT_EQ(trip(nullptr).kind(), Kind::Nil);
    EXPECT_EQ(trip(true).asBool(), true);
    EXPECT_EQ(trip(std::numeric_limits<std::int64_t>::min()).asInt(),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(trip(0.1).asFloat(), 0.1);
    const std::string bytes("\0\xFF and more", 11);
    EXPECT_EQ(trip(bytes).asString(), bytes);
    EXPECT_EQ(trip("").asString(), "");
    EXPECT_EQ(trip("x").asString(), "x");
    EXPECT_EQ(trip(engine.list({1, "two"})).text(), "[1, \"two\"]");
    EXPECT_EQ(engine.call(trip(engine.get("len")), {"four"}).asInt(), 4);
}

TEST(EmbedValue, ListsAndMapsAreTheProgramsOwn) {
    Engine engine;
    const Value list = engine.list({1, 2});
    engine.set("list", list);
    engine.run("push(list, 3)\nlist[0] = 'first'");
    EXPECT_EQ(list.size(), 3u);
    EXPECT_EQ(list.get(0).asString(), "first");
    list.push(4);
    list.set(1, nullptr);
    EXPECT_EQ(textOf(engine, "return list"), "[\"first\", nil, 3, 4]");

    const Value map = engine.map({{"a", 1}, {2, "b"}});
    engine.set("map_", map);
    engine.run("map_.c = list");
    EXPECT_EQ(map.size(), 3u);
    EXPECT_EQ(map.get("c").get(0).asString(), "first");
    EXPECT_EQ(map.get(2.0).asString(), "b");
    EXPECT_TRUE(map.get("nowhere").isNil());
    map.set("a", 10);
    EXPECT_EQ(textOf(engine, "return map_.a"), "10");
    std::string keys;
    for (const Value& key : map.keys()) keys += key.text() + " ";
    EXPECT_EQ(keys, "a 2 c ");
    EXPECT_EQ(map.keyAt(2).text(), "c");
}

TEST(EmbedValue, OfTheWrongKindAreMisuse) {
    Engine engine;
    const Value list = engine.list({1});
    const Value map = engine.map();
    const auto misuse = [](auto work) { return outcomeOf(work); };
    EXPECT_EQ(misuse([&] { Value("x").asInt(); }), "misuse: the value is no integer but a string");
    EXPECT_EQ(misuse([&] { Value(1.5).asInt(); }), "misuse: the value is no integer but a float");
    EXPECT_EQ(misuse([&] { Value(true).asInt(); }), "misuse: the value is no integer but a bool");
    EXPECT_EQ(misuse([&] { engine.get("len").asInt(); }),
              "misuse: the value is no integer but a function");
    EXPECT_EQ(misuse([&] { Value(1).asBool(); }), "misuse: the value is no bool but an integer");
    EXPECT_EQ(misuse([&] { Value().asFloat(); }), "misuse: the value is no number but nil");
    EXPECT_EQ(misuse([&] { list.asString(); }), "misuse: the value is no string but a list");
    EXPECT_EQ(misuse([&] { Value(1).size(); }),
              "misuse: the value is no list or map but an integer");
    EXPECT_EQ(misuse([&] { Value(1).get(0); }),
              "misuse: the value is no list or map but an integer");
    EXPECT_EQ(misuse([&] { list.get("x"); }),
              "misuse: the value is no index of a list but a string");
    EXPECT_EQ(misuse([&] { list.get(1); }), "misuse: the list has no element 1");
    EXPECT_EQ(misuse([&] { list.set(-1, 0); }), "misuse: the list has no element -1");
    EXPECT_EQ(misuse([&] { map.get(list); }), "misuse: the value is no key of a map but a list");
    EXPECT_EQ(misuse([&] { map.set(nullptr, 1); }), "misuse: the value is no key of a map but nil");
    EXPECT_EQ(misuse([&] { map.push(1); }), "misuse: the value is no list but a map");
    EXPECT_EQ(misuse([&] { list.keys(); }), "misuse: the value is no map but a list");
    EXPECT_EQ(misuse([&] { list.keyAt(0); }), "misuse: the value is no map but a list");
    EXPECT_EQ(misuse([&] { map.keyAt(0); }), "misuse: the map has no key 0");
    EXPECT_EQ(misuse([&] { engine.call(list); }), "misuse: the value is no function");
    EXPECT_EQ(misuse([&] { engine.call(Value()); }), "misuse: the value is no function");
}

TEST(EmbedValue, OfAnotherEngineAreMisuse) {
    Engine one;
    Engine other;
    const Value foreign = other.list({1});
    const std::string wanted = "misuse: the value belongs to another engine";
    EXPECT_EQ(outcomeOf([&] { one.set("x", foreign); }), wanted);
    EXPECT_EQ(outcomeOf([&] { one.list({foreign}); }), wanted);
    EXPECT_EQ(outcomeOf([&] { one.map({{"x", foreign}}); }), wanted);
    EXPECT_EQ(outcomeOf([&] { one.list().push(foreign); }), wanted);
    EXPECT_EQ(outcomeOf([&] { one.call(one.get("len"), {foreign}); }), wanted);
    EXPECT_EQ(outcomeOf([&] { one.call(other.get("len"), {"x"}); }), wanted);
    one.define("foreign", [&](Engine&, const Values&) { return foreign; });
    EXPECT_EQ(outcomeOf(one, "foreign()"), "runtime: the value belongs to another engine");
    EXPECT_EQ(foreign.text(), "[1]");
}

TEST(EmbedValue, ListsOfTheLongestLengthAreFull) {
    if (!hasSmallLimits) GTEST_SKIP() << "it takes four gigabytes";
    Engine engine;
    const Value list = engine.run("return range(3000)");
    const auto error = errorOf([&] { list.push(1); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->failure(), embed::Failure::Runtime);
    EXPECT_EQ(error->diagnostic(), "RuntimeError: result too large");
    EXPECT_EQ(list.size(), 3'000u);
}

TEST(EmbedValue, OutliveTheirEngine) {
    Value list;
    Value map;
    Value function;
    Value native;
    {
        Engine engine;
        engine.define("host", [](Engine&, const Values&) { return 1; });
        engine.run(
            "let list = [1, 'a text of some length', [2.5]]\n"
            "let m = {list: list, f: print}\n"
            "function f(x) return m end\n");
        list = engine.get("list");
        map = engine.get("m");
        function = engine.get("f");
        native = engine.get("host");
    }
    EXPECT_EQ(list.text(), "[1, \"a text of some length\", [2.5]]");
    EXPECT_EQ(list.get(2).get(0).asFloat(), 2.5);
    list.push("more");
    EXPECT_EQ(map.get("list").size(), 4u);
    EXPECT_EQ(map.get("f").text(), "<native function print>");
    EXPECT_EQ(function.text(), "<function f>");
    EXPECT_EQ(native.text(), "<native function host>");
    Engine later;
    EXPECT_EQ(outcomeOf([&] { later.call(function); }),
              "misuse: the value belongs to another engine");
}

// Whatever a program has made, the end of engine and values gives it back. Where blocks would be
// lost, the address sanitizer knows; here the count of a shared owner does.
TEST(EmbedValue, CirclesEndWithTheEngine) {
    const auto held = std::make_shared<int>(0);
    {
        Engine engine;
        engine.define("a_function_with_a_long_name",
                      [held](Engine&, const Values&) { return *held; });
        engine.run(
            "let a = []\nlet b = {a: a}\npush(a, b)\n"
            "function make()\n"
            "    let itself = nil\n"
            "    function recursive_with_a_rather_long_name(n)\n"
            "        if n == 0 then return 0 end\n"
            "        return itself(n - 1)\n"
            "    end\n"
            "    itself = recursive_with_a_rather_long_name\n"
            "    return itself\n"
            "end\n"
            "make()(10)\na = nil\nb = nil\nmake = nil");
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace pellum::test
