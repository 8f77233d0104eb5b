// Listings: a program above a line of dashes, its disassembly below, compared whole.
#include "runners/runners.h"

#include "support/files.h"
#include "support/registration.h"
#include "support/text.h"

#include "compiler/compiler.h"
#include "compiler/disassembler.h"
#include "lexer/lexer.h"
#include "parser/parser.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

constexpr std::string_view separator = "\n----\n";

void play(const fs::path& path) {
    const std::string text = readFile(path);
    const std::size_t end = text.find(separator);
    ASSERT_NE(end, text.npos) << path << " has no line \"----\" between program and listing";
    const std::string source = text.substr(0, end + 1);
    const std::string given = disassemble(*compile(parse(tokenize(source))));
    if (updatesExpectations())
        return writeFile(path, text.substr(0, end) + std::string(separator) + given);
    if (const auto difference =
            firstDifference("the listing", text.substr(end + separator.size()), given)) {
        ADD_FAILURE_AT(path.c_str(), 1) << *difference << "\nall of it:\n" << given;
    }
}

}  // namespace

void registerListings() {
    if (!mayRun("listings/")) return;
    for (const fs::path& path : filesUnder("tests/listings", ".listing")) {
        addTest(suiteName(path), "listing", path, [=] { play(path); });
    }
}

}  // namespace pellum::test
