// The streams of one run of the program, as the modes use them.
#pragma once

#include "builtins/console.h"
#include "driver/errors/errors.h"
#include "driver/terminal.h"

#include <exception>
#include <functional>
#include <iosfwd>
#include <string_view>

namespace pellum {

// The version of the program and of the language.
inline constexpr std::string_view version = "6";

class Session {
public:
    // `programName` stands before what the program itself has to complain about, and outlives the
    // session.
    Session(std::istream& in, std::ostream& out, std::ostream& err, Terminal terminal = {},
            std::string_view programName = "pellum") noexcept
        : console(in, out), input(in), program(programName), err_(err), terminal_(terminal) {
        if (terminal_.prompt) console.readFrom(*terminal_.prompt);
    }

    // Writes a line to standard error, behind all output that came before it.
    void diagnose(std::string_view line) { writeLine("", "", line); }
    // The same for what is no error of a program, with the name of this one before it. Asks for no
    // memory.
    void complain(std::string_view problem) { writeLine(program, ": ", problem); }
    void complain(const std::exception& failure);
    // The same for an error of a program: rendered, or "Error: " and the text of a thrown value.
    void diagnose(const PellumError& error, std::string_view source, std::string_view name);
    void diagnose(const ThrownValue& thrown);

    // Reads the prompt's lines at a terminal; null elsewhere.
    PromptReader* promptReader() const noexcept { return terminal_.prompt; }

    // Does the whole work of the program, writes out what it has printed, and answers its status:
    // that of `work`, or that of a failure which has been reported. Throws nothing.
    int run(const std::function<int()>& work);

    Console console;
    std::istream& input;
    const std::string_view program;

private:
    void writeLine(std::string_view beginning, std::string_view separator, std::string_view rest);

    std::ostream& err_;
    Terminal terminal_;
};

}  // namespace pellum
