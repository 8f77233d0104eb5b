// What is typed or pasted at a terminal, as bytes, with the signals that come in between. Both
// readers of the prompt take their input from here, since what has arrived at once must not get
// lost between two lines.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace pellum {

class TerminalInput {
public:
    enum class Event {
        Byte,       // there is at least one more byte than before
        End,        // the input has ended, or the user has said so
        Interrupt,  // Ctrl-C, for whoever has asked for it
        Signal,     // some other signal has been handled
        Timeout,
    };

    // What has arrived and not been taken.
    std::string_view waiting() const noexcept { return std::string_view(bytes_).substr(taken_); }
    void take(std::size_t byteCount) noexcept { taken_ += byteCount; }

    void drop() noexcept { taken_ = bytes_.size(); }

    // Makes `text` the first thing that waits.
    void putBack(std::string_view text) { bytes_.replace(0, taken_, text), taken_ = 0; }

    // Waits for more, for at most so many milliseconds if it is not for ever.
    Event wait(int milliseconds = -1);

    // Takes a whole line, without its end, if one has arrived that needs no editing: it holds no
    // control characters but tabs.
    std::optional<std::string> takePlainLine();

private:
    Event readSome();

    std::string bytes_;
    std::size_t taken_ = 0;
    int changesSeen_ = 0;  // of the terminal
};

}  // namespace pellum
