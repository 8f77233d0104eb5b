// The fuzz targets: what libFuzzer feeds with bytes, and what the tests play the kept inputs of
// fuzz/corpus through. A target takes any bytes and returns; it throws Finding where the program
// breaks a promise that a crash would not show.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pellum::fuzz {

using Bytes = std::span<const std::uint8_t>;

struct Finding : std::logic_error {
    using std::logic_error::logic_error;
};

// Throws Finding unless the promise holds, whose pieces are put together only then.
template <typename... Pieces>
void require(bool holds, const Pieces&... promise) {
    if (holds) return;
    std::string text = "does not hold: ";
    (text.append(promise), ...);
    throw Finding(text);
}

inline std::string_view textOf(Bytes bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

struct Target {
    const char* name;
    void (*run)(Bytes input);
    const char* corpus;  // the folder of fuzz/corpus that its inputs are kept in
    bool takesCode;      // Pellum source, so that it pays to mutate tokens rather than bytes
};

// Any text falls into tokens or ends in an error with a place; tokens written out are tokens again.
void fuzzLexer(Bytes input);
// Any text is parsed, compiled, disassembled and translated, or ends in an error with a place.
void fuzzParser(Bytes input);
// Any program runs on the tree-walker, on register code and on stack code, and the latter two give
// the same.
void fuzzProgram(Bytes input);
// Any program, rewritten so that it stays clear of the known differences, does the same on the
// tree-walker and on the virtual machine.
void fuzzEngines(Bytes input);
// As the last two, with valid programs that the bytes decide about.
void fuzzValid(Bytes input);
// Any session at the prompt ends with status 0.
void fuzzPrompt(Bytes input);
// Numbers as text and back, beside the C library.
void fuzzNumber(Bytes input);

inline constexpr Target targets[] = {
    {"lexer", fuzzLexer, "code", true},      {"parser", fuzzParser, "code", true},
    {"program", fuzzProgram, "code", true},  {"engines", fuzzEngines, "code", true},
    {"valid", fuzzValid, "valid", false},    {"prompt", fuzzPrompt, "prompt", true},
    {"number", fuzzNumber, "number", false},
};

}  // namespace pellum::fuzz
