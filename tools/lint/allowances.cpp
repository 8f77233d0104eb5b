#include "lint/allowances.h"

#include <algorithm>
#include <utility>

namespace pellum::lint {

namespace {

using tools::Comment;
using tools::LexedSource;

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view separators = " \t\r,";

struct Allowance {
    Position at;         // of the comment
    std::uint32_t line;  // that it speaks of
    Rule rule;
    bool isUsed = false;
};

// The word that `text` begins with, which is taken off together with the separators around it.
std::string_view takeWord(std::string_view& text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(separators));
    text.remove_prefix(word.size());
    return word;
}

class AllowanceReader {
public:
    AllowanceReader(const LexedSource& source, Findings& complaints)
        : source_(source), complaints_(complaints) {}

    std::vector<Allowance> read() {
        for (const Comment& comment : source_.comments) readComment(comment);
        return std::move(allowances_);
    }

private:
    void readComment(const Comment& comment) {
        std::string_view text = comment.text.substr(1);
        text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
        constexpr std::string_view mark = "lint:";
        if (!text.starts_with(mark)) return;
        text.remove_prefix(mark.size());
        if (takeWord(text) != "allow") {
            return complain(comment, "a comment to the linter is \"# lint: allow RULE\"");
        }
        text = text.substr(0, text.find(':'));
        std::string_view word = takeWord(text);
        if (word.empty()) return complain(comment, "which rule is allowed?");
        for (; !word.empty(); word = takeWord(text)) {
            if (const auto rule = ruleNamed(word)) {
                allowances_.push_back(
                    {{comment.line, comment.column}, lineMeantBy(comment), *rule});
            } else {
                complain(comment, "there is no rule \"" + std::string(word) + "\"");
            }
        }
    }

    void complain(const Comment& comment, std::string text) {
        complaints_.push_back({{comment.line, comment.column}, Rule::BadAllow, std::move(text)});
    }

    // Comments come in order, so the code behind one is not looked for twice.
    std::uint32_t lineMeantBy(const Comment& comment) {
        if (!comment.isAlone) return comment.line;
        next_ = std::max(next_, comment.nextToken);
        while (source_.tokens[next_].kind == TokenKind::EndOfLine) ++next_;
        const Token& next = source_.tokens[next_];
        return next.kind == TokenKind::EndOfFile ? 0 : next.line;
    }

    const LexedSource& source_;
    Findings& complaints_;
    std::vector<Allowance> allowances_;
    std::size_t next_ = 0;  // the token behind the latest comment that stood alone
};

using Subject = std::pair<std::uint32_t, Rule>;

Subject subjectOf(const Allowance& allowance) noexcept { return {allowance.line, allowance.rule}; }

// REQUIRES: the allowances are sorted by subject. Of several with the same, the first is used.
bool isAllowed(const Finding& finding, std::vector<Allowance>& allowances) {
    const Subject subject(finding.at.line, finding.rule);
    const auto found = std::ranges::lower_bound(allowances, subject, {}, subjectOf);
    if (found == allowances.end() || subjectOf(*found) != subject) return false;
    return found->isUsed = true;
}

}  // namespace

void applyAllowances(const LexedSource& source, Findings& findings) {
    Findings complaints;
    std::vector<Allowance> allowances = AllowanceReader(source, complaints).read();
    std::ranges::stable_sort(allowances, {}, subjectOf);
    std::erase_if(findings, [&](const Finding& finding) { return isAllowed(finding, allowances); });
    for (const Allowance& allowance : allowances) {
        if (allowance.isUsed) continue;
        complaints.push_back(
            {allowance.at, Rule::UselessAllow,
             "there is no " + std::string(nameOf(allowance.rule)) + " here to allow"});
    }
    std::ranges::move(complaints, std::back_inserter(findings));
}

}  // namespace pellum::lint
