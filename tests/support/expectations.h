// What a language case says about itself in its comments: the lines that it prints, the error that
// it ends with, the input that it reads. docs/testing.md describes the forms.
#pragma once

#include "support/playing.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// One expectation about standard output.
struct ExpectedLine {
    std::string text;             // with its newline, if it has one
    std::size_t commentLine = 0;  // from 1
    std::size_t byteOffset = 0;   // of the text in the source, without the blank before it
    std::size_t byteLength = 0;   // as it stands in the source
};

// The error that ends the program.
struct ExpectedError {
    std::string kind;  // as a diagnostic begins, such as "RuntimeError"
    std::string message;
    bool isDiagnostic = true;  // false: standard error is kind, ": ", message and a newline
    std::uint32_t line = 0;    // 0: the diagnostic has no place
    std::uint32_t column = 0;
    std::size_t commentLine = 0;  // from 1
};

// What one engine has to do.
struct Wanted {
    std::vector<ExpectedLine> output;
    std::optional<ExpectedError> error;
    bool needsOrdinaryLimits = false;  // it goes beyond the limits of a build with small ones
};

struct Expectations {
    Wanted tree, vm;
    std::string input;
    std::optional<Engine> onlyEngine;
    bool areOneForBoth = true;      // nothing is expected of one engine alone
    bool needsSmallLimits = false;  // it is about the limits of a build with small ones

    const Wanted& on(Engine engine) const { return engine == Engine::Tree ? tree : vm; }
    bool runsOn(Engine engine) const { return !onlyEngine || *onlyEngine == engine; }
};

// An expectation that cannot be understood, or a source without any.
struct BadExpectation : std::runtime_error {
    BadExpectation(std::size_t atLine, const std::string& text)
        : std::runtime_error(text), line(atLine) {}
    std::size_t line;
};

// Throws BadExpectation.
Expectations expectationsOf(std::string_view source);

// What standard error has to be, to the byte, when the program `source` ends with `error` and is
// known as `name`. Written without a look at how the program renders its errors.
std::string wantedErrors(const ExpectedError& error, std::string_view source,
                         std::string_view name);

}  // namespace pellum::test
