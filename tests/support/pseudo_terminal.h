// A program at a terminal of its own, which we type at and look at.
#pragma once

#include "support/screen.h"

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

class PseudoTerminal {
public:
    struct Options {
        std::string program = PELLUM_EXECUTABLE;
        std::vector<std::string> arguments;
        std::filesystem::path folder = ".";
        std::vector<std::string> environment;  // all of it, as NAME=VALUE
        std::size_t columns = 80, rows = 24;
        bool echoes = true;  // the terminal, when the program starts
    };

    // Starts the program. Throws std::system_error.
    explicit PseudoTerminal(const Options& options);
    // Hangs up, and waits for the program to end.
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const Screen& screen() const { return screen_; }
    pid_t child() const { return child_; }

    // Types the bytes, while what the program sends is shown.
    void type(std::string_view bytes);
    void resize(std::size_t columns, std::size_t rows);

    // Waits until `isThere`, which looks at the screen, holds. False when that does not come, or
    // the program has ended without it.
    bool waitUntil(const std::function<bool()>& isThere);
    bool waitForText(std::string_view text);

    // Waits for the end of the program and yields its status, or minus the number of the signal
    // that ended it; none where it does not end.
    std::optional<int> waitForEnd();

    // Whether the terminal shows what is typed and hands it over line by line.
    bool isAsUsual() const;

private:
    bool readSome(int milliseconds);

    int master_ = -1;
    pid_t child_ = -1;
    bool isHungUp_ = false;  // nobody has the terminal any more, and all is on the screen
    bool hasEnded_ = false;
    Screen screen_;
};

}  // namespace pellum::test
