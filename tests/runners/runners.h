// The runners: each finds the tests of one kind in the repository and registers them.
#pragma once

namespace pellum::test {

void registerLanguageCases();     // tests/{lang,errors,limits,builtins,regression}/**/*.pellum
void registerExamples();          // examples/*.plm
void registerBenchmarks();        // bench/programs, bench/scaling
void registerTranscripts();       // tests/repl/*.transcript
void registerCommandLineCases();  // tests/cli/*.case
void registerListings();          // tests/listings/*.listing
void registerMarkdownPages();     // README.md, docs/*.md

}  // namespace pellum::test
