// What the linter has to say: its rules, and one remark by one of them. The rules are listed here
// alone; the command line, the pages and the tests are drawn from the list or checked against it.
#pragma once

#include "driver/errors/errors.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::lint {

// One row for each rule: enumerator, name, and what it finds in a few words.
// clang-format off
#define PELLUM_LINT_RULES(RULE)                                                                    \
    RULE(UnusedName, "unused-name", "a name that is never used")                                   \
    RULE(ShadowedName, "shadowed-name", "a local name that hides another one")                     \
    RULE(RedeclaredName, "redeclared-name", "a name declared twice in one scope")                  \
    RULE(DuplicateParameter, "duplicate-parameter", "two parameters of one name")                  \
    RULE(BuiltinName, "builtin-name", "a builtin that the program takes the name of")              \
    RULE(UndefinedName, "undefined-name", "a name that nothing defines")                           \
    RULE(EarlyUse, "early-use", "a global variable used before it is made")                        \
    RULE(EnginesDiffer, "engines-differ", "a name that the engines take for different variables")  \
    RULE(LoopVariable, "loop-variable", "an assignment to the variable of a numeric loop")         \
    RULE(WrongArity, "wrong-arity", "a call with a wrong number of arguments")                     \
    RULE(TryExit, "try-exit", "a break or continue out of a try")                                  \
    RULE(StrayExit, "stray-exit", "a break or continue without a loop")                            \
    RULE(UnreachableCode, "unreachable-code", "a statement that is never reached")                 \
    RULE(ConstantComparison, "constant-comparison", "an == or != with only one possible answer")   \
    RULE(ConstantCondition, "constant-condition", "a condition that is always true or never")      \
    RULE(TypeName, "type-name", "type(...) compared with what is no type")                         \
    RULE(TightPrefix, "tight-prefix", "a not or - that binds tighter than it seems to")            \
    RULE(BadOperand, "bad-operand", "an operation that always fails")                              \
    RULE(DuplicateKey, "duplicate-key", "a key that a map literal has twice")                      \
    RULE(SelfAssignment, "self-assignment", "a variable or element assigned to itself")            \
    RULE(NoEffect, "no-effect", "a statement that does nothing")                                   \
    RULE(DroppedResult, "dropped-result", "a builtin's new value that nobody takes")               \
    RULE(IdlePragma, "idle-pragma", "a pragma that has no effect")                                 \
    RULE(BadAllow, "bad-allow", "a comment to the linter that it does not understand")             \
    RULE(UselessAllow, "useless-allow", "a comment that silences nothing")
// clang-format on

enum class Rule : std::uint8_t {
#define PELLUM_LINT_ENUMERATOR(rule, name, summary) rule,
    PELLUM_LINT_RULES(PELLUM_LINT_ENUMERATOR)
#undef PELLUM_LINT_ENUMERATOR
};

struct RuleInfo {
    std::string_view name;
    std::string_view summary;
};

// All rules, by their number.
std::span<const RuleInfo> ruleCatalogue() noexcept;

std::string_view nameOf(Rule rule) noexcept;
std::optional<Rule> ruleNamed(std::string_view name) noexcept;

struct Finding {
    Position at;  // in the file, also for code inside of strings
    Rule rule;
    std::string text;
};

using Findings = std::vector<Finding>;

}  // namespace pellum::lint
