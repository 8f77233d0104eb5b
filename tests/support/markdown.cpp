#include "support/markdown.h"

#include "support/files.h"
#include "support/text.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace pellum::test {

namespace {

class PageReader {
public:
    std::vector<MarkdownProgram> read(std::string_view page) {
        for (const std::string& line : splitLines(page)) {
            ++line_;
            if (isInBlock_) {
                readBlockLine(line);
            } else {
                readProseLine(line);
            }
        }
        if (isInBlock_) fail("a fenced block is never closed");
        return std::move(programs_);
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
            heading_ = trim(line.substr(std::min(line.find_first_not_of('#'), line.size())));
            hasProgram_ = false;
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
        if (info_ == "pellum") {
            programs_.push_back({heading_, ++counts_[heading_], firstLine_, block_, "", {}, {}});
            hasProgram_ = true;
        } else if (info_.starts_with("pellum")) {
            if (info_ != "pellum fragment") fail("unknown kind of program: " + info_);
            hasProgram_ = false;
        } else if (info_ == "input") {
            program().input = block_;
        } else if (info_ == "output") {
            expectOutput(program().treeOutput);
            expectOutput(program().vmOutput);
        } else if (info_ == "tree") {
            expectOutput(program().treeOutput);
        } else if (info_ == "vm") {
            expectOutput(program().vmOutput);
        }
    }

    MarkdownProgram& program() {
        if (!hasProgram_) fail("the block \"" + info_ + "\" belongs to no program");
        return programs_.back();
    }

    void expectOutput(std::optional<std::string>& output) {
        if (output) fail("the output of this program has been shown before");
        output = block_;
    }

    [[noreturn]] void fail(const std::string& message) const {
        throw std::runtime_error("line " + std::to_string(line_) + ": " + message);
    }

    std::vector<MarkdownProgram> programs_;
    bool hasProgram_ = false;
    std::string heading_;
    std::map<std::string, std::size_t> counts_;  // programs under each heading
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

std::vector<MarkdownProgram> programsOf(std::string_view page) { return PageReader().read(page); }

}  // namespace pellum::test
