#include "unit/fake_caller.h"

#include "value/format.h"
#include "value/limits.h"
#include "value/map.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <new>
#include <ostream>

namespace pellum {
namespace {

using test::FakeCaller;

// What the call ends with: the value's repr form, or "error <line>:<column>: <message>".
std::string outcome(FakeCaller& caller, std::string_view name, Values args) {
    try {
        return toReprString(caller.run(name, std::move(args)));
    } catch (const RuntimeError& error) {
        return "error " + std::to_string(error.line) + ":" + std::to_string(error.column) + ": " +
               error.message;
    }
}

std::string outcome(std::string_view name, Values args) {
    FakeCaller caller;
    return outcome(caller, name, std::move(args));
}

Value list(Values elements) { return makeList(std::move(elements)); }

std::string nameAndArity(const Builtin& row) {
    std::string text = row.name;
    text += " " + std::to_string(row.minArity);
    if (row.maxArity == unlimited) return text + "+";
    return row.maxArity == row.minArity ? text : text + "-" + std::to_string(row.maxArity);
}

TEST(Catalogue, HasEveryBuiltinInOrder) {
    const std::vector<std::string> wanted{
        "print 0+",      "input 0-1",     "type 1",       "str 1",         "repr 1",
        "num 1",         "int 1",         "bool 1",       "len 1",         "push 1+",
        "pop 1",         "range 1-3",     "keys 1",       "values 1",      "has 2",
        "slice 1-3",     "map 2",         "filter 2",     "reduce 2-3",    "sort 1-2",
        "reverse 1",     "find 2",        "sum 1",        "count 2",       "upper 1",
        "lower 1",       "split 1-2",     "join 1-2",     "trim 1",        "replace 3",
        "starts_with 2", "ends_with 2",   "char 1",       "ord 1",         "floor 1",
        "ceil 1",        "abs 1",         "sqrt 1",       "min 1+",        "max 1+",
        "round 1-2",     "pow 2",         "sin 1",        "cos 1",         "tan 1",
        "log 1-2",       "exp 1",         "random 0",     "randint 2",     "float 1",
        "hex 1",         "bin 1",         "oct 1",        "parse_int 1-2", "chars 1",
        "is_number 1",   "is_string 1",   "is_list 1",    "is_map 1",      "is_nil 1",
        "is_bool 1",     "is_function 1", "clamp 3",      "sign 1",        "copy 1",
        "zip 2",         "enumerate 1",   "insert 3",     "remove_at 2",   "get 2-3",
        "contains 2",    "repeat 2",      "capitalize 1", "items 1",       "delete 2",
        "assert 1-2",    "error 0-1",     "clock 0"};
    std::vector<std::string> given;
    for (const Builtin& row : builtinCatalogue()) given.push_back(nameAndArity(row));
    EXPECT_EQ(given, wanted);
}

TEST(Catalogue, IsRegisteredWithItsConstants) {
    struct Scope {
        std::map<std::string, Value> values;
        void define(const Symbol& name, Value value) {
            values[std::string(name.text())] = std::move(value);
        }
    } scope;
    registerBuiltins(scope);
    EXPECT_EQ(scope.values.size(), builtinCatalogue().size() + 2);
    EXPECT_EQ(scope.values["PI"].asFloat(), 3.141592653589793);
    EXPECT_EQ(scope.values["E"].asFloat(), 2.718281828459045);
    for (const Builtin& row : builtinCatalogue()) {
        EXPECT_EQ(toDisplayString(scope.values[row.name]),
                  "<native function " + std::string(row.name) + ">");
    }
}

TEST(NativeCall, ReportsAWrongCountAtTheCall) {
    EXPECT_EQ(outcome("len", {}), "error 7:3: len() expects 1 argument(s), got 0");
    EXPECT_EQ(outcome("range", Values(4, Value(1))),
              "error 7:3: range() expects 1-3 argument(s), got 4");
    EXPECT_EQ(outcome("max", {}), "error 7:3: max() expects 1+ argument(s), got 0");
    EXPECT_EQ(outcome("clock", {Value()}), "error 7:3: clock() expects 0 argument(s), got 1");
}

TEST(NativeCall, ReportsAFailureOfTheNativeWithoutAPlace) {
    EXPECT_EQ(outcome("pop", {list({})}), "error 0:0: pop: list is empty");
}

TEST(NativeCall, ReportsExhaustionInTheNameOfTheNative) {
    FakeCaller caller;
    Values args;
    const auto messageOf = [&](NativeFunction fn) {
        try {
            callNative(NativeObj("greedy", fn, 0, unlimited), caller, args, Position{1, 1});
        } catch (const RuntimeError& error) {
            return error.message + " at " + std::to_string(error.line);
        }
        return std::string("nothing");
    };
    EXPECT_EQ(messageOf([](Caller&, Arguments) -> Value { throw std::bad_alloc(); }),
              "greedy: out of memory at 0");
    EXPECT_EQ(messageOf([](Caller&, Arguments) -> Value { throw std::length_error("x"); }),
              "greedy: result too large at 0");
}

TEST(NativeCall, RefusesWhatWouldBeTooLargeAtOnce) {
    EXPECT_EQ(outcome("repeat", {Value("x"), Value(1e15)}), "error 0:0: repeat: result too large");
    EXPECT_EQ(outcome("repeat", {list({Value(1)}), Value(1e15)}),
              "error 0:0: repeat: result too large");
    EXPECT_EQ(outcome("repeat", {Value("xy"), Value(1 << 30)}),
              "error 0:0: repeat: result too large");
    EXPECT_EQ(outcome("repeat", {Value(""), Value(1e15)}), "\"\"");
    EXPECT_EQ(outcome("repeat", {list({}), Value(1e15)}), "[]");
    EXPECT_EQ(outcome("range", {Value(1e15)}), "error 0:0: range: result too large");
    EXPECT_EQ(outcome("range", {Value((1 << 28) + 1)}), "error 0:0: range: result too large");

    FakeCaller caller;
    const Value longText = caller.run("repeat", {Value("x"), Value(1 << 20)});
    const Values many(2048, longText);
    EXPECT_EQ(outcome("join", {list(many)}), "error 0:0: join: result too large");
    EXPECT_EQ(outcome("replace", {longText, Value("x"), Value("0123456789abcdef")}).size(),
              (std::size_t{1} << 24) + 2);
    EXPECT_EQ(outcome("replace", {longText, Value("x"), longText}),
              "error 0:0: replace: result too large");
}

TEST(NativeCall, RangeEndsWhateverItIsGiven) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::string stuck = "error 0:0: range: step too small to advance";
    const std::string tooLarge = "error 0:0: range: result too large";
    const auto range = [](double start, double end, double step) {
        return outcome("range", {Value(start), Value(end), Value(step)});
    };
    EXPECT_EQ(range(1e16, 1e17, 1), stuck);
    EXPECT_EQ(range(9007199254740990.0, 9007199254741000.0, 1), stuck);
    EXPECT_EQ(range(0, 1, 5e-324), tooLarge);
    EXPECT_EQ(range(1, 2, 5e-324), stuck);
    EXPECT_EQ(range(0, infinity, 1), tooLarge);
    EXPECT_EQ(range(-infinity, 0, 1), stuck);
    EXPECT_EQ(range(infinity, 0, -1), stuck);
    EXPECT_EQ(range(infinity, infinity, 1), "[]");
    EXPECT_EQ(range(0, 10, infinity), "[0.0]");
    EXPECT_EQ(range(0, -10, infinity), "[]");
    EXPECT_EQ(range(nan, 1, 1), "[]");
    EXPECT_EQ(range(0, nan, 1), "[]");
    EXPECT_EQ(range(0, 1, nan), "[]");
    EXPECT_EQ(range(-1.5e308, 1.5e308, 1e308), "[-1.5e+308, -5e+307, 5e+307]");
}

// The running value is a double that the step is added to, roundings included.
TEST(NativeCall, RangeAddsStepByStep) {
    const auto expectLoop = [](double start, double end, double step) {
        FakeCaller caller;
        const Value given = caller.run("range", {Value(start), Value(end), Value(step)});
        std::vector<double> wanted;
        for (double x = start; step > 0 ? x < end : x > end; x += step) wanted.push_back(x);
        ASSERT_EQ(given.asList().items.size(), wanted.size()) << start << " " << end << " " << step;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            ASSERT_EQ(given.asList().items[i].asFloat(), wanted[i]);
        }
    };
    expectLoop(0, 1, 0.1);
    expectLoop(0, limit(10'000, 290), 0.1);
    expectLoop(1, 0, -0.01);
    expectLoop(9007199254740992.0, 9007199254741192.0, 1.5);
    expectLoop(4503599627370496.0, 4503599627370596.0, 0.7);
    expectLoop(2251799813685240.0, 2251799813685260.0, 3);
    expectLoop(-7, 1000, 13);
    expectLoop(1000, -7, -13);
    expectLoop(5, 6, 100);
}

TEST(NativeCall, ListBuiltinsMayBeGivenTheListItself) {
    FakeCaller caller;
    const Value xs = list({Value(1)});
    caller.run("push", {xs, xs, xs});
    EXPECT_EQ(toReprString(xs), "[1, [...], [...]]");
    caller.run("insert", {xs, Value(0), xs});
    EXPECT_EQ(toReprString(xs), "[[...], 1, [...], [...]]");
    caller.run("remove_at", {xs, Value(0)});
    caller.run("pop", {xs});
    caller.run("pop", {xs});
    EXPECT_EQ(toReprString(xs), "[1]");
}

TEST(NativeCall, AnElementMayBeTheLastThatHoldsItsContainer) {
    FakeCaller caller;
    const auto map = makeRef<MapData>();
    map->set(Value("self"), Value(map));
    const Value last(map);
    EXPECT_TRUE(caller.run("delete", {last, Value("self")}).asBool());
    EXPECT_EQ(mapSize(*map), 0U);
}

TEST(NativeCall, CallbacksSeeTheElementsOfTheCall) {
    const Value xs = list({Value(1), Value(2), Value(3)});
    FakeCaller caller([&](Values& args) {
        xs.asList().items.clear();
        return Value(args.back().asInt() != 2);
    });
    const Value function;
    const auto refill = [&] { xs.asList().items = {Value(1), Value(2), Value(3)}; };
    EXPECT_EQ(outcome(caller, "map", {function, xs}), "[true, false, true]");
    refill();
    EXPECT_EQ(outcome(caller, "filter", {function, xs}), "[1, 3]");
    refill();
    EXPECT_EQ(outcome(caller, "reduce", {function, xs}), "true");
    EXPECT_EQ(caller.calls(), 3U + 3U + 2U);
}

TEST(Random, StaysInItsBoundsAndReachesThem) {
    FakeCaller caller;
    std::map<std::int64_t, int> seen;
    for (int i = 0; i < 2000; ++i) {
        ++seen[caller.run("randint", {Value(-2), Value(2)}).asInt()];
        const double x = caller.run("random", {}).asFloat();
        ASSERT_TRUE(x >= 0 && x < 1) << x;
    }
    EXPECT_EQ(seen.size(), 5U);
    EXPECT_EQ(seen.begin()->first, -2);
    EXPECT_EQ(seen.rbegin()->first, 2);
    // Each of the five comes 400 times on average; fewer than 250 happens once in 10^16 runs.
    for (const auto& [number, times] : seen) EXPECT_GT(times, 250) << number;
}

TEST(Random, DrawsFromTheWholeRangeOfIntegers) {
    FakeCaller caller;
    bool sawNegative = false;
    bool sawPositive = false;
    for (int i = 0; i < 200; ++i) {
        // The largest double below 2^63 is the largest upper bound there is.
        const std::int64_t drawn =
            caller.run("randint", {Value(-9.3e18), Value(9223372036854774784.0)}).asInt();
        sawNegative = sawNegative || drawn < 0;
        sawPositive = sawPositive || drawn > 0;
    }
    EXPECT_TRUE(sawNegative && sawPositive);
    EXPECT_EQ(outcome("randint", {Value(5), Value(5)}), "5");
    EXPECT_EQ(outcome("randint", {Value(-1e300), Value(1e300)}), "-9223372036854775808");
}

// Where there are fewer than 2^64 results but more than half as many, plain scaling would give some
// of them two of the generator's numbers and others one.
TEST(Random, FavoursNoResult) {
    __extension__ using Wide = unsigned __int128;
    FakeCaller caller;
    const Wide count = (Wide{3} << 62) - 511;
    const auto firstNumberOf = [&](Wide result) { return ((result << 64) + count - 1) / count; };
    int doubles = 0;
    for (int i = 0; i < 3000; ++i) {
        const Value drawn = caller.run("randint", {Value(-0x1p63), Value(0x1p62 - 512)});
        const Wide result = static_cast<std::uint64_t>(drawn.asInt()) - (std::uint64_t{1} << 63);
        if (firstNumberOf(result + 1) - firstNumberOf(result) == 2) ++doubles;
    }
    // They are a third of all results; scaling would give them half of the time.
    EXPECT_NEAR(doubles, 1000, 250);
}

// Takes so many bytes, then fails.
class ShortDevice : public std::streambuf {
public:
    explicit ShortDevice(std::size_t room) : room_(room) {}

protected:
    int_type overflow(int_type byte) override {
        if (room_ == 0) return traits_type::eof();
        --room_;
        return traits_type::not_eof(byte);
    }
    int sync() override { return room_ == 0 ? -1 : 0; }

private:
    std::size_t room_;
};

TEST(Console, NoticesThatOutputFails) {
    std::istringstream in("a line\n");
    ShortDevice device(3);
    std::ostream out(&device);
    Console console(in, out);
    console.write("abc");
    EXPECT_THROW(console.write("d"), OutputError);
    EXPECT_THROW(console.flush(), OutputError);
    EXPECT_THROW(console.readLine(), OutputError);
}

TEST(Console, PrintDoesNotTurnAFailingDeviceIntoAnErrorOfTheProgram) {
    class Engine : public Caller {
    public:
        using Caller::Caller;
        Value call(const Value&, std::span<Value>) override { return Value(); }
    };
    std::istringstream in;
    ShortDevice device(2);
    std::ostream out(&device);
    Console console(in, out);
    Engine engine(console);
    const Builtin& print = builtinCatalogue()[0];
    const NativeObj native(print.name, print.fn, print.minArity, print.maxArity);
    Values args{Value("abc")};
    EXPECT_THROW(callNative(native, engine, args, Position{}), OutputError);
}

TEST(Console, ReadsLinesUntilTheEnd) {
    std::istringstream in("one\r\n\nlast");
    std::ostringstream out;
    Console console(in, out);
    EXPECT_EQ(console.readLine(), "one\r");
    EXPECT_EQ(console.readLine(), "");
    EXPECT_EQ(console.readLine(), "last");
    EXPECT_EQ(console.readLine(), std::nullopt);
    EXPECT_EQ(console.readLine(), std::nullopt);
}

TEST(Console, ALineStaysTheNextOneUntilItIsTaken) {
    std::istringstream in("one\ntwo\n");
    std::ostringstream out;
    Console console(in, out);
    EXPECT_EQ(console.nextLine(), "one");
    EXPECT_EQ(console.nextLine(), "one");
    EXPECT_EQ(console.readLine(), "one");
    EXPECT_EQ(console.nextLine(), "two");
    console.takeLine();
    EXPECT_EQ(console.nextLine(), std::nullopt);
}

TEST(Console, WhatCannotBeReadIsTheEnd) {
    class BrokenDevice : public std::streambuf {
        int_type underflow() override { throw std::ios::failure("broken"); }
    } device;
    std::istream in(&device);
    std::ostringstream out;
    Console console(in, out);
    EXPECT_EQ(console.readLine(), std::nullopt);
    EXPECT_EQ(console.readLine(), std::nullopt);
}

TEST(Console, FlushesBeforeItWaits) {
    class CountsFlushes : public std::stringbuf {
    public:
        int flushes = 0;

    protected:
        int sync() override { return ++flushes, 0; }
    } buffer;
    std::istringstream in("x\n");
    std::ostream out(&buffer);
    Console console(in, out);
    console.write("name? ");
    EXPECT_EQ(buffer.flushes, 0);
    EXPECT_EQ(console.readLine(), "x");
    EXPECT_EQ(buffer.flushes, 1);
    EXPECT_EQ(buffer.str(), "name? ");
}

TEST(Console, InputShowsItsPromptAndPrintItsLine) {
    FakeCaller caller;
    caller.type("Ada\n");
    EXPECT_EQ(outcome(caller, "input", {list({Value("name")})}), "\"Ada\"");
    EXPECT_EQ(outcome(caller, "input", {}), "nil");
    EXPECT_EQ(outcome(caller, "print", {Value("a"), Value(1.0), Value()}), "nil");
    EXPECT_EQ(outcome(caller, "print", {}), "nil");
    EXPECT_EQ(caller.printed(), "[\"name\"]a 1.0 nil\n\n");
}

}  // namespace
}  // namespace pellum
