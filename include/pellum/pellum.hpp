// Pellum in a C++ program: an engine that runs programs of the language for a host.
//
//     pellum::Engine engine;
//     engine.define("twice", [](pellum::Engine&, const pellum::Values& args) -> pellum::Value {
//         return 2 * args[0].asInt();
//     }, 1, 1);
//     std::int64_t answer = engine.run("return twice(21)").asInt();
//
// Ownership: an Engine owns its globals and all that its programs make. Nil, bools, numbers and
// strings are plain data; a list, a map or a function is a handle on what the engine has, and keeps
// that readable even when the engine has ended. Only calling a function takes a living engine.
//
// Errors: everything that goes wrong is thrown as an `Error`; only where the host's own memory ends
// while it makes or copies plain data, that is std::bad_alloc. An engine goes on after each of
// them, with its globals as they were left.
//
// Threads: engines have nothing in common, and each can be used on a thread of its own. An engine
// together with its handles is used by one thread at a time, which need not always be the same.
//
// The names live in `pellum::embed`, and are usable as `pellum::Engine` and so on unless
// PELLUM_NO_SHORT_NAMES is defined. Needs C++17.
#ifndef PELLUM_PELLUM_HPP
#define PELLUM_PELLUM_HPP

#include <pellum/export.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace pellum {
namespace embed {

class Engine;
class Value;
using Values = std::vector<Value>;

enum class Kind { Nil, Bool, Int, Float, String, List, Map, Function };

// What is meant by an Error.
enum class Failure {
    Syntax = 1,   // the source is no program
    Runtime,      // an error of the running program that it did not catch
    Thrown,       // a value that the program threw with `error` and did not catch
    Steps,        // Options::maxSteps
    Memory,       // Options::maxMemory
    Interrupted,  // Engine::interrupt
    OutOfMemory,  // the system has refused memory
    Misuse        // the host has asked for what makes no sense; nothing has happened
};

class PELLUM_API Value {
public:
    // Plain data, which belongs to no engine. What a program calls a number is an Int or a Float;
    // an unsigned number beyond 63 bits wraps around. Strings are bytes, NUL bytes among them.
    Value() noexcept = default;
    Value(std::nullptr_t) noexcept {}
    template <typename T, std::enable_if_t<std::is_same_v<T, bool>, int> = 0>
    Value(T truth) noexcept : data_(truth) {}
    template <typename T,
              std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
    Value(T number) noexcept : data_(static_cast<std::int64_t>(number)) {}
    template <typename T, std::enable_if_t<std::is_floating_point_v<T>, int> = 0>
    Value(T number) noexcept : data_(static_cast<double>(number)) {}
    Value(std::string text) : data_(std::make_shared<const std::string>(std::move(text))) {}
    Value(std::string_view text) : Value(std::string(text)) {}
    Value(const char* text) : Value(std::string(text)) {}

    Kind kind() const noexcept;
    bool isNil() const noexcept { return kind() == Kind::Nil; }
    bool isTruthy() const noexcept;  // whatever is neither nil nor false

    // Each throws Failure::Misuse for another kind.
    bool asBool() const;
    std::int64_t asInt() const;
    double asFloat() const;               // an Int is converted
    const std::string& asString() const;  // as long as a Value with this string lives

    // What the program would print.
    std::string text() const;

    // Lists and maps, which are the program's own: it sees what is changed here. Indices of lists
    // count from 0; keys of maps are strings and numbers. Each throws Failure::Misuse where the
    // value has no such thing, and `set` and `push` as `Engine::run` does where memory is short.
    std::size_t size() const;
    Value get(const Value& indexOrKey) const;  // nil under a key that is not there
    void set(const Value& indexOrKey, const Value& value) const;
    void push(const Value& value) const;
    Values keys() const;                   // in the order in which they were added
    Value keyAt(std::size_t place) const;  // the same one by one, from 0

private:
    friend class Engine;
    friend struct Inside;
    struct Reference;
    explicit Value(std::shared_ptr<const Reference> reference) noexcept
        : data_(std::move(reference)) {}

