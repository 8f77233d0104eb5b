// What the checks of the reference pages read in them: code spans, signatures, and messages with
// places where something is filled in.
#pragma once

#include "support/markdown.h"

#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// The texts between backquotes, in order.
std::vector<std::string> codeSpans(std::string_view prose);

// The section that a link to "#anchor" leads to, or null.
const MarkdownSection* sectionAt(const std::vector<MarkdownSection>& sections,
                                 std::string_view anchor);

// How many arguments a signature such as "slice(x[, start[, end]])" allows.
struct Arity {
    int least = 0;
    int most = 0;  // -1: "..." stands for any number
};
Arity arityOf(std::string_view signature);

// A message in which words in angle brackets stand for what is filled in, such as
// "cannot add <type> and <type>".
class MessageTemplate {
public:
    explicit MessageTemplate(std::string_view text);

    // What is filled in may be empty.
    bool matches(std::string_view message) const;
    // Whether one of the texts around what is filled in contains `piece`.
    bool hasPiece(std::string_view piece) const;
    // Whether everything is filled in.
    bool isAnything() const;

private:
    std::vector<std::string> pieces_;  // at least one; between two of them something is filled in
};

// An entry of docs/errors.md.
struct DocumentedMessage {
    MessageTemplate message;
    std::vector<std::string> kinds;  // empty: the message is a whole line
    const MarkdownSection* section;

    // Whether `line` is what the program says, with one of the kinds in front.
    bool isSaidBy(std::string_view line) const;
};

// The entries stand under headings in backquotes. The views last as long as the sections.
std::vector<DocumentedMessage> messagesOf(const std::vector<MarkdownSection>& sections);

}  // namespace pellum::test
