#include "driver/completion.h"

#include "interp/environment.h"
#include "lexer/lexer.h"
#include "value/map.h"

#include <algorithm>

namespace pellum {

namespace {

bool mayBeginName(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool mayBeInName(char c) noexcept { return mayBeginName(c) || (c >= '0' && c <= '9'); }

// Takes the name at the end of `text` off; none where there is not one.
std::string_view takeLastName(std::string_view& text) {
    std::size_t start = text.size();
    while (start > 0 && mayBeInName(text[start - 1])) --start;
    const std::string_view name = text.substr(start);
    if (!name.empty() && !mayBeginName(name.front())) return {};
    text = text.substr(0, start);
    return name;
}

std::vector<std::string_view> keywords() {
    std::vector<std::string_view> words;
    for (auto kind = static_cast<std::uint32_t>(TokenKind::Let);
         kind <= static_cast<std::uint32_t>(TokenKind::Catch); ++kind) {
        words.push_back(spellingOf(static_cast<TokenKind>(kind)));
    }
    return words;
}

bool isName(std::string_view text) {
    if (text.empty() || !mayBeginName(text.front())) return false;
    const auto words = keywords();
    return std::ranges::all_of(text, mayBeInName) && std::ranges::find(words, text) == words.end();
}

const Value* fieldOf(const Value& value, std::string_view name) {
    if (!value.isMap()) return nullptr;
    for (const MapData::Entry& entry : value.asMap().entries()) {
        if (entry.key.isString() && entry.key.asText() == name) return &entry.value;
    }
    return nullptr;
}

const Value* globalOf(const Environment& globals, std::string_view name) {
    const Value* found = nullptr;
    globals.forEach([&](std::string_view bound, const Value& value) {
        if (bound == name) found = &value;
    });
    return found;
}

// What the names and dots at the end of `path` lead to, or null.
const Value* valueAt(std::string_view path, const Environment& globals) {
    std::vector<std::string_view> names;
    for (;;) {
        const std::string_view name = takeLastName(path);
        if (name.empty()) return nullptr;
        names.push_back(name);
        if (!path.ends_with('.')) break;
        path.remove_suffix(1);
    }
    const Value* value = globalOf(globals, names.back());
    for (names.pop_back(); value && !names.empty(); names.pop_back()) {
        value = fieldOf(*value, names.back());
    }
    return value;
}

}  // namespace

std::string_view Completion::commonRest() const {
    if (candidates.empty()) return {};
    // They are sorted, so what the outermost two share is shared by all.
    const std::string& first = candidates.front();
    const std::string& last = candidates.back();
    const auto end = std::ranges::mismatch(first, last).in1;
    const auto common = static_cast<std::size_t>(end - first.begin());
    return std::string_view(first).substr(wordLength, common - std::min(common, wordLength));
}

Completion completionOf(std::string_view before, const Environment& globals) {
    Completion result;
    std::string_view rest = before;
    const std::string_view word = takeLastName(rest);
    result.wordLength = word.size();
    const auto offer = [&](std::string_view candidate) {
        if (candidate.starts_with(word)) result.candidates.emplace_back(candidate);
    };
    if (rest.ends_with('.')) {
        const Value* map = valueAt(rest.substr(0, rest.size() - 1), globals);
        if (!map || !map->isMap()) return result;
        for (const MapData::Entry& entry : map->asMap().entries()) {
            if (entry.key.isString() && isName(entry.key.asText())) offer(entry.key.asText());
        }
    } else if (rest.empty() || !mayBeInName(rest.back())) {
        for (const std::string_view keyword : keywords()) offer(keyword);
        globals.forEach([&](std::string_view name, const Value&) { offer(name); });
    }
    std::vector<std::string>& words = result.candidates;
    std::ranges::sort(words);
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return result;
}

}  // namespace pellum