    std::variant<std::monostate, bool, std::int64_t, double, std::shared_ptr<const std::string>,
                 std::shared_ptr<const Reference>>
        data_;
};

// The one exception that leaves this library.
class PELLUM_API Error : public std::exception {
public:
    // For functions of the host: throws this value in the program, as its `error` would.
    explicit Error(const Value& thrown);
    Error(const Error&) noexcept;
    Error& operator=(const Error&) noexcept;
    ~Error() override;

    Failure failure() const noexcept;
    const char* what() const noexcept override;  // the message
    // The place in a source, if that is known: its name, or "", line and column from 1, or 0.
    const std::string& source() const noexcept;
    std::uint32_t line() const noexcept;
    std::uint32_t column() const noexcept;
    // What the program `pellum` would say, in one line or several, without a newline at the end.
    const std::string& diagnostic() const noexcept;
    const Value& thrown() const noexcept;  // nil but for Failure::Thrown

private:
    friend struct Inside;
    struct Details;
    explicit Error(std::shared_ptr<const Details> details) noexcept;

    std::shared_ptr<const Details> details_;
};

struct Options {
    // Is given all that programs print. Without it, that is lost.
    std::function<void(std::string_view text)> output;

    // Yields the next line for the builtin `input`, without its newline, or nothing at the end.
    // Without it there are no lines.
    std::function<std::optional<std::string>()> input;

    // How many steps a run may take, or 0: no limit. A step is a call of a function of the program,
    // another round of a loop, or a builtin called by a builtin.
    std::uint64_t maxSteps = 0;

    // How many bytes the engine may hold, or 0: no limit. A fresh one holds about 35,000.
    std::size_t maxMemory = 0;

    // Whether `Engine::interrupt` does anything.
    bool isInterruptible = false;
};

// A function of the host. What it throws is an error in the program, which can catch that; of an
// Error that came out of a run for Failure::Steps, Memory or Interrupted the program hears nothing,
// it ends. Values may be kept.
using Native = std::function<Value(Engine& engine, const Values& arguments)>;

class PELLUM_API Engine {
public:
    static constexpr int anyNumber = -1;

    explicit Engine(Options options = {});
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    // REQUIRES: nothing runs.
    ~Engine();

    // Runs a program; `name` stands in errors. Yields what it returns at its top level, else nil.
    // What it defines at its top level are globals, which later runs find.
    Value run(std::string_view source, std::string_view name = "script");

    // Calls a function of this engine. Counts steps as a run does. Functions of the host may call
    // this and `run` too: that is a part of the run which has called them.
    Value call(const Value& function, const Values& arguments = {});

    // The globals, builtins among them. `get` is nil for one that is not there.
    bool has(std::string_view name) const;
    Value get(std::string_view name) const;
    void set(std::string_view name, const Value& value);

    // Makes a function of the host a global or a value. The program gets an error where it calls it
    // with fewer than `least` or more than `most` arguments. It lives as long as the engine.
    void define(std::string_view name, Native native, int least = 0, int most = anyNumber);
    Value function(std::string_view name, Native native, int least = 0, int most = anyNumber);

    // New lists and maps.
    Value list(const Values& elements = {});
    Value map(const std::vector<std::pair<Value, Value>>& entries = {});

    // Ends what runs with Failure::Interrupted, within about a thousand steps; does nothing if
    // nothing does. The one thing that another thread may do at any time, while the engine lives.
    void interrupt() noexcept;

    // The steps of the latest run, if they are counted, and the bytes that are held.
    std::uint64_t stepsTaken() const noexcept;
    std::size_t memoryUsed() const noexcept;

private:
    friend struct Inside;
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace embed

#ifndef PELLUM_NO_SHORT_NAMES
using namespace embed;
#endif

}  // namespace pellum

#endif
