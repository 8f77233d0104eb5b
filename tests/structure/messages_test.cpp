// Every message that the program can utter is produced by a test: each piece of text in the sources
// occurs in something that a test compares with what the program says.
#include "structure/cpp_source.h"
#include "support/comments.h"
#include "support/files.h"
#include "support/markdown.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

namespace pellum::test {

namespace {

// Texts in the sources that look like messages and are none.
struct Exemption {
    std::string_view file;
    std::string_view text;  // empty: everything in the file
    std::string_view reason;
};

constexpr Exemption exemptions[] = {
    {"src/compiler/opcodes.h", "", "pictures of the stack, for readers"},
};

bool covers(const Exemption& exemption, std::string_view file, std::string_view text) {
    return exemption.file == file && (exemption.text.empty() || exemption.text == text);
}

// Whether a literal is prose rather than a keyword, a name or punctuation.
bool looksLikeMessage(std::string_view text) {
    const auto isLower = [](char c) { return c >= 'a' && c <= 'z'; };
    const auto bothLower = [&](char a, char b) { return isLower(a) && isLower(b); };
    return text.find(' ') != text.npos &&
           std::adjacent_find(text.begin(), text.end(), bothLower) != text.end();
}

// Everything that tests compare with what the program says.
std::string expectedTexts() {
    std::string texts;
    for (const auto& file : filesUnder("tests", ".pellum")) {
        const std::string source = readFile(file);
        for (const Comment& comment : commentsOf(source)) {
            if (comment.text.find("expect") == comment.text.npos) continue;
            texts += std::string(comment.text) + "\n";
        }
    }
    for (const char* extension : {".transcript", ".case", ".listing", ".session"}) {
        for (const auto& file : filesUnder("tests", extension)) texts += readFile(file) + "\n";
    }
    for (const auto& page : markdownPages()) {
        for (const MarkdownSection& section : sectionsOf(readFile(page))) {
            for (const MarkdownProgram& program : section.programs) {
                for (const auto& output : {program.treeOutput, program.vmOutput}) {
                    if (output) texts += output->text + "\n";
                }
            }
            for (const MarkdownCommand& command : section.commands) texts += command.text + "\n";
        }
    }
    for (const char* folder : {"tests/unit", "tests/allocation", "tests/embed"}) {
        for (const auto& file : filesUnder(folder, ".cpp")) {
            for (const CppLiteral& literal : stringLiterals(readFile(file))) {
                texts += literal.text + "\n";
            }
        }
    }
    return texts;
}

TEST(Structure, EveryMessageIsProducedByATest) {
    const std::string texts = expectedTexts();
    std::set<const Exemption*> unused;
    for (const Exemption& exemption : exemptions) unused.insert(&exemption);

    const auto isCovered = [&](std::string_view file, std::string_view text) {
        const auto found =
            std::find_if(std::begin(exemptions), std::end(exemptions),
                         [&](const Exemption& exemption) { return covers(exemption, file, text); });
        if (found == std::end(exemptions)) return false;
        unused.erase(found);
        return true;
    };
    for (const auto& file : filesUnder("src", "")) {
        for (const CppLiteral& literal : stringLiterals(readFile(file))) {
            for (const std::string& message : splitLines(literal.text)) {
                if (!looksLikeMessage(message) || texts.find(message) != texts.npos) continue;
                if (isCovered(file.generic_string(), message)) continue;
                ADD_FAILURE_AT(file.c_str(), static_cast<int>(literal.line))
                    << "no test produces the message " << visible(message);
            }
        }
    }
    for (const Exemption* exemption : unused) {
        ADD_FAILURE() << "an exemption that nothing needs: " << exemption->file << " "
                      << visible(exemption->text);
    }
}

}  // namespace

}  // namespace pellum::test
