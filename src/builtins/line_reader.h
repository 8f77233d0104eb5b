// Where the lines come from that somebody types at a terminal. The console reads from its input
// stream, unless it has been given one of these.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pellum {

class LineReader {
public:
    LineReader() = default;
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    virtual ~LineReader() = default;

    // Shows the prompt and returns the line typed behind it, without its newline, or none at the
    // end of the input. REQUIRES: nothing that was to be shown before is still held back. Throws
    // Interrupted when the user has asked for that instead.
    virtual std::optional<std::string> readLine(std::string_view prompt) = 0;
};

}  // namespace pellum
