#include "builtins/families.h"

namespace pellum::library {

Value print(Caller& caller, Arguments& args) {
    std::string line;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (i > 0) line += ' ';
        line += DisplayText(args[i]).view();
    }
    line += '\n';
    caller.console().write(line);
    return Value();
}

Value input(Caller& caller, Arguments& args) {
    Console& console = caller.console();
    if (!args.empty()) console.write(DisplayText(args[0]).view());
    try {
        const std::optional<std::string> line = console.readLine();
        return line ? Value(*line) : Value();
    } catch (const LineTooLong&) {
        throw RuntimeError("input: line longer than " + std::to_string(maxLineLength) + " bytes");
    }
}

}  // namespace pellum::library
