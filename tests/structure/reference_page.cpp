#include "structure/reference_page.h"

#include <algorithm>
#include <cctype>

namespace pellum::test {

namespace {

bool isLower(char c) { return c >= 'a' && c <= 'z'; }

// As the places that render the pages make anchors of headings.
std::string anchorOf(std::string_view heading) {
    std::string anchor;
    for (const char c : heading) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) || c == '_' || c == '-') {
            anchor += static_cast<char>(std::tolower(byte));
        } else if (c == ' ') {
            anchor += '-';
        }
    }
    return anchor;
}

// The length of a "<word>" at the front, or 0: "<=" is none.
std::size_t placeholderLength(std::string_view text) {
    if (!text.starts_with('<')) return 0;
    std::size_t end = 1;
    while (end < text.size() && isLower(text[end])) ++end;
    return end > 1 && end < text.size() && text[end] == '>' ? end + 1 : 0;
}

}  // namespace

std::vector<std::string> codeSpans(std::string_view prose) {
    std::vector<std::string> spans;
    std::size_t open = 0;
    while ((open = prose.find('`', open)) != prose.npos) {
        const std::size_t close = prose.find('`', open + 1);
        if (close == prose.npos) break;
        spans.emplace_back(prose.substr(open + 1, close - open - 1));
        open = close + 1;
    }
    return spans;
}

const MarkdownSection* sectionAt(const std::vector<MarkdownSection>& sections,
                                 std::string_view anchor) {
    const auto found = std::find_if(
        sections.begin(), sections.end(),
        [&](const MarkdownSection& section) { return anchorOf(section.heading) == anchor; });
    return found == sections.end() ? nullptr : &*found;
}

Arity arityOf(std::string_view signature) {
    Arity arity;
    bool isOptional = false;
    bool isUnlimited = false;
    bool isInName = false;
    for (std::size_t at = signature.find('(') + 1; at < signature.size(); ++at) {
        const char c = signature[at];
        const bool wasInName = isInName;
        isInName = isLower(c) || c == '_' || (wasInName && std::isdigit(c));
        if (c == '[') isOptional = true;
        if (signature.substr(at).starts_with("...")) isUnlimited = true;
        if (!isInName || wasInName) continue;
        ++arity.most;
        if (!isOptional) ++arity.least;
    }
    if (isUnlimited) arity.most = -1;
    return arity;
}

MessageTemplate::MessageTemplate(std::string_view text) : pieces_(1) {
    while (!text.empty()) {
        if (const std::size_t length = placeholderLength(text)) {
            pieces_.emplace_back();
            text.remove_prefix(length);
        } else {
            pieces_.back() += text.front();
            text.remove_prefix(1);
        }
    }
}

bool MessageTemplate::matches(std::string_view message) const {
    if (!message.starts_with(pieces_.front())) return false;
    if (pieces_.size() == 1) return message == pieces_.front();
    message.remove_prefix(pieces_.front().size());
    for (std::size_t i = 1; i + 1 < pieces_.size(); ++i) {
        const std::size_t found = message.find(pieces_[i]);
        if (found == message.npos) return false;
        message.remove_prefix(found + pieces_[i].size());
    }
    return message.ends_with(pieces_.back());
}

bool MessageTemplate::hasPiece(std::string_view piece) const {
    return std::any_of(pieces_.begin(), pieces_.end(),
                       [&](const std::string& own) { return own.find(piece) != own.npos; });
}

bool MessageTemplate::isAnything() const {
    return std::ranges::all_of(pieces_, &std::string::empty);
}

bool DocumentedMessage::isSaidBy(std::string_view line) const {
    if (kinds.empty()) return message.matches(line);
    return std::any_of(kinds.begin(), kinds.end(), [&](const std::string& kind) {
        return line.starts_with(kind + ": ") && message.matches(line.substr(kind.size() + 2));
    });
}

std::vector<DocumentedMessage> messagesOf(const std::vector<MarkdownSection>& sections) {
    std::vector<DocumentedMessage> messages;
    for (const MarkdownSection& section : sections) {
        const std::string_view heading = section.heading;
        if (!heading.starts_with('`') || !heading.ends_with('`')) continue;
        DocumentedMessage& entry = messages.emplace_back(DocumentedMessage{
            MessageTemplate(heading.substr(1, heading.size() - 2)), {}, &section});
        // The kinds stand in the first sentence.
        const std::string_view prose = section.prose;
        for (const std::string& span : codeSpans(prose.substr(0, prose.find(". ")))) {
            if (span.ends_with("Error") || span == "SyntaxError (lexing)") {
                entry.kinds.push_back(span);
            }
        }
    }
    return messages;
}

}  // namespace pellum::test
