// The programs that stand in the project's pages, so that no page promises what does not happen.
#include "runners/runners.h"

#include "support/files.h"
#include "support/markdown.h"
#include "support/playing.h"
#include "support/registration.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <cctype>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

void play(const fs::path& page, const MarkdownProgram& program, Engine engine) {
    const Outcome given = playInProcess(onEngine(engine, {"-c", program.source}), program.input);
    const auto& wanted = engine == Engine::Tree ? program.treeOutput : program.vmOutput;
    const int line = static_cast<int>(program.line);
    if (!wanted) {
        if (given.errors.empty() && given.status == 0) return;
        ADD_FAILURE_AT(page.c_str(), line) << "the program fails:\n" << given.errors;
    } else if (const auto difference = firstDifference("what the program prints", *wanted,
                                                       given.output + given.errors)) {
        ADD_FAILURE_AT(page.c_str(), line) << *difference << "\nall of it:\n"
                                           << given.output << given.errors;
    } else if (given.status != (given.errors.empty() ? 0 : 1)) {
        ADD_FAILURE_AT(page.c_str(), line) << "exit status " << given.status;
    }
}

// The heading and number of the program as a name: "loop_variables_2".
std::string nameOf(const MarkdownProgram& program) {
    std::string name;
    for (const char c : program.heading) {
        if (std::isalnum(static_cast<unsigned char>(c))) {
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        } else if (!name.empty() && name.back() != '_') {
            name += '_';
        }
    }
    if (!name.empty() && name.back() != '_') name += '_';
    return name + std::to_string(program.number);
}

void registerPage(const fs::path& page) {
    std::vector<MarkdownProgram> programs;
    try {
        programs = programsOf(readFile(page));
    } catch (const std::exception& error) {
        addTest(suiteName(page), "is_well_formed", page,
                [message = std::string(error.what())] { FAIL() << message; });
        return;
    }
    for (const MarkdownProgram& program : programs) {
        for (const Engine engine : bothEngines) {
            addTest(suiteName(page) + "/" + nameOf(program), engineName(engine), page,
                    [=] { play(page, program, engine); });
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
