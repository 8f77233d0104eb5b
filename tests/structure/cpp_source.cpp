#include "structure/cpp_source.h"

#include "support/text.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace pellum::test {

namespace {

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Escapes that no message is written with stay as they are.
std::string decode(std::string_view literal) {
    try {
        return unescape(literal);
    } catch (const std::runtime_error&) {
        return std::string(literal);
    }
}

class LiteralScanner {
public:
    explicit LiteralScanner(std::string_view source) : rest_(source) {}

    std::vector<CppLiteral> scan() {
        while (!rest_.empty()) step();
        return std::move(literals_);
    }

private:
    void step() {
        const char c = rest_.front();
        if (rest_.starts_with("//") || rest_.starts_with("#include")) {
            take(std::min(rest_.find('\n'), rest_.size()));
        } else if (rest_.starts_with("/*")) {
            take(std::min(rest_.find("*/", 2), rest_.size() - 2) + 2);
        } else if (rest_.starts_with("R\"")) {
            rawString();
        } else if (c == '"') {
            const std::size_t line = line_;
            const std::string_view literal = take(quotedLength('"'));
            addLiteral(line, decode(literal.substr(1, literal.size() - 2)));
        } else if (c == '\'') {
            take(quotedLength('\''));
            isAfterLiteral_ = false;
        } else if (isWordCharacter(c)) {
            // A quote inside a number separates its digits.
            const bool isNumber = std::isdigit(static_cast<unsigned char>(c));
            take(static_cast<std::size_t>(std::find_if_not(rest_.begin(), rest_.end(),
                                                           [&](char d) {
                                                               return isWordCharacter(d) ||
                                                                      (isNumber && d == '\'');
                                                           }) -
                                          rest_.begin()));
            isAfterLiteral_ = false;
        } else {
            if (!std::isspace(static_cast<unsigned char>(c)) && c != '\\') isAfterLiteral_ = false;
            take(1);
        }
    }

    std::string_view take(std::size_t length) {
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(taken.size());
        line_ += static_cast<std::size_t>(std::count(taken.begin(), taken.end(), '\n'));
        return taken;
    }

    // Of the literal at the front, with both quotes.
    std::size_t quotedLength(char quote) const {
        std::size_t at = 1;
        while (at < rest_.size() && rest_[at] != quote) at += rest_[at] == '\\' ? 2 : 1;
        return std::min(at + 1, rest_.size());
    }

    void rawString() {
        const std::size_t line = line_, open = rest_.find('(');
        const std::string end = ")" + std::string(rest_.substr(2, open - 2)) + "\"";
        const std::size_t close = std::min(rest_.find(end, open), rest_.size());
        addLiteral(line, std::string(rest_.substr(open + 1, close - open - 1)));
        take(close + end.size());
    }

    void addLiteral(std::size_t line, std::string text) {
        if (isAfterLiteral_) {
            literals_.back().text += text;
        } else {
            literals_.push_back({std::move(text), line});
        }
        isAfterLiteral_ = true;
    }

    std::string_view rest_;
    std::size_t line_ = 1;
    bool isAfterLiteral_ = false;
    std::vector<CppLiteral> literals_;
};

}  // namespace

std::vector<CppLiteral> stringLiterals(std::string_view source) {
    return LiteralScanner(source).scan();
}

std::vector<CppInclude> quotedIncludes(std::string_view source) {
    constexpr std::string_view opening = "#include \"";
    std::vector<CppInclude> includes;
    std::size_t number = 0;
    for (const std::string& line : splitLines(source)) {
        ++number;
        if (!line.starts_with(opening)) continue;
        const std::size_t end = line.find('"', opening.size());
        includes.push_back({line.substr(opening.size(), end - opening.size()), number});
    }
    return includes;
}

}  // namespace pellum::test
