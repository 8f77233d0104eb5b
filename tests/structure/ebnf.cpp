#include "structure/ebnf.h"

#include "lexer/lexer.h"
#include "support/files.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <stdexcept>

namespace pellum::test {

namespace {

std::string withSingleBlanks(std::string_view text) {
    std::string words;
    for (const char c : trim(text)) {
        if (c != ' ' || words.back() != ' ') words += c;
    }
    return words;
}

class LineReader {
public:
    LineReader(Rules& rules, std::string file) : rules_(rules), file_(std::move(file)) {}

    void read(std::string_view line, int number) {
        constexpr std::string_view sign = "::=";
        const std::size_t at = line.find(sign);
        if (at != line.npos) {
            begin(std::string(trim(line.substr(0, at))), line.substr(at + sign.size()), number);
        } else if (open_ && line.starts_with("    ")) {
            open_->text = withSingleBlanks(open_->text + " " + std::string(line));
        } else {
            end();
        }
    }
    void end() { open_ = nullptr; }

private:
    void begin(std::string name, std::string_view text, int number) {
        Rule rule{withSingleBlanks(text), "", file_, number};
        if (const std::size_t bracket = name.find('('); bracket != name.npos) {
            rule.parameter = name.substr(bracket + 1, name.size() - bracket - 2);
            name.erase(bracket);
        }
        const auto [place, isNew] = rules_.emplace(name, std::move(rule));
        if (!isNew) ADD_FAILURE_AT(file_.c_str(), number) << name << " comes twice";
        open_ = &place->second;
    }

    Rules& rules_;
    std::string file_;
    Rule* open_ = nullptr;
};

bool isNameByte(char c) { return c == '-' || std::islower(static_cast<unsigned char>(c)); }

std::string_view nameAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && isNameByte(text[end])) ++end;
    return text.substr(at, end - at);
}

// What stands from the quote or question mark at `at` to the next one.
std::string_view quotedAt(std::string_view text, std::size_t at) {
    const std::size_t end = text.find(text[at], at + 1);
    if (end == text.npos) throw std::runtime_error("never closed: " + std::string(text));
    return text.substr(at + 1, end - at - 1);
}

}  // namespace

Rules rulesOfSources(const char* folder) {
    Rules rules;
    for (const auto& file : filesUnder(folder, "")) {
        LineReader reader(rules, file.generic_string());
        int number = 0;
        for (const std::string& line : splitLines(readFile(file))) {
            ++number;
            const std::string_view code = trim(line);
            if (code.starts_with("//")) {
                reader.read(code.substr(2), number);
            } else {
                reader.end();
            }
        }
    }
    return rules;
}

Rules rulesOfPage(const char* page) {
    Rules rules;
    LineReader reader(rules, page);
    bool isInBlock = false;
    int number = 0;
    for (const std::string& line : splitLines(readFile(page))) {
        ++number;
        if (line.starts_with("```")) {
            isInBlock = line == "```ebnf";
            reader.end();
        } else if (isInBlock) {
            reader.read(line, number);
        }
    }
    return rules;
}

Symbols symbolsOf(std::string_view rule) {
    Symbols symbols;
    for (std::size_t at = 0; at < rule.size(); ++at) {
        const char c = rule[at];
        if (c == '"' || c == '\'' || c == '?') {
            const std::string_view text = quotedAt(rule, at);
            if (c != '?') symbols.terminals.emplace(text);
            at += text.size() + 1;
        } else if (isNameByte(c) && c != '-') {
            const std::string_view name = nameAt(rule, at);
            symbols.names.emplace(name);
            at += name.size() - 1;
        }
    }
    return symbols;
}

struct Recogniser::Node {
    enum class Kind { Terminal, Name, Sequence, Choice, Except, Repeated, Optional };

    Kind kind = Kind::Sequence;
    std::string text;  // of a Terminal or a Name
    // What is in a sequence or between brackets, the alternatives, both sides of an exception, or
    // the argument of a Name.
    std::vector<Node> children;
};

// Reads the text of a rule: alternatives made of sequences made of pieces.
class Recogniser::Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    Node rule() {
        Node node = choice();
        if (at_ < text_.size()) fail();
        return node;
    }

