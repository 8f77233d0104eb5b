// The programs that stand in the project's pages, so that no page promises what does not happen.
#include "runners/runners.h"

#include "support/files.h"
#include "support/markdown.h"
#include "support/playing.h"
#include "support/registration.h"
#include "support/text.h"
#include "unit/register_code.h"
#include "unit/tree_text.h"

#include "compiler/compiler.h"
#include "compiler/disassembler.h"
#include "lexer/lexer.h"
#include "parser/parser.h"

#include <gtest/gtest.h>

#include <cctype>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

// The program itself, which may have to be printed first.
std::string sourceOf(const MarkdownProgram& program) {
    if (!program.isWriter) return program.source;
    const Outcome written = playInProcess({"-c", program.source}, "");
    EXPECT_EQ(written.errors, "") << "the program that writes the program fails";
    return written.output;
}

void play(const fs::path& page, const MarkdownProgram& program, Engine engine) {
    const Outcome given = playInProcess(onEngine(engine, {"-c", sourceOf(program)}), program.input);
    const auto& wanted = engine == Engine::Tree ? program.treeOutput : program.vmOutput;
    const int line = static_cast<int>(program.line);
    const std::string all = given.output + given.errors;
    if (!wanted) {
        if (given.errors.empty() && given.status == 0) return;
        ADD_FAILURE_AT(page.c_str(), line) << "the program fails:\n" << given.errors;
    } else if (!wanted->matches(all)) {
        ADD_FAILURE_AT(page.c_str(), line)
            << firstDifference("what the program prints", wanted->text, all).value_or("")
            << "\nall of it:\n"
            << all.substr(0, 5000);
    } else if (given.status != (given.errors.empty() ? 0 : 1)) {
        ADD_FAILURE_AT(page.c_str(), line) << "exit status " << given.status;
    }
}

// What "pellum --tokens" says about the source.
std::string tokensOf(const std::string& source) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "source";
    writeFile(file, source);
    const Outcome given = playInProcess({"--tokens", file.string()}, "");
    return given.output + given.errors;
}

std::string syntaxOf(const std::string& source) { return treeText(parse(tokenize(source))); }

std::string listingOf(const std::string& source) {
    return disassemble(*compile(parse(tokenize(source))));
}

// The page breaks a tree wherever that reads well.
std::string inOneLine(const std::string& text) {
    std::string joined;
    for (const std::string& line : splitLines(text)) {
        const std::string_view words = trim(line);
        if (!joined.empty() && joined.back() != '{' && !words.starts_with('}')) joined += ' ';
        joined += words;
    }
    return joined;
}

// Registers a test that what `look` sees in the source is what the page shows.
void addView(const std::string& suite, const std::string& name, const fs::path& page,
             const MarkdownProgram& program, const std::string& shown,
             std::string (*look)(const std::string&)) {
    addTest(suite, name, page, [=] {
        const std::string given = look(program.source);
        if (const auto difference = firstDifference("the " + name, shown, given)) {
            ADD_FAILURE_AT(page.c_str(), static_cast<int>(program.line))
                << *difference << "\nall of it:\n"
                << given;
        }
    });
}

// The heading and number of a program or command as a name: "loop_variables_2".
std::string nameOf(std::string_view heading, std::size_t number) {
    std::string name;
    for (const char c : heading) {
        if (std::isalnum(static_cast<unsigned char>(c))) {
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        } else if (!name.empty() && name.back() != '_') {
            name += '_';
        }
    }
    if (!name.empty() && name.back() != '_') name += '_';
    return name + std::to_string(number);
}

void registerProgram(const fs::path& page, const MarkdownProgram& program) {
    const std::string suite = suiteName(page) + "/" + nameOf(program.heading, program.number);
    for (const Engine engine : bothEngines) {
        addTest(suite, engineName(engine), page, [=] { play(page, program, engine); });
    }
    if (program.tokens) addView(suite, "tokens", page, program, *program.tokens, tokensOf);
    if (program.syntax) {
        addView(suite, "syntax", page, program, inOneLine(*program.syntax), syntaxOf);
    }
    if (program.listing) addView(suite, "listing", page, program, *program.listing, listingOf);
    if (program.registers) {
        addView(suite, "registers", page, program, *program.registers, registerCodeOf);
    }
}

void registerPage(const fs::path& page) {
    std::vector<MarkdownSection> sections;
    try {
        sections = sectionsOf(readFile(page));
    } catch (const std::exception& error) {
        addTest(suiteName(page), "is_well_formed", page,
                [message = std::string(error.what())] { FAIL() << message; });
        return;
    }
    for (const MarkdownSection& section : sections) {
        for (const MarkdownProgram& program : section.programs) registerProgram(page, program);
        for (const MarkdownCommand& command : section.commands) {
            addCommandTests(suiteName(page) + "/" + nameOf(command.heading, command.number), page,
                            command.line, command.text);
        }
        for (const MarkdownCommand& session : section.transcripts) {
            addTranscriptTests(suiteName(page) + "/" + nameOf(session.heading, session.number),
                               page, session.line, session.text);
        }
    }
}

}  // namespace

void registerMarkdownPages() {
    for (const fs::path& page : markdownPages()) {
        if (mayRun(suiteName(page))) registerPage(page);
    }
}

}  // namespace pellum::test
