// The grammar stands twice: rule by rule above the functions of the lexer and the parser, for those
// who read them, and whole in docs/language.md, for those who write Pellum. Both say the same, and
// what they say is what the parser does.
#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "structure/ebnf.h"
#include "support/files.h"
#include "support/text.h"
#include "unit/tree_text.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

namespace {

constexpr const char* page = "docs/language.md";

void expectAllIn(const Rules& some, const Rules& others, const char* where) {
    for (const auto& [name, rule] : some) {
        const auto other = others.find(name);
        if (other == others.end()) {
            ADD_FAILURE_AT(rule.file.c_str(), rule.line) << name << " is no rule of " << where;
        } else if (other->second.text != rule.text || other->second.parameter != rule.parameter) {
            ADD_FAILURE_AT(rule.file.c_str(), rule.line)
                << name << " differs from " << other->second.file << ":" << other->second.line
                << "\n  here:  " << rule.text << "\n  there: " << other->second.text;
        }
    }
}

TEST(Grammar, OfThePageIsThatOfTheSources) {
    Rules sources = rulesOfSources("src/lexer");
    sources.merge(rulesOfSources("src/parser"));
    const Rules rules = rulesOfPage(page);
    EXPECT_FALSE(rules.empty());
    expectAllIn(rules, sources, "the comments in src/lexer and src/parser");
    expectAllIn(sources, rules, page);
}

TEST(Grammar, UsesEveryRuleAndNothingElse) {
    const Rules rules = rulesOfPage(page);
    std::set<std::string> known;
    for (const auto& [name, rule] : rules) {
        if (!rule.parameter.empty()) known.insert(rule.parameter);
    }
    // Every program is made of these two.
    std::vector<std::string> toVisit = {"program", "blank"};
    while (!toVisit.empty()) {
        const std::string name = toVisit.back();
        toVisit.pop_back();
        if (!known.insert(name).second) continue;
        const auto rule = rules.find(name);
        if (rule == rules.end()) {
            ADD_FAILURE_AT(page, 1) << "the grammar lacks the rule " << name;
            continue;
        }
        for (const std::string& used : symbolsOf(rule->second.text).names) {
            toVisit.push_back(used);
        }
    }
    for (const auto& [name, rule] : rules) {
        if (!known.contains(name)) ADD_FAILURE_AT(page, rule.line) << "nothing uses " << name;
    }
}

TEST(Grammar, KnowsEveryOperatorAndKeyword) {
    std::set<std::string> terminals;
    for (const auto& [name, rule] : rulesOfSources("src/parser"))
        terminals.merge(symbolsOf(rule.text).terminals);
    std::set<std::string> spellings;
    for (int kind = 0; kind <= static_cast<int>(TokenKind::EndOfFile); ++kind) {
        const std::string_view spelling = spellingOf(static_cast<TokenKind>(kind));
        if (!spelling.empty()) spellings.emplace(spelling);
    }
    EXPECT_EQ(terminals, spellings);
}

// Whether the parser takes the tokens for a program; none where it refuses them for a reason that
// is said beside the grammar rather than in it, or where that cannot be told.
std::optional<bool> isProgram(std::vector<Token> tokens) {
    try {
        parse(std::move(tokens));
        return true;
    } catch (const PellumError& error) {
        if (error.message == "invalid assignment target") return std::nullopt;
        return false;
    } catch (const std::out_of_range&) {
        return std::nullopt;  // a number in "${...}" that no double can hold
    }
}

bool isProgram(const Recogniser& grammar, const std::vector<Token>& tokens) {
    try {
        return grammar.accepts("program", tokens);
    } catch (const LexError&) {
        return false;
    }
}

std::string spelled(const std::vector<Token>& tokens) {
    std::string text;
    for (const Token& token : tokens) {
        text += token.kind == TokenKind::EndOfLine ? "\n" : std::string(token.text) + " ";
    }
    return text;
}

// All small programs of the tests and the examples, good and bad. Those that nest deeply would need
// more stack here than in the parser.
std::vector<std::string> smallPrograms() {
    std::vector<std::string> sources;
    for (const char* folder : {"tests/lang", "tests/errors", "tests/builtins", "examples"}) {
        for (const auto& file : filesUnder(folder, "")) {
            if (file.extension() != ".pellum" && file.extension() != ".plm") continue;
            std::string source = readFile(file);
            if (source.size() < 8000) sources.push_back(std::move(source));
        }
    }
    return sources;
}

// One small change that may make a program of it or spoil one. REQUIRES: more tokens than the end.
void change(std::vector<Token>& tokens, std::mt19937& random) {
    const auto upTo = [&](std::size_t count) { return random() % count; };
    const std::size_t at = upTo(tokens.size() - 1);
    const auto place = tokens.begin() + static_cast<std::ptrdiff_t>(at);
    const Token other = tokens[upTo(tokens.size() - 1)];
    switch (upTo(3)) {
        case 0: tokens.erase(place); break;
        case 1: tokens.insert(place, other); break;
        default: *place = other; break;
    }
}

TEST(Grammar, DescribesWhatTheParserTakes) {
    const Recogniser grammar(rulesOfPage(page));
    std::mt19937 random(6);
    int good = 0;
    int bad = 0;
    for (const std::string& source : smallPrograms()) {
        std::vector<Token> original;
        try {
            original = tokenize(source);
        } catch (const LexError&) {
            continue;
        } catch (const std::out_of_range&) {
            continue;
        }
        std::vector<Token> tokens = original;
        for (int round = 0; round < 20; ++round) {
            if (const std::optional<bool> wanted = isProgram(tokens)) {
                ASSERT_EQ(isProgram(grammar, tokens), *wanted) << spelled(tokens);
                ++(*wanted ? good : bad);
            }
            tokens = original;
            if (tokens.size() > 1) change(tokens, random);
        }
    }
    EXPECT_GT(good, 5000);
    EXPECT_GT(bad, 5000);
}

struct Operator {
    std::string text;
    std::size_t level;  // its row, loosest first
    bool nestsRight;
};

// The binary operators of the table under the heading "Precedence", which has a row for each level
// with the operators in backquotes and "left" or "right" in the next column.
std::vector<Operator> operatorsOfPage() {
    std::vector<Operator> operators;
    std::size_t level = 0;
    bool isUnderHeading = false;
    for (const std::string& line : splitLines(readFile(page))) {
        if (line.starts_with("#")) isUnderHeading = line.ends_with(" Precedence");
        const bool nestsRight = line.ends_with("| right |");
        if (!isUnderHeading || !(nestsRight || line.ends_with("| left |"))) continue;
        ++level;
        for (std::size_t at = line.find('`'); at != line.npos; at = line.find('`', at)) {
            const std::size_t end = line.find('`', at + 1);
            operators.push_back({line.substr(at + 1, end - at - 1), level, nestsRight});
            at = end + 1;
        }
    }
    return operators;
}

TEST(Grammar, ThePagesTableOfPrecedenceHolds) {
    const std::vector<Operator> operators = operatorsOfPage();
    std::string rule;
    for (const Operator& op : operators) rule += " \"" + op.text + "\"";
    EXPECT_EQ(symbolsOf(rule).terminals,
              symbolsOf(rulesOfPage(page).at("binary-operator").text).terminals);
    for (const Operator& first : operators) {
        for (const Operator& second : operators) {
            const bool secondIsTighter =
                second.level > first.level || (second.level == first.level && second.nestsRight);
            const std::string source = "a " + first.text + " b " + second.text + " c";
            EXPECT_EQ(treeText(parse(tokenize(source))),
                      secondIsTighter ? "(" + first.text + " a (" + second.text + " b c))"
                                      : "(" + second.text + " (" + first.text + " a b) c)")
                << source;
        }
    }
}

}  // namespace

}  // namespace pellum::test
