// The plain machine against the register machine: every program of the tests that ends on the one
// must end in the same way on the other.
#include "support/expectations.h"
#include "support/files.h"
#include "unit/running.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace pellum::test {

namespace {

std::string playedAs(VM::Code code, const Ref<FunctionProto>& program, const std::string& input) {
    std::istringstream in(input);
    std::ostringstream out;
    Console console(in, out);
    const std::string error = errorOf([&] { VM(console, code).run(program); });
    return out.str() + error;
}

void expectAgreement(const std::filesystem::path& path) {
    const std::string source = readFile(path);
    const Expectations expectations = expectationsOf(source);
    if (!expectations.runsOn(Engine::Vm)) return;
    Ref<FunctionProto> program;
    try {
        program = compileText(source);
    } catch (const std::exception&) {
        return;  // others look at what does not compile
    }
    const auto play = [&](VM::Code code) { return playedAs(code, program, expectations.input); };
    EXPECT_EQ(play(VM::Code::Stack), play(VM::Code::Register)) << path;
}

void expectAgreementIn(const char* folder) {
    for (const auto& path : filesUnder(std::filesystem::path("tests") / folder, ".pellum")) {
        expectAgreement(path);
    }
}

TEST(StackCode, AgreesOnTheLanguage) { expectAgreementIn("lang"); }
TEST(StackCode, AgreesOnErrors) { expectAgreementIn("errors"); }
TEST(StackCode, AgreesOnBuiltins) { expectAgreementIn("builtins"); }
TEST(StackCode, AgreesOnRegressions) { expectAgreementIn("regression"); }

}  // namespace

}  // namespace pellum::test