private:
    Node choice() {
        Node node{Node::Kind::Choice, "", {}};
        do {
            node.children.push_back(sequence());
        } while (accept('|'));
        return node;
    }

    Node sequence() {
        Node node{Node::Kind::Sequence, "", {}};
        for (;;) {
            skipBlanks();
            if (at_ == text_.size() || std::string_view("|)]}").find(text_[at_]) != text_.npos) {
                return node;
            }
            Node next = piece();
            if (accept('-')) next = {Node::Kind::Except, "", {std::move(next), piece()}};
            node.children.push_back(std::move(next));
        }
    }

    Node piece() {
        if (accept('(')) return enclosed(Node::Kind::Sequence, ')');
        if (accept('[')) return enclosed(Node::Kind::Optional, ']');
        if (accept('{')) return enclosed(Node::Kind::Repeated, '}');
        if (text_[at_] == '"' || text_[at_] == '\'') {
            const std::string_view text = quotedAt(text_, at_);
            at_ += text.size() + 2;
            return {Node::Kind::Terminal, std::string(text), {}};
        }
        skipBlanks();
        const std::string_view name = nameAt(text_, at_);
        if (name.empty() || name[0] == '-') fail();
        at_ += name.size();
        Node node{Node::Kind::Name, std::string(name), {}};
        const bool hasArgument = at_ < text_.size() && text_[at_] == '(';
        if (hasArgument && accept('(')) {
            node.children.push_back(enclosed(Node::Kind::Sequence, ')'));
        }
        return node;
    }

    Node enclosed(Node::Kind kind, char close) {
        Node node{kind, "", {}};
        node.children.push_back(choice());
        if (!accept(close)) fail();
        return node;
    }

    void skipBlanks() {
        while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    }
    bool accept(char c) {
        skipBlanks();
        if (at_ == text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    [[noreturn]] void fail() const {
        throw std::runtime_error("no rule: " + std::string(text_) + ", at " + std::to_string(at_));
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

// One walk over some tokens. A match yields the place behind it.
class Recogniser::Match {
public:
    using Place = std::optional<std::size_t>;

    Match(const Recogniser& grammar, const std::vector<Token>& tokens)
        : grammar_(grammar), tokens_(tokens) {}

    bool isWhole(const std::string& rule) const {
        const Place end = named(rule, nullptr, 0);
        return end && tokens_[*end].kind == TokenKind::EndOfFile;
    }

private:
    // `item` is what stands for the parameter of the rule that is being followed.
    Place match(const Node& node, const Node* item, std::size_t at) const {
        switch (node.kind) {
            case Node::Kind::Terminal: return token(spellingOf(tokens_[at].kind) == node.text, at);
            case Node::Kind::Name:
                if (item && node.text == "item") return match(*item, nullptr, at);
                return named(node.text, node.children.empty() ? nullptr : &node.children[0], at);
            case Node::Kind::Sequence: {
                Place place = at;
                for (const Node& child : node.children) {
                    place = match(child, item, *place);
                    if (!place) break;
                }
                return place;
            }
            case Node::Kind::Choice:
                for (const Node& child : node.children) {
                    if (const Place place = match(child, item, at)) return place;
                }
                return {};
            case Node::Kind::Except:
                return match(node.children[1], item, at) ? Place()
                                                         : match(node.children[0], item, at);
            case Node::Kind::Optional: {
                const Place place = match(node.children[0], item, at);
                return place ? place : at;
            }
            case Node::Kind::Repeated:
                while (const Place place = match(node.children[0], item, at)) at = *place;
                return at;
        }
        return {};
    }

    Place named(const std::string& name, const Node* item, std::size_t at) const {
        const Token& here = tokens_[at];
        if (name == "name") return token(here.kind == TokenKind::Name, at);
        if (name == "number") return token(here.kind == TokenKind::Number, at);
        if (name == "string") return token(here.kind == TokenKind::String, at);
        if (name == "line-end") return token(here.kind == TokenKind::EndOfLine, at);
        if (name == "interpolated-string") {
            return token(here.kind == TokenKind::InterpString && embeddedIsCode(here), at);
        }
        return match(*grammar_.rules_.at(name), item, at);
    }

    static Place token(bool fits, std::size_t at) { return fits ? Place(at + 1) : Place(); }

    bool embeddedIsCode(const Token& string) const {
        for (const StringPart& part : string.parts()) {
            if (part.kind == StringPart::Kind::Expression &&
                !grammar_.accepts("interpolation", tokenize(part.text))) {
                return false;
            }
        }
        return true;
    }

    const Recogniser& grammar_;
    const std::vector<Token>& tokens_;
};

Recogniser::Recogniser(const Rules& rules) {
    for (const auto& [name, rule] : rules) {
        // What is said in words is about bytes, and the tokens have taken care of those.
        if (rule.text.find('?') != rule.text.npos) continue;
        rules_.emplace(name, std::make_unique<Node>(Reader(rule.text).rule()));
    }
}

Recogniser::~Recogniser() = default;

bool Recogniser::accepts(const std::string& rule, const std::vector<Token>& tokens) const {
    return Match(*this, tokens).isWhole(rule);
}

}  // namespace pellum::test
