#include "tools/format_checks.h"

#include "agreement/random.h"
#include "support/comments.h"
#include "support/playing.h"
#include "support/text.h"
#include "unit/tree_text.h"

#include "driver/errors/errors.h"
#include "format/format.h"
#include "format/structure.h"
#include "lexer/lexer.h"
#include "parser/parser.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace pellum::test {

namespace {

std::string treeOf(const std::string& source) { return treeText(parse(tokenize(source))); }

std::vector<std::string> commentTexts(const std::string& source) {
    std::vector<std::string> texts;
    for (const Comment& comment : commentsOf(source)) {
        texts.emplace_back(comment.text.substr(0, comment.text.find_last_not_of(" \t\r") + 1));
    }
    return texts;
}

// Strings may hold newlines and blanks in what is embedded in them, and pragmas stay as they are.
bool hasLinesOfTheAuthor(const std::string& source) {
    return source.find("${") != source.npos || source.find("#pragma") != source.npos ||
           source.starts_with("#!");
}

void expectNeatLines(const std::string& text) {
    if (text.empty()) return;
    EXPECT_TRUE(text.ends_with('\n'));
    EXPECT_FALSE(text.ends_with("\n\n"));
    EXPECT_FALSE(text.starts_with('\n'));
    EXPECT_EQ(text.find("\n\n\n"), text.npos);
    EXPECT_EQ(text.find(" \n"), text.npos);
    EXPECT_EQ(text.find("\t\n"), text.npos);
}

// A message without the place and the excerpt.
std::string withoutPlace(const std::string& errors) { return errors.substr(0, errors.find("\n ")); }

}  // namespace

std::string checkedFormat(const std::string& source, const std::string& name) {
    SCOPED_TRACE(name);
    std::string result;
    try {
        result = tools::format(source);
        EXPECT_EQ(treeOf(result), treeOf(source));
        EXPECT_EQ(commentTexts(result), commentTexts(source));
        EXPECT_EQ(tools::format(result), result) << "formatted again";
    } catch (const std::exception& problem) {
        ADD_FAILURE() << problem.what() << "\n" << source << "\n--- gives\n" << result;
    }
    if (!hasLinesOfTheAuthor(source)) expectNeatLines(result);
    return result;
}

void expectSameBehaviour(const std::string& before, const std::string& after,
                         const std::string& name) {
    const std::string input = "a line of input\n";
    for (const Engine engine : bothEngines) {
        const Outcome wanted = playInProcess(onEngine(engine, {"-c", before}), input);
        const Outcome given = playInProcess(onEngine(engine, {"-c", after}), input);
        if (given.status == wanted.status && given.output == wanted.output &&
            withoutPlace(given.errors) == withoutPlace(wanted.errors)) {
            continue;
        }
        if (playInProcess(onEngine(engine, {"-c", before}), input) != wanted) continue;
        ADD_FAILURE() << name << " behaves differently on " << engineName(engine) << "\n"
                      << firstDifference("the output", wanted.output, given.output).value_or("")
                      << "\nerrors before:\n"
                      << wanted.errors << "and after:\n"
                      << given.errors;
    }
}

std::string scrambled(const std::string& source, std::uint64_t seed) {
    Random dice(seed);
    const tools::LexedSource lexed = tools::lexSource(source);
    tools::Pieces pieces = tools::piecesOf(lexed, source);
    tools::structureOf(pieces);
    std::string text;
    const auto blanks = [&] {
        for (int count = dice.below(3); count > 0; --count) text += dice.chance(70) ? ' ' : '\t';
    };
    const auto lineEnd = [&] {
        blanks();
        if (dice.chance(30)) text += "# remark " + std::to_string(dice.below(100));
        blanks();
        text += dice.chance(10) ? "\r\n" : "\n";
    };
    // How often a line ends where it need not.
    const int readiness = dice.pick<int>({0, 5, 30, 80});
    for (const tools::Piece& piece : pieces.list) {
        const bool mustEnd = piece.place == tools::Place::Statement && !text.empty();
        const bool mayEnd = piece.place != tools::Place::Inside;
        if (mustEnd) lineEnd();
        if (mayEnd && dice.chance(readiness)) {
            for (int count = dice.between(1, 3); count > 0; --count) lineEnd();
        }
        blanks();
        // Two of these would read as one word, or as one number.
        const auto isWord = [](char c) {
            return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.';
        };
        if (!text.empty() && !piece.text.empty() && isWord(text.back()) &&
            isWord(piece.text.front())) {
            text += ' ';
        }
        text += piece.text;
    }
    if (dice.chance(50)) lineEnd();
    return text;
}

bool isProgram(const std::string& source) {
    try {
        parse(tokenize(source));
        return true;
    } catch (const PellumError&) {
    } catch (const std::out_of_range&) {
    }
    return false;
}

}  // namespace pellum::test
