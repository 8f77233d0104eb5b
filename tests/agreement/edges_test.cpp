// Random programs close to the ends of the machine: inside so many calls, and above so many values,
// that they run out of both. Register code and stack code must stop at the same value, say the same
// and go on in the same way. Meant for a build with small limits, where the ends are near:
//
//   PELLUM_EDGE_SEEDS=1-5000 build/small/tests/pellum_tests --gtest_filter='Agreement.AtTheEdges*'
#include "agreement/generator.h"
#include "unit/running.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace pellum::test {
namespace {

std::string onMachine(std::string_view source, VM::Code code) {
    MemoryConsole memory;
    memory.in.str("a line of input\n");
    const std::string error = errorOf([&] { VM(memory.console, code).run(compileText(source)); });
    return memory.out.str() + error;
}

// The program as the body of a function that is called with so much room left.
std::string cornered(const std::string& program, std::size_t framesLeft, std::size_t slotsLeft) {
    const std::size_t frames = VM::maxFrames - 3 - framesLeft;
    const std::size_t slots = ValueStack::capacity - 2 * frames - slotsLeft;
    std::string values;
    for (std::size_t i = 0; i < slots; ++i) values += "nil, ";
    return "function cornered()\n" + program +
           "end\n"
           "function nest(n)\n"
           "    if n == 0 then return cornered() end\n"
           "    return nest(n - 1)\n"
           "end\n"
           "function fill() return [" +
           values + "nest(" + std::to_string(frames) +
           ")][-1] end\n"
           "for round = 1, 2 do\n"
           "    try print(fill()) catch e print(\"outside:\", e) end\n"
           "end\n";
}

std::size_t seedsThatMetAnEnd = 0;

void expectAgreement(std::uint64_t seed) {
    const std::string source =
        cornered(textOf(generateProgram(seed)), seed % 11 + 1, seed % 61 + 8);
    const std::string fromRegisters = onMachine(source, VM::Code::Register);
    if (fromRegisters.find("overflow") != fromRegisters.npos) ++seedsThatMetAnEnd;
    EXPECT_EQ(fromRegisters, onMachine(source, VM::Code::Stack)) << "of seed " << seed << ":\n"
                                                                 << source;
}

TEST(Agreement, AtTheEdges) {
    std::uint64_t first = 1;
    std::uint64_t last = 300;
    if (const char* const asked = std::getenv("PELLUM_EDGE_SEEDS")) {
        char* rest = nullptr;
        first = last = std::strtoull(asked, &rest, 10);
        if (*rest == '-') last = std::strtoull(rest + 1, nullptr, 10);
    }
    seedsThatMetAnEnd = 0;
    for (std::uint64_t seed = first; seed <= last; ++seed) expectAgreement(seed);
    RecordProperty("met", std::to_string(seedsThatMetAnEnd));
    if (last - first >= 100) {
        EXPECT_GE(seedsThatMetAnEnd, (last - first) / 4);
    }
}

}  // namespace
}  // namespace pellum::test
