// Programs as texts, run inside a test on either engine. What comes back is one text: the output,
// and the error that ended the program, as "runtime error 2:5: division by zero" or "thrown: 1".
#pragma once

#include "compiler/compiler.h"
#include "interp/interpreter.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "value/format.h"
#include "vm/vm.h"

#include <sstream>
#include <string>
#include <string_view>

namespace pellum::test {

inline pellum::Block parseText(std::string_view source) { return parse(tokenize(source)); }
inline Ref<FunctionProto> compileText(std::string_view source) {
    return compile(parseText(source));
}

// A call from outside, with arguments made for it.
inline Value callWith(Caller& caller, const Value& callee, Values args) {
    return caller.call(callee, args);
}

// A console in memory.
struct MemoryConsole {
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out};
};

inline std::string errorText(std::string_view kind, const PellumError& error) {
    return std::string(kind) + " " + std::to_string(error.line) + ":" +
           std::to_string(error.column) + ": " + error.message;
}

// The error that `action` ends with, or nothing.
template <typename Action>
std::string errorOf(const Action& action) {
    try {
        action();
        return "";
    } catch (const ThrownValue& thrown) {
        return "thrown: " + toDisplayString(thrown.value);
    } catch (const CompileError& error) {
        return errorText("compile error", error);
    } catch (const RuntimeError& error) {
        return errorText("runtime error", error);
    }
}

// The repr form of the value that `action` gives, or the error that it ends with.
template <typename Action>
std::string ending(const Action& action) {
    std::string value;
    const std::string error = errorOf([&] { value = toReprString(action()); });
    return error.empty() ? value : error;
}

// The error of the compiler, or nothing.
inline std::string compiling(std::string_view source) {
    return errorOf([&] { compileText(source); });
}

inline std::string onVm(std::string_view source) {
    MemoryConsole memory;
    const std::string error = errorOf([&] { VM(memory.console).run(compileText(source)); });
    return memory.out.str() + error;
}

inline std::string onTree(std::string_view source) {
    MemoryConsole memory;
    const pellum::Block program = parseText(source);
    const std::string error = errorOf([&] { Interpreter(memory.console).run(program); });
    return memory.out.str() + error;
}

}  // namespace pellum::test
