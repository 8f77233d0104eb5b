// docs/bytecode.md and the list of instructions say the same.
#include "structure/reference_page.h"
#include "support/files.h"
#include "support/text.h"

#include "compiler/opcodes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace pellum::test {

namespace {

constexpr const char* page = "docs/bytecode.md";

const char* operandText(Operand operand) {
    switch (operand) {
        case Operand::None: return "";
        case Operand::U8: return "8 bits";
        case Operand::U16: return "16 bits";
        case Operand::Constant: return "16 bits, a constant";
        case Operand::Jump: return "16 bits, bytes forward";
        case Operand::Loop: return "16 bits, bytes backward";
    }
    return "";
}

// The table of the page, as it has to be.
std::string wantedTable() {
    std::string table = "| byte | instruction | operand | stack |\n|---|---|---|---|\n";
    for (std::size_t byte = 0; byte < opInfo.size(); ++byte) {
        const OpInfo& info = opInfo[byte];
        table += "| " + std::to_string(byte) + " | `" + info.name + "` | " +
                 operandText(info.operand) + " | `" + info.stack + "` |\n";
    }
    return table;
}

std::vector<std::string> namesIn(std::string_view heading) {
    std::vector<std::string> names;
    while (!heading.empty()) {
        const std::size_t comma = std::min(heading.find(", "), heading.size());
        names.emplace_back(heading.substr(0, comma));
        heading.remove_prefix(std::min(comma + 2, heading.size()));
    }
    return names;
}

// Whether one of the instructions in the listings of a section has this name.
bool isListed(const MarkdownSection& section, const std::string& name) {
    for (const MarkdownProgram& program : section.programs) {
        for (const std::string& line : splitLines(program.listing.value_or(""))) {
            const std::string padded = line + " ";
            if (padded.find(" " + name + " ") != padded.npos) return true;
        }
    }
    return false;
}

TEST(BytecodePage, HasTheTableOfAllInstructions) {
    const std::string text = readFile(page);
    EXPECT_NE(text.find("\n\n" + wantedTable() + "\n"), text.npos) << "wanted:\n" << wantedTable();
}

TEST(BytecodePage, ExplainsAndShowsEachInstructionOnce) {
    std::map<std::string, std::size_t> entries;
    for (const OpInfo& info : opInfo) entries[info.name] = 0;
    for (const MarkdownSection& section : sectionsOf(readFile(page))) {
        if (section.level != 3) continue;
        for (const std::string& name : namesIn(section.heading)) {
            ASSERT_TRUE(entries.contains(name))
                << page << ":" << section.line << ": no instruction: " << name;
            ++entries[name];
            // The compiler never emits this one.
            if (name == opInfo[static_cast<std::size_t>(OpCode::HALT)].name) continue;
            EXPECT_TRUE(isListed(section, name))
                << page << ":" << section.line << ": no listing has " << name;
        }
    }
    for (const auto& [name, count] : entries) {
        EXPECT_EQ(count, 1U) << page << ": entries for " << name;
    }
}

}  // namespace

}  // namespace pellum::test
