#include "support/markdown.h"

#include "support/files.h"
#include "support/text.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>

namespace pellum::test {

namespace {

class PageReader {
public:
    std::vector<MarkdownSection> read(std::string_view page) {
        sections_.emplace_back();
        for (const std::string& line : splitLines(page)) {
            ++line_;
            if (isInBlock_) {
                readBlockLine(line);
            } else {
                readProseLine(line);
            }
        }
        if (isInBlock_) fail("a fenced block is never closed");
        return std::move(sections_);
    }

private:
    void readProseLine(std::string_view line) {
        const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
        if (line.substr(indent).starts_with("```")) {
            isInBlock_ = true;
            indent_ = indent;
            firstLine_ = line_ + 1;
            info_ = trim(line.substr(indent + 3));
            block_.clear();
        } else if (line.starts_with('#')) {
            const std::size_t level = std::min(line.find_first_not_of('#'), line.size());
            MarkdownSection& added = sections_.emplace_back();
            added.level = level;
            added.heading = trim(line.substr(level));
            added.line = line_;
            hasProgram_ = false;
        } else {
            section().prose += std::string(line) + "\n";
        }
    }

    void readBlockLine(std::string_view line) {
        const std::size_t blanks = std::min(line.find_first_not_of(' '), line.size());
        line.remove_prefix(std::min(blanks, indent_));
        if (trim(line) == "```") {
            isInBlock_ = false;
            closeBlock();
        } else {
            block_ += std::string(line) + "\n";
        }
    }

    void closeBlock() {
        if (info_.starts_with("pellum")) {
            addProgram();
        } else if (info_ == "command") {
            section().commands.push_back({section().heading, nextNumber(), firstLine_, block_});
            hasProgram_ = false;
        } else if (info_ == "transcript") {
            section().transcripts.push_back({section().heading, nextNumber(), firstLine_, block_});
            hasProgram_ = false;
        } else if (info_ == "input") {
            program().input = block_;
        } else if (info_ == "tokens") {
            program().tokens = block_;
        } else if (info_ == "syntax") {
            program().syntax = block_;
        } else if (info_ == "listing") {
            program().listing = block_;
        } else if (info_ == "registers") {
            program().registers = block_;
        } else {
            constexpr std::string_view modifier = " (beginning)";
            const bool isWhole = !info_.ends_with(modifier);
            if (!isWhole) info_.resize(info_.size() - modifier.size());
            if (info_ == "output" || info_ == "tree") expect(program().treeOutput, isWhole);
            if (info_ == "output" || info_ == "vm") expect(program().vmOutput, isWhole);
        }
    }

    void addProgram() {
        hasProgram_ = info_ != "pellum fragment";
        if (!hasProgram_) return;
        const bool isWriter = info_ == "pellum writer";
        if (!isWriter && info_ != "pellum") fail("unknown kind of program: " + info_);
        MarkdownProgram& added = section().programs.emplace_back();
        added.heading = section().heading;
        added.number = nextNumber();
        added.line = firstLine_;
        added.source = block_;
        added.isWriter = isWriter;
    }

    MarkdownSection& section() { return sections_.back(); }

    // Programs, commands and transcripts under one heading are counted together, also where a page
    // has the heading twice.
    std::size_t nextNumber() { return ++counts_[section().heading]; }

    MarkdownProgram& program() {
        if (!hasProgram_) fail("the block \"" + info_ + "\" belongs to no program");
        return section().programs.back();
    }

    void expect(std::optional<MarkdownOutput>& output, bool isWhole) {
        if (output) fail("the output of this program has been shown before");
        output = MarkdownOutput{block_, isWhole};
    }

    [[noreturn]] void fail(const std::string& message) const {
        throw std::runtime_error("line " + std::to_string(line_) + ": " + message);
    }

    std::vector<MarkdownSection> sections_;
    bool hasProgram_ = false;  // the last program may still get its output
    std::map<std::string, std::size_t> counts_;
    std::size_t line_ = 0;
    bool isInBlock_ = false;
    std::size_t indent_ = 0;
    std::size_t firstLine_ = 0;
    std::string info_;
    std::string block_;
};

}  // namespace

std::vector<std::filesystem::path> markdownPages() {
    std::vector<std::filesystem::path> pages = filesUnder("docs", ".md");
    for (const char* page : {"README.md", "CONTRIBUTING.md"}) {
        if (std::filesystem::exists(page)) pages.emplace_back(page);
    }
    return pages;
}

std::vector<MarkdownSection> sectionsOf(std::string_view page) { return PageReader().read(page); }

std::vector<MarkdownProgram> programsOf(std::string_view page) {
    std::vector<MarkdownProgram> programs;
    for (MarkdownSection& section : sectionsOf(page)) {
        std::move(section.programs.begin(), section.programs.end(), std::back_inserter(programs));
    }
    return programs;
}

}  // namespace pellum::test
