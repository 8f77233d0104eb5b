#include "agreement/comparison.h"

#include "compiler/compiler.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "support/text.h"
#include "value/format.h"
#include "value/limits.h"
#include "vm/vm.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace pellum::test {

namespace {

// The wording of the few messages that differ between the engines.
std::string evenMessages(const std::string& text) {
    static const std::regex operatorMessage("operator '[-+*/%^]+' needs numbers");
    static const std::regex boundsMessage(
        "numeric for-loop bounds must be numbers|for step must be a number");
    return std::regex_replace(std::regex_replace(text, operatorMessage, "arithmetic needs numbers"),
                              boundsMessage, "numeric for-loop needs numbers");
}

// Without columns, which one engine knows and the other does not, and without the carets below
// them.
std::string withoutColumns(const std::string& errors) {
    static const std::regex column("(  --> .*:[0-9]+):[0-9]+\n");
    static const std::regex caret("\n *\\^\n$");
    return std::regex_replace(std::regex_replace(errors, column, "$1\n"), caret, "\n");
}

Outcome evened(Outcome outcome) {
    outcome.output = evenMessages(outcome.output);
    outcome.errors = withoutColumns(evenMessages(outcome.errors));
    return outcome;
}

// Whether a random program is too long for the jumps and constants of a build with small limits.
bool isTooLong(const Outcome& onMachine) {
    static const std::regex limit(
        "CompileError: (branch too large|loop body too large|too many constants)\n[^]*");
    return hasSmallLimits && std::regex_match(onMachine.errors, limit);
}

constexpr const char* input = "a line of input\n";

Outcome play(Engine engine, const std::string& source) {
    return evened(playInProcess(onEngine(engine, {"-c", source}), input));
}

// The same as a snippet on the virtual machine, but never translated to register code.
Outcome playRawStackCode(const std::string& source) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    Outcome outcome{1, {}, {}};
    Console console(in, out);
    try {
        VM(console, VM::Code::Stack).run(compile(parse(tokenize(source))));
        outcome.status = 0;
    } catch (const PellumError& error) {
        err << renderError(error, source, "<-c>") << "\n";
    } catch (const ThrownValue& thrown) {
        err << "Error: " << toDisplayString(thrown.value) << "\n";
    }
    outcome.output = out.str();
    outcome.errors = err.str();
    return outcome;
}

// A program that lost a declaration or a loop may differ for another reason than the one sought.
bool isDamaged(const Comparison& comparison) {
    static const std::regex damage(
        "undefined variable '(?!undefinedName)|'(break|continue)' outside a loop");
    const auto showsDamage = [](const Outcome& outcome) {
        return std::regex_search(outcome.output, damage) ||
               std::regex_search(outcome.errors, damage);
    };
    return showsDamage(comparison.tree) || showsDamage(comparison.vm);
}

class Shrinker {
public:
    Shrinker(Block program, Ground ground) : program_(std::move(program)), ground_(ground) {}

    Block run() {
        while (shrinkBlock(program_)) {
        }
        return std::move(program_);
    }

private:
    // Still a disagreement, with what has just been tried.
    bool differs() const {
        const Comparison comparison = compareEngines(textOf(program_), ground_);
        return !comparison.agrees() && (ground_ == Ground::MachineAlone || !isDamaged(comparison));
    }

    // Tries to do without half of the statements, a quarter, and so on down to single ones. Returns
    // whether anything was left out.
    bool shrinkBlock(Block& block) {
        bool hasShrunk = false;
        for (std::size_t length = std::max<std::size_t>(block.size() / 2, 1);; length /= 2) {
            for (std::size_t at = 0; at + length <= block.size();) {
                if (dropRun(block, at, length)) {
                    hasShrunk = true;
                } else {
                    at += length;
                }
            }
            if (length <= 1) break;
        }
        for (std::size_t at = 0; at < block.size(); ++at) {
            if (unwrap(block, at)) hasShrunk = true;
            for (std::size_t i = 0; i < block[at].sections.size(); ++i) {
                if (shrinkBlock(block[at].sections[i].body)) hasShrunk = true;
            }
        }
        return hasShrunk;
    }

