#include "builtins/families.h"

#include "value/format.h"
#include "value/heap.h"

#include <algorithm>

namespace pellum::library {

namespace {

// A string longer than this is written from where it is.
constexpr std::size_t maxCopied = limit(64 << 10, 4);

bool isLongString(const Value& value) {
    return value.isString() && value.asText().size() > maxCopied;
}

// Prints piece by piece, since a copy of the whole line might need more memory than there is.
void printLongStrings(Console& console, Arguments args) {
    // What may fail comes before anything is written.
    std::vector<std::string> texts(args.size());
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (!args[i].isString()) texts[i] = toDisplayString(args[i]);
    }
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (i > 0) console.write(" ");
        console.write(args[i].isString() ? args[i].asText() : std::string_view(texts[i]));
    }
    console.write("\n");
}

}  // namespace

Value print(Caller& caller, Arguments args) {
    if (std::ranges::any_of(args, isLongString)) {
        printLongStrings(caller.console(), args);
        return Value();
    }
    std::string line;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (i > 0) line += ' ';
        appendDisplay(line, args[i]);
        if (line.size() > maxCopied) requireRoom(line.size());
    }
    line += '\n';
    caller.console().write(line);
    return Value();
}

Value input(Caller& caller, Arguments args) {
    Console& console = caller.console();
    std::optional<DisplayText> prompt;
    if (!args.empty()) prompt.emplace(args[0]);
    try {
        const auto line = console.nextLine(prompt ? prompt->view() : std::string_view());
        Value result = line ? Value(*line) : Value();
        console.takeLine();
        return result;
    } catch (const LineTooLong&) {
        throw RuntimeError("input: line longer than " + std::to_string(maxLineLength) + " bytes");
    }
}

}  // namespace pellum::library
