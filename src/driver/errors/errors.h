// Every error that the system reports about a program. Lexing, parsing, compiling and running
// errors are PellumErrors; a value thrown by the language's `error` builtin travels separately as
// a ThrownValue. `renderError` is the one place that turns an error into a diagnostic.
#pragma once

#include "value/value.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pellum {

// A place in a source text: line and column from 1, columns in bytes; 0 means unknown.
struct Position {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

struct PellumError : std::runtime_error {
    PellumError(std::string kindWord, std::string text, std::uint32_t atLine,
                std::uint32_t atColumn)
        : std::runtime_error(text),
          kind(std::move(kindWord)),
          message(std::move(text)),
          line(atLine),
          column(atColumn) {}

    std::string kind;     // what the diagnostic begins with, such as "RuntimeError"
    std::string message;  // the text after the kind
    std::uint32_t line;   // 0: the error has no location
    std::uint32_t column;
};

struct LexError : PellumError {
    LexError(std::string text, std::uint32_t atLine, std::uint32_t atColumn)
        : PellumError("SyntaxError (lexing)", std::move(text), atLine, atColumn) {}
};

struct ParseError : PellumError {
    ParseError(std::string text, std::uint32_t atLine, std::uint32_t atColumn)
        : PellumError("SyntaxError", std::move(text), atLine, atColumn) {}
};

struct CompileError : PellumError {
    CompileError(std::string text, std::uint32_t atLine, std::uint32_t atColumn)
        : PellumError("CompileError", std::move(text), atLine, atColumn) {}
};

// The only one of the family that the language's `try` catches.
struct RuntimeError : PellumError {
    explicit RuntimeError(std::string text, std::uint32_t atLine = 0, std::uint32_t atColumn = 0)
        : PellumError("RuntimeError", std::move(text), atLine, atColumn) {}
    RuntimeError(std::string text, Position at)
        : RuntimeError(std::move(text), at.line, at.column) {}
};

// The payload of the `error` builtin on its way to a `try` or to the end of the run.
struct ThrownValue {
    Value value;
};

// Where a diagnostic is going to be read. Plain counts bytes and knows nothing of tabs; at a
// terminal the caret stands below what the eye sees at its place. Colours add nothing but colours.
enum class Look { Plain, Terminal, Coloured };

// The diagnostic for `error`, without a newline at its end: kind and message; the place, where it
// is known; the line of `source` with a caret, where it exists. `source` is the complete text that
// the error refers to, or empty; `name` is what the user calls it.
std::string renderError(const PellumError& error, std::string_view source, std::string_view name,
                        Look look = Look::Plain);

// The same for a value that the program has thrown, of which `text` is the display text.
std::string renderThrown(std::string_view text, Look look = Look::Plain);

}  // namespace pellum
