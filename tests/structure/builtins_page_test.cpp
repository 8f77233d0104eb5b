// docs/builtins.md and the catalogue of the library say the same.
#include "structure/reference_page.h"
#include "support/files.h"
#include "support/text.h"

#include "builtins/builtins.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace pellum::test {

namespace {

constexpr const char* page = "docs/builtins.md";

class BuiltinsPage : public testing::Test {
protected:
    // The entry of a builtin, or null.
    const MarkdownSection* entryOf(std::string_view name) const {
        const auto found =
            std::find_if(sections_.begin(), sections_.end(), [&](const MarkdownSection& section) {
                return section.level == 3 && section.heading == name;
            });
        return found == sections_.end() ? nullptr : &*found;
    }

    const std::vector<MarkdownSection> sections_ = sectionsOf(readFile(page));
};

// The signatures of an entry are the code in its first line. Several of them stand for the whole
// span that they allow.
Arity documentedArity(const MarkdownSection& entry) {
    const std::string_view prose = trim(entry.prose);
    const std::vector<std::string> signatures = codeSpans(prose.substr(0, prose.find('\n')));
    Arity whole{1000, 0};
    for (const std::string& signature : signatures) {
        EXPECT_TRUE(signature.starts_with(entry.heading + "(") && signature.ends_with(')'))
            << page << ":" << entry.line << ": no signature: " << signature;
        const Arity arity = arityOf(signature);
        whole.least = std::min(whole.least, arity.least);
        whole.most = arity.most < 0 ? -1 : std::max(whole.most, arity.most);
    }
    return whole;
}

// The complaints listed in an entry: the first code of each point.
std::vector<std::string> complaintsOf(const MarkdownSection& entry) {
    std::vector<std::string> complaints;
    for (const std::string& line : splitLines(entry.prose)) {
        if (line.starts_with("- `")) complaints.push_back(codeSpans(line).front());
    }
    return complaints;
}

TEST(Signatures, SayHowManyArgumentsThereMayBe) {
    const auto expectArity = [](std::string_view signature, int least, int most) {
        EXPECT_EQ(arityOf(signature).least, least) << signature;
        EXPECT_EQ(arityOf(signature).most, most) << signature;
    };
    expectArity("clock()", 0, 0);
    expectArity("len(x)", 1, 1);
    expectArity("slice(x[, start[, end]])", 1, 3);
    expectArity("error([v])", 0, 1);
    expectArity("print(...)", 0, -1);
    expectArity("max(first, ...)", 1, -1);
}

TEST_F(BuiltinsPage, HasEveryBuiltinWithItsSignature) {
    for (const Builtin& builtin : builtinCatalogue()) {
        const MarkdownSection* entry = entryOf(builtin.name);
        ASSERT_TRUE(entry) << page << " has no entry \"### " << builtin.name << "\"";
        const Arity arity = documentedArity(*entry);
        EXPECT_EQ(arity.least, builtin.minArity) << page << ":" << entry->line;
        EXPECT_EQ(arity.most, builtin.maxArity) << page << ":" << entry->line;
    }
}

TEST_F(BuiltinsPage, HasNothingElse) {
    std::set<std::string> names = {"Constants"};
    for (const Builtin& builtin : builtinCatalogue()) names.insert(builtin.name);
    for (const MarkdownSection& section : sections_) {
        if (section.level != 3) continue;
        EXPECT_EQ(names.erase(section.heading), 1U)
            << page << ":" << section.line << ": no builtin, or for the second time";
    }
}

TEST_F(BuiltinsPage, ShowsEveryBuiltinInAProgram) {
    for (const Builtin& builtin : builtinCatalogue()) {
        const MarkdownSection* entry = entryOf(builtin.name);
        ASSERT_TRUE(entry) << builtin.name;
        const auto isShown = [&](const MarkdownProgram& program) {
            return program.source.find(builtin.name) != std::string::npos && program.vmOutput &&
                   !program.vmOutput->text.empty();
        };
        EXPECT_TRUE(std::any_of(entry->programs.begin(), entry->programs.end(), isShown))
            << page << ":" << entry->line << ": no program with its output";
    }
}

TEST_F(BuiltinsPage, LinksToTheCostOfEveryBuiltin) {
    const std::vector<MarkdownSection> costs = sectionsOf(readFile("docs/costs.md"));
    constexpr std::string_view link = "](costs.md#";
    for (const Builtin& builtin : builtinCatalogue()) {
        const MarkdownSection* entry = entryOf(builtin.name);
        ASSERT_TRUE(entry) << builtin.name;
        const std::size_t start = entry->prose.find(link);
        ASSERT_NE(start, std::string::npos) << page << ":" << entry->line << ": no cost";
        const std::size_t end = entry->prose.find(')', start);
        const std::string anchor =
            entry->prose.substr(start + link.size(), end - start - link.size());
        const MarkdownSection* target = sectionAt(costs, anchor);
        ASSERT_TRUE(target) << page << ":" << entry->line << ": docs/costs.md has no #" << anchor;
        EXPECT_NE(target->prose.find("`" + std::string(builtin.name) + "`"), std::string::npos)
            << "docs/costs.md, " << target->heading << ": nothing about " << builtin.name;
    }
}

TEST_F(BuiltinsPage, BeginsWithAnIndexInAlphabeticalOrder) {
    std::set<std::string> names;
    for (const Builtin& builtin : builtinCatalogue()) names.insert(builtin.name);
    std::string index;
    for (const std::string& name : names) {
        index += "[" + name + "](#" + name + ")" + (name == *names.rbegin() ? "." : ", ");
    }
    ASSERT_GE(sections_.size(), 2U);
    std::string opening = sections_[1].prose;
    std::replace(opening.begin(), opening.end(), '\n', ' ');
    EXPECT_NE(opening.find(index), opening.npos) << "wanted: " << index;
}

TEST_F(BuiltinsPage, AndThePageOfMessagesNameTheSameErrors) {
    const std::vector<MarkdownSection> messagePage = sectionsOf(readFile("docs/errors.md"));
    const std::vector<DocumentedMessage> messages = messagesOf(messagePage);
    std::set<std::string> named;
    for (const MarkdownSection& entry : sections_) {
        if (entry.level != 3) continue;
        for (const std::string& complaint : complaintsOf(entry)) {
            named.insert(complaint);
            EXPECT_TRUE(std::any_of(messages.begin(), messages.end(),
                                    [&](const DocumentedMessage& known) {
                                        return !known.message.isAnything() &&
                                               known.message.matches(complaint);
                                    }) ||
                        complaint.find(": ") == complaint.npos)
                << page << ":" << entry.line << ": docs/errors.md has no " << complaint;
        }
    }
    // The other way around: what a builtin complains about stands in its entry.
    for (const DocumentedMessage& known : messages) {
        const std::string text = codeSpans(known.section->heading).front();
        const std::size_t colon = text.find(": ");
        if (colon == text.npos || !entryOf(text.substr(0, colon))) continue;
        EXPECT_TRUE(named.contains(text))
            << "docs/errors.md:" << known.section->line << ": not in " << page;
    }
}

}  // namespace

}  // namespace pellum::test