    bool dropRun(Block& block, std::size_t at, std::size_t length) {
        const auto first = block.begin() + static_cast<std::ptrdiff_t>(at);
        const Block run(first, first + static_cast<std::ptrdiff_t>(length));
        block.erase(first, first + static_cast<std::ptrdiff_t>(length));
        if (differs()) return true;
        block.insert(block.begin() + static_cast<std::ptrdiff_t>(at), run.begin(), run.end());
        return false;
    }

    // Replaces a statement by what one of its bodies holds.
    bool unwrap(Block& block, std::size_t at) {
        const Block before = block;
        for (const Statement::Section& section : before[at].sections) {
            if (section.body.empty()) continue;
            block.erase(block.begin() + static_cast<std::ptrdiff_t>(at));
            block.insert(block.begin() + static_cast<std::ptrdiff_t>(at), section.body.begin(),
                         section.body.end());
            if (differs()) return true;
            block = before;
        }
        return false;
    }

    Block program_;
    Ground ground_;
};

// How the comments of a case say that a program ends so.
std::string expectedError(const std::string& errors) {
    static const std::regex placed(
        "RuntimeError: ([^\\n]*)\\n  --> [^\\n]*:([0-9]+:[0-9]+)\\n[^]*");
    static const std::regex unplaced("RuntimeError: ([^\\n]*)\\n");
    std::smatch match;
    if (std::regex_match(errors, match, placed)) {
        return "# expect error " + match[2].str() + ": " + match[1].str() + "\n";
    }
    if (std::regex_match(errors, match, unplaced)) {
        return "# expect error: " + match[1].str() + "\n";
    }
    constexpr std::string_view thrown = "Error: ";
    std::string comments;
    for (const std::string& line : splitLines(std::string_view(errors).substr(thrown.size()))) {
        comments += "# expect thrown: " + line + "\n";
    }
    return comments;
}

}  // namespace

std::string Comparison::difference() const {
    if (!(stackCode == vm)) {
        const auto line =
            firstDifference("the virtual machine's output beside its stack code's",
                            stackCode.output + stackCode.errors, vm.output + vm.errors);
        if (line) return *line;
    }
    const auto line = firstDifference("the virtual machine's output beside the tree-walker's",
                                      tree.output + tree.errors, vm.output + vm.errors);
    return line.value_or("exit status " + std::to_string(tree.status) + " on the tree-walker, " +
                         std::to_string(vm.status) + " on the virtual machine");
}

Comparison compareEngines(const std::string& source, Ground ground) {
    const Outcome vm = play(Engine::Vm, source);
    const bool comparesEngines = ground == Ground::BothEngines && !isTooLong(vm);
    return {comparesEngines ? play(Engine::Tree, source) : vm, vm,
            evened(playRawStackCode(source))};
}

Block shrink(Block program, Ground ground) { return Shrinker(std::move(program), ground).run(); }

std::string regressionCase(const std::string& source, Ground ground) {
    const bool isOfMachine = ground == Ground::MachineAlone;
    const Outcome wanted = isOfMachine
                               ? playRawStackCode(source)
                               : playInProcess(onEngine(Engine::Tree, {"-c", source}), input);
    std::string text = source;
    if (isOfMachine) text += "# only (vm)\n";
    if (source.find("input(") != source.npos) text += "# input: a line of input\n";
    for (const std::string& line : splitKeepingNewlines(wanted.output)) {
        text +=
            line.ends_with('\n') ? "# expect: " + line : "# expect without newline: " + line + "\n";
    }
    if (!wanted.errors.empty()) return text + expectedError(wanted.errors);
    return wanted.output.empty() ? text + "# expect nothing\n" : text;
}

}  // namespace pellum::test
