// The targets that run programs.
#include "agreement/generator.h"
#include "fuzz/common_ground.h"
#include "fuzz/fuel.h"
#include "fuzz/playing.h"
#include "fuzz/targets.h"

#include "compiler/compiler.h"
#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "parser/parser.h"

#include <optional>
#include <utility>

namespace pellum::fuzz {

namespace {

std::optional<Block> parsed(std::string_view source) {
    try {
        return parse(tokenize(source));
    } catch (const PellumError&) {
        return std::nullopt;
    } catch (const std::out_of_range&) {  // a number literal that no double can hold
        return std::nullopt;
    }
}

bool compiles(const Block& program) {
    try {
        compile(program);
        return true;
    } catch (const CompileError&) {
        return false;
    }
}

std::string shown(const Played& played) {
    return played.output + "[" + played.ending + "] at line " + std::to_string(played.line) + "\n";
}

void requireSame(const Played& one, const Played& other, const char* between) {
    if (one.ranOutOfMemory || other.ranOutOfMemory) return;
    if (one.output == other.output && one.ending == other.ending && one.line == other.line) return;
    throw Finding(std::string(between) + " do not do the same; one gives\n" + shown(one) +
                  "and the other\n" + shown(other));
}

bool ranOutOfStack(const Played& played) {
    constexpr std::string_view message = "stack overflow";
    return played.output.find(message) != std::string::npos ||
           played.ending.find(message) != std::string::npos;
}

void compareCodes(Block program, std::string_view source) {
    boundSteps(program);
    play(Engine::Tree, program, source);
    if (!compiles(program)) return;
    requireSame(play(Engine::Register, program, source), play(Engine::Stack, program, source),
                "register code and stack code");
}

void compareEngines(Block program, std::string_view source) {
    if (!moveToCommonGround(program)) return;
    boundSteps(program);
    if (!compiles(program)) return;
    Played tree = play(Engine::Tree, program, source);
    Played vm = play(Engine::Register, program, source);
    // How deep recursion may go is each engine's own affair.
    if (ranOutOfStack(tree) || ranOutOfStack(vm)) return;
    tree.ending = evenMessage(tree.ending);
    vm.ending = evenMessage(vm.ending);
    requireSame(tree, vm, "the tree-walker and the virtual machine");
}

}  // namespace

void fuzzProgram(Bytes input) {
    if (auto program = parsed(textOf(input))) compareCodes(std::move(*program), textOf(input));
}

void fuzzEngines(Bytes input) {
    if (auto program = parsed(textOf(input))) compareEngines(std::move(*program), textOf(input));
}

void fuzzValid(Bytes input) {
    if (input.empty()) return;
    const std::string source = test::textOf(test::generateProgram(input.subspan(1)));
    auto program = parsed(source);
    require(program.has_value(), "a generated program is valid:\n", source);
    (input[0] % 2 == 0 ? compareCodes : compareEngines)(std::move(*program), source);
}

}  // namespace pellum::fuzz
