// docs/errors.md has every message that the program can utter, and shows each.
#include "structure/cpp_source.h"
#include "structure/reference_page.h"
#include "support/command_case.h"
#include "support/expectations.h"
#include "support/files.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace pellum::test {

namespace {

constexpr const char* page = "docs/errors.md";

class ErrorsPage : public testing::Test {
protected:
    bool hasPiece(std::string_view piece) const {
        return std::any_of(messages_.begin(), messages_.end(), [&](const DocumentedMessage& known) {
            return known.message.hasPiece(piece);
        });
    }

    // Whether an entry stands for this line. Entries in which everything is filled in stand for
    // every line and so say nothing.
    bool has(std::string_view line) const {
        return std::any_of(messages_.begin(), messages_.end(), [&](const DocumentedMessage& known) {
            return !known.message.isAnything() && known.isSaidBy(line);
        });
    }

    const std::vector<MarkdownSection> sections_ = sectionsOf(readFile(page));
    const std::vector<DocumentedMessage> messages_ = messagesOf(sections_);
};

// Texts in the sources that the program writes and that complain about nothing.
struct Exemption {
    std::string_view file;
    std::string_view text;  // empty: everything in the file
    std::string_view reason;
};

constexpr Exemption exemptions[] = {
    {"src/embed/engine.cpp", "", "said to hosts; docs/embedding.md"},
    {"src/embed/home.cpp", "", "the same"},
    {"src/embed/value.cpp", "", "the same"},
    {"src/compiler/opcodes.h", "", "pictures of the stack, for readers"},
    {"src/compiler/disassembler.cpp", "", "listings"},
    {"src/vm/register_listing.cpp", "", "listings"},
    {"src/driver/bench.cpp", "tree-walker: ", "the report of the benchmark"},
    {"src/driver/bench.cpp", " ms/run", "the report of the benchmark"},
    {"src/driver/bench.cpp", "bytecode VM: ", "the report of the benchmark"},
    {"src/driver/bench.cpp", "speedup:     ", "the report of the benchmark"},
    {"src/driver/errors/errors.h", "SyntaxError (lexing)", "a kind"},
    {"src/driver/repl.cpp", "  --  type Ctrl-D (or 'exit') to quit", "the greeting"},
    {"src/value/format.cpp", "<native function ", "how a function is shown"},
    {"src/value/format.cpp", "<function ", "how a function is shown"},
    {"src/value/string.cpp", "string too long", "whoever makes the string names itself instead"},
    {"src/lexer/lexer.cpp", "end of line", "what was found, in the messages of the parser"},
    {"src/lexer/lexer.cpp", "end of file", "what was found, in the messages of the parser"},
};

// Whether a literal is prose rather than a keyword, a name or punctuation.
bool looksLikeMessage(std::string_view text) {
    const auto bothLower = [](char a, char b) {
        return a >= 'a' && a <= 'z' && b >= 'a' && b <= 'z';
    };
    return text.find(' ') != text.npos &&
           std::adjacent_find(text.begin(), text.end(), bothLower) != text.end();
}

bool isUsage(std::string_view line) {
    return line.starts_with("pellum  ") || line.starts_with("pellum -") ||
           line.starts_with("pellum <");
}

TEST(MessageTemplates, AreFilledIn) {
    const MessageTemplate sum("cannot add <type> and <type>");
    EXPECT_TRUE(sum.matches("cannot add string and number"));
    EXPECT_TRUE(sum.matches("cannot add string and "));
    EXPECT_FALSE(sum.matches("we cannot add string and number"));
    EXPECT_FALSE(sum.matches("cannot add string"));
    EXPECT_TRUE(sum.hasPiece(" and "));
    EXPECT_FALSE(sum.hasPiece("type"));
    const MessageTemplate plain("low must be <= high");
    EXPECT_TRUE(plain.matches("low must be <= high"));
    EXPECT_FALSE(plain.matches("low must be <= high!"));
    EXPECT_TRUE(MessageTemplate("<value>").isAnything());
    EXPECT_FALSE(sum.isAnything());
}

TEST_F(ErrorsPage, HasEveryTextOfTheSources) {
    std::set<const Exemption*> unused;
    for (const Exemption& exemption : exemptions) unused.insert(&exemption);
    for (const auto& file : filesUnder("src", "")) {
        for (const CppLiteral& literal : stringLiterals(readFile(file))) {
            for (const std::string& text : splitLines(literal.text)) {
                if (!looksLikeMessage(text) || isUsage(text) || hasPiece(text)) continue;
                const auto found = std::find_if(
                    std::begin(exemptions), std::end(exemptions), [&](const Exemption& exemption) {
                        return exemption.file == file.generic_string() &&
                               (exemption.text.empty() || exemption.text == text);
                    });
                if (found != std::end(exemptions)) {
                    unused.erase(found);
                    continue;
                }
                ADD_FAILURE_AT(file.c_str(), static_cast<int>(literal.line))
                    << page << " has no entry with " << visible(text);
            }
        }
    }
    for (const Exemption* exemption : unused) {
        ADD_FAILURE() << "an exemption that nothing needs: " << exemption->file << " "
                      << visible(exemption->text);
    }
}

// Messages are put together of pieces, so the pieces alone do not tell whether a whole one is
// there.
TEST_F(ErrorsPage, HasEveryMessageThatTheCasesExpect) {
    for (const char* folder :
         {"tests/lang", "tests/errors", "tests/limits", "tests/builtins", "tests/regression"}) {
        for (const auto& file : filesUnder(folder, ".pellum")) {
            const std::string source = readFile(file);
            const Expectations expectations = expectationsOf(source);
            for (const Engine engine : bothEngines) {
                const auto& error = expectations.on(engine).error;
                if (!error || error->kind == "Error") continue;
                // What an assertion says is up to the program.
                if (source.find("assert") != source.npos && error->kind == "RuntimeError") continue;
                const std::string line = error->kind + ": " + error->message;
                EXPECT_TRUE(has(line)) << file << ":" << error->commentLine << ": " << line;
            }
        }
    }
}

TEST_F(ErrorsPage, HasEveryMessageThatTheTranscriptsShow) {
    constexpr std::string_view mark = "! ";
    const std::string_view beginnings[] = {
        "SyntaxError: ", "SyntaxError (lexing): ", "RuntimeError: ", "pellum: "};
    for (const auto& file : filesUnder("tests/repl", ".transcript")) {
        const std::string transcript = readFile(file);
        if (transcript.find("assert") != transcript.npos) continue;
        for (const std::string& line : splitLines(transcript)) {
            if (!line.starts_with(mark)) continue;
            const std::string said = line.substr(mark.size());
            if (std::ranges::none_of(beginnings, [&](std::string_view beginning) {
                    return said.starts_with(beginning);
                })) {
                continue;
            }
            EXPECT_TRUE(has(said)) << file << ": " << said;
        }
    }
}

TEST_F(ErrorsPage, HasEveryComplaintAboutTheCommandLine) {
    for (const auto& file : filesUnder("tests/cli", ".case")) {
        const CommandCase commandCase = parseCommandCase(readFile(file));
        const std::vector<std::string> lines = splitLines(commandCase.errors.text);
        for (const std::string& line : lines) {
            if (!line.starts_with("pellum: ") && !line.starts_with("bench: ")) continue;
            EXPECT_TRUE(has(line)) << file << ": " << line;
        }
    }
}

// Whether a test is there: by the path of its file, or by its name.
bool isTest(const std::string& name) {
    if (name.starts_with("tests/")) return std::filesystem::exists(name);
    const std::size_t point = name.find('.');
    if (point == name.npos) return false;
    const std::string definition =
        "(" + name.substr(0, point) + ", " + name.substr(point + 1) + ")";
    for (const auto& file : filesUnder("tests", ".cpp")) {
        if (readFile(file).find(definition) != std::string::npos) return true;
    }
    return false;
}

// Everything that the programs and commands of a section print.
std::vector<std::string> shownLines(const MarkdownSection& section) {
    std::vector<std::string> lines;
    const auto take = [&](std::string_view text) {
        for (std::string& line : splitLines(text)) lines.push_back(std::move(line));
    };
    for (const MarkdownProgram& program : section.programs) {
        if (program.treeOutput) take(program.treeOutput->text);
        if (program.vmOutput) take(program.vmOutput->text);
    }
    for (const MarkdownCommand& command : section.commands) {
        take(parseCommandCase(command.text).errors.text);
    }
    return lines;
}

TEST_F(ErrorsPage, ShowsEachMessage) {
    constexpr std::string_view elsewhere = "Shown by: ";
    for (const DocumentedMessage& known : messages_) {
        const MarkdownSection& section = *known.section;
        const std::vector<std::string> lines = shownLines(section);
        const std::size_t tests = section.prose.find(elsewhere);
        if (tests != section.prose.npos) {
            const std::vector<std::string> names = codeSpans(section.prose.substr(tests));
            EXPECT_FALSE(names.empty()) << page << ":" << section.line;
            for (const std::string& name : names) {
                EXPECT_TRUE(isTest(name)) << page << ":" << section.line << ": no test " << name;
            }
            continue;
        }
        EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                                [&](const std::string& line) { return known.isSaidBy(line); }))
            << page << ":" << section.line << ": nothing shows " << section.heading;
        // Each kind that an entry names is shown as well.
        for (const std::string& kind : known.kinds) {
            EXPECT_TRUE(
                std::any_of(lines.begin(), lines.end(),
                            [&](const std::string& line) { return line.starts_with(kind + ": "); }))
                << page << ":" << section.line << ": nothing shows a " << kind;
        }
    }
}

}  // namespace

}  // namespace pellum::test
