// The words that editors colour are those of the language: the lists in the grammar and in the
// plugin, and the sample of all builtins, say what the lexer and the catalogue say. With --update
// they are written anew.
#include "support/files.h"
#include "support/registration.h"

#include "builtins/builtins.h"
#include "lexer/lexer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace pellum::test {

namespace {

using Words = std::set<std::string>;

constexpr std::string_view allKeywords = "keywords";
constexpr std::string_view builtinFunctions = "builtin functions";
constexpr std::string_view builtinConstants = "builtin constants";

// How a keyword is coloured; nothing for tokens of other kinds.
std::string_view listOf(TokenKind kind) {
    switch (kind) {
        case TokenKind::If:
        case TokenKind::Then:
        case TokenKind::Elif:
        case TokenKind::Else:
        case TokenKind::While:
        case TokenKind::For:
        case TokenKind::In:
        case TokenKind::Do:
        case TokenKind::End:
        case TokenKind::Break:
        case TokenKind::Continue:
        case TokenKind::Return:
        case TokenKind::Try:
        case TokenKind::Catch: return "control";
        case TokenKind::Let:
        case TokenKind::Function: return "declaration";
        case TokenKind::And:
        case TokenKind::Or:
        case TokenKind::Not: return "operator";
        case TokenKind::True:
        case TokenKind::False:
        case TokenKind::Nil: return "constant";
        default: return "";
    }
}

// Takes what registerBuiltins defines.
struct Names {
    void define(Symbol name, const Value& value) {
        const bool isFunction = value.isFunction();
        (isFunction ? functions : constants).insert(std::string(name.text()));
    }
    Words functions;
    Words constants;
};

std::map<std::string, Words, std::less<>> wordLists() {
    std::map<std::string, Words, std::less<>> lists;
    for (auto kind = TokenKind::Let; kind <= TokenKind::Catch;
         kind = static_cast<TokenKind>(static_cast<int>(kind) + 1)) {
        const std::string spelling(spellingOf(kind));
        EXPECT_NE(listOf(kind), "") << "no colour for " << spelling;
        lists[std::string(allKeywords)].insert(spelling);
        lists[std::string(listOf(kind))].insert(spelling);
    }
    Names names;
    registerBuiltins(names);
    lists[std::string(builtinFunctions)] = names.functions;
    lists[std::string(builtinConstants)] = names.constants;
    return lists;
}

std::string join(const Words& words, char separator) {
    std::string joined;
    for (const std::string& word : words) {
        if (!joined.empty()) joined += separator;
        joined += word;
    }
    return joined;
}

struct WordFile {
    const char* path;
    const char* mark;  // stands before the name of a list, in the line above it
    const char* open;  // stand around the list
    const char* close;
    char separator;
};

// The file as it should be, and which lists are in it.
struct Rewritten {
    std::string text;
    std::set<std::string, std::less<>> lists;
};

// In the grammar some groups come before the list, so the one that is meant is the first that
// holds nothing but words.
bool isList(std::string_view text, char separator) {
    return text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_" +
                                  std::string(1, separator)) == text.npos;
}

Rewritten rewrite(const WordFile& file) {
    const auto lists = wordLists();
    Rewritten result{readFile(file.path), {}};
    std::string& text = result.text;
    const std::string_view mark = file.mark;
    const std::string_view open = file.open;
    for (std::size_t at = 0; (at = text.find(mark, at)) != text.npos;) {
        const std::size_t nameEnd = text.find_first_of("\"\n", at + mark.size());
        const std::string name = text.substr(at + mark.size(), nameEnd - at - mark.size());
        const auto list = lists.find(name);
        if (list == lists.end()) {
            ADD_FAILURE() << file.path << ": there is no list of " << name;
            at = nameEnd;
            continue;
        }
        const std::size_t lineEnd = text.find('\n', text.find('\n', nameEnd) + 1);
        std::size_t start = text.find('\n', nameEnd);
        std::size_t end = start;
        do {
            start = text.find(open, start) + open.size();
            end = text.find(file.close, start);
            if (start > lineEnd || end > lineEnd) {
                ADD_FAILURE() << file.path << ": no words below " << mark << name;
                return result;
            }
        } while (!isList(std::string_view(text).substr(start, end - start), file.separator));
        text.replace(start, end - start, join(list->second, file.separator));
        result.lists.insert(name);
        at = start;
    }
    return result;
}

void expectWords(const WordFile& file) {
    const Rewritten wanted = rewrite(file);
    for (const auto& [name, words] : wordLists()) {
        EXPECT_TRUE(name == allKeywords || wanted.lists.contains(name))
            << file.path << " has no list of " << name;
    }
    if (updatesExpectations()) writeFile(file.path, wanted.text);
    EXPECT_EQ(readFile(file.path), wanted.text) << "pellum_tests --update writes it anew";
}

TEST(Editors, AreToldTheWordsByTheGrammar) {
    expectWords(
        {"editors/vscode/syntaxes/pellum.tmLanguage.json", "\"generated: ", "(?:", ")", '|'});
}

TEST(Editors, AreToldTheWordsByThePlugin) {
    expectWords({"editors/vim/syntax/pellum.vim", "\" generated: ", "'", "'", ' '});
}

// A line for each builtin, and below it how it is coloured.
std::string sampleOfBuiltins() {
    const auto lists = wordLists();
    std::string sample = "# Every builtin, written by pellum_tests --update.\n\n";
    const auto add = [&](std::string_view list, const std::string& colours) {
        for (const std::string& name : lists.find(list)->second) {
            sample += "  " + name + "\n# " + std::string(name.size(), '^') + " " + colours + "\n";
        }
    };
    add(builtinConstants, "support.constant.builtin.pellum | pellumBuiltinConstant");
    add(builtinFunctions, "support.function.builtin.pellum | pellumBuiltin");
    return sample;
}

TEST(Editors, HaveASampleOfAllBuiltins) {
    const char* path = "tests/editors/samples/builtins.pellum";
    if (updatesExpectations()) writeFile(path, sampleOfBuiltins());
    EXPECT_EQ(readFile(path), sampleOfBuiltins()) << "pellum_tests --update writes it anew";
}

}  // namespace

}  // namespace pellum::test
