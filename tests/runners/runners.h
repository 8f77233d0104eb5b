// The runners: each finds the tests of one kind in the repository and registers them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace pellum::test {

void registerLanguageCases();     // tests/{lang,errors,limits,builtins,regression}/**/*.pellum
void registerExamples();          // examples/*.plm
void registerBenchmarks();        // bench/programs, bench/scaling
void registerTranscripts();       // tests/repl/*.transcript
void registerCommandLineCases();  // tests/cli/*.case
void registerListings();          // tests/listings/*.listing
void registerTerminalSessions();  // tests/terminal/**/*.session
void registerFormatCases();       // tests/format/*.pellum
void registerLintCases();         // tests/lint/**/*.pellum
void registerMarkdownPages();     // README.md, docs/*.md

// Registers a use of the command line, in the form of tests/cli, which stands in `file` at `line`.
void addCommandTests(const std::string& suite, const std::filesystem::path& file, std::size_t line,
                     const std::string& text);
// The same for a session at the prompt, in the form of tests/repl.
void addTranscriptTests(const std::string& suite, const std::filesystem::path& file,
                        std::size_t line, const std::string& text);

}  // namespace pellum::test
