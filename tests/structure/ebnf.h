// The grammar as it is written down, in the comments of the lexer and the parser and in the pages:
// rules of the form "name  ::=  text", which go on in lines that are indented. Besides being
// compared, the rules can be followed: a Recogniser says whether tokens are what a rule describes.
#pragma once

#include "lexer/token.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct Rule {
    std::string text;       // all that stands behind "::=", with single blanks
    std::string parameter;  // "item" for a rule "items(item)", mostly empty
    std::string file;
    int line = 0;
};

using Rules = std::map<std::string, Rule>;

// The rules in the comments of the C++ sources below `folder`. As for pages, a rule that comes
// twice is a failure of the test that runs.
Rules rulesOfSources(const char* folder);

// The rules in the blocks of a page that are marked "ebnf".
Rules rulesOfPage(const char* page);

// What a rule is made of: the names of other rules and the texts in quotes.
struct Symbols {
    std::set<std::string> names, terminals;
};

Symbols symbolsOf(std::string_view rule);

// Follows rules from left to right: of several alternatives the first one that fits is taken, and
// what may be repeated is repeated for as long as it fits. What the lexer has made of the text is
// taken for granted; code inside strings is looked into.
class Recogniser {
public:
    explicit Recogniser(const Rules& rules);
    ~Recogniser();

    // Whether all of `tokens` together are a `rule`. REQUIRES: they end with the end of the file.
    bool accepts(const std::string& rule, const std::vector<Token>& tokens) const;

private:
    struct Node;
    class Reader;
    class Match;

    std::map<std::string, std::unique_ptr<Node>> rules_;
};

}  // namespace pellum::test
