#include "fuzz/mutator.h"

#include "builtins/builtins.h"
#include "lexer/token.h"

#include <algorithm>
#include <cctype>
#include <random>
#include <vector>

namespace pellum::fuzz {

namespace {

const std::vector<std::string>& vocabulary() {
    static const std::vector<std::string> words = [] {
        std::vector<std::string> all = {
            "x",
            "y",
            "f",
            "xs",
            "m",
            "i",
            "0",
            "1",
            "-1",
            "2",
            "0.5",
            "1e300",
            "4611686018427387904",
            "\"\"",
            "'a'",
            "\"${x}\"",
            "[]",
            "{}",
            "[1, 2, 3]",
            "{a: 1}",
            "PI",
            "\n",
            "9007199254740993",
            "log(-1)",
            "function(a) return a end",
            "if x then\nbreak\nend",
            "try\nx()\ncatch e\nprint(e)\nend",
            "for i = 1, 3 do\nxs += [i]\nend",
            "while x < 9 do\nx += 1\nend",
            "let y = x",
            "x = x + x",
            "xs = xs + xs",
            "s += s",
            "return x",
        };
        const auto add = [&](std::string_view word) {
            if (!word.empty()) all.emplace_back(word);
        };
#define PELLUM_ADD_SPELLING(name, spelling) add(spelling);
        PELLUM_TOKENS(PELLUM_ADD_SPELLING)
#undef PELLUM_ADD_SPELLING
        for (const Builtin& row : builtinCatalogue()) add(row.name);
        return all;
    }();
    return words;
}

// The text in pieces that make it up again: words, numbers, strings, blanks and single marks.
std::vector<std::string> piecesOf(std::string_view text) {
    const auto isWord = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    };
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        if (isWord(text[at])) {
            while (end < text.size() && isWord(text[end])) ++end;
        } else if (text[at] == '"' || text[at] == '\'') {
            while (end < text.size() && text[end] != text[at] && text[end] != '\n') ++end;
            end = std::min(end + 1, text.size());
        } else if (text[at] == ' ') {
            while (end < text.size() && text[end] == ' ') ++end;
        }
        pieces.emplace_back(text.substr(at, end - at));
        at = end;
    }
    return pieces;
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines.emplace_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

class Mutation {
public:
    explicit Mutation(std::uint32_t seed) : random_(seed) {}

    std::string of(std::string_view source) {
        std::vector<std::string> pieces = below(3) == 0 ? linesOf(source) : piecesOf(source);
        for (std::size_t left = 1 + below(3); left > 0; --left) change(pieces);
        std::string text;
        for (const std::string& piece : pieces) text += piece;
        return text;
    }

private:
    std::size_t below(std::size_t count) { return random_() % count; }

    void change(std::vector<std::string>& pieces) {
        if (pieces.empty()) {
            pieces.push_back(word());
            return;
        }
        const std::size_t from = below(pieces.size());
        const std::size_t to = below(pieces.size());
        const std::size_t length =
            std::min(1 + below(below(4) == 0 ? 30 : 4), pieces.size() - from);
        const auto place = [&](std::size_t index) {
            return pieces.begin() + static_cast<std::ptrdiff_t>(index);
        };
        switch (below(7)) {
            case 0: pieces.erase(place(from), place(from + length)); break;
            case 1: {
                const std::vector<std::string> copy(place(from), place(from + length));
                pieces.insert(place(to), copy.begin(), copy.end());
                break;
            }
            case 2: std::swap(pieces[from], pieces[to]); break;
            case 3: pieces[to] = pieces[from]; break;
            case 4: pieces[from] = word(); break;
            case 5: pieces.insert(place(from), " " + word() + " "); break;
            default: pieces.insert(place(from), word() + "\n"); break;
        }
    }

    const std::string& word() { return vocabulary()[below(vocabulary().size())]; }

    std::minstd_rand random_;
};

}  // namespace

std::string mutatedCode(std::string_view source, std::size_t limit, std::uint32_t seed) {
    std::string text = Mutation(seed).of(source);
    if (text.size() > limit) text.resize(limit);
    return text;
}

}  // namespace pellum::fuzz
