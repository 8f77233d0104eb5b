// Where a program prints to and reads lines from. Each engine is given one.
#pragma once

#include "builtins/line_reader.h"
#include "value/limits.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace pellum {

// Output that could not be written. Not an error of the program, so no `try` of it catches this.
struct OutputError {
    bool readerIsGone = false;  // a closed pipe: whoever read the output has had enough
};

// A line of input without an end in sight.
struct LineTooLong {};

inline constexpr std::size_t maxLineLength = limit(1 << 28, 3'000);

class Console {
public:
    // REQUIRES: both streams outlive the console.
    Console(std::istream& in, std::ostream& out) noexcept : in_(in), out_(out) {}

    // From now on the lines of the input come from there. REQUIRES: it outlives the console.
    void readFrom(LineReader& lines) noexcept { lines_ = &lines; }

    // Both throw OutputError when the stream has failed, and `write` throws Interrupted where that
    // is asked for (value/interrupt.h).
    void write(std::string_view text);
    void flush();

    // Shows the prompt and yields the next line of the input without its newline (a carriage return
    // stays), or none at its end. Output is flushed before the wait. It stays the next line until
    // it is taken, so that nothing is lost where memory does not suffice for it. Throws LineTooLong
    // beyond maxLineLength; what has been read by then is gone, and the rest of the line is the
    // next one.
    std::optional<std::string_view> nextLine(std::string_view prompt = {});
    void takeLine() noexcept;

    // Both in one.
    std::optional<std::string> readLine();

private:
    std::optional<std::string_view> nextTypedLine(std::string_view prompt);

    std::istream& in_;
    std::ostream& out_;
    LineReader* lines_ = nullptr;
    std::string line_;  // what has been read of the next line
    bool isLineWhole_ = false;
};

}  // namespace pellum
