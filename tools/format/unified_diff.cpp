#include "format/unified_diff.h"

#include <algorithm>
#include <vector>

namespace pellum::tools {

namespace {

constexpr std::size_t context = 3;

struct Line {
    std::string_view text;  // with its newline, if it has one
    std::size_t content;    // the bytes that a layout keeps, up to the end of the line
};

std::vector<Line> linesOf(std::string_view text) {
    std::vector<Line> lines;
    std::size_t content = 0;
    while (!text.empty()) {
        const std::size_t newline = text.find('\n');
        const std::size_t size = newline == text.npos ? text.size() : newline + 1;
        const std::string_view line = text.substr(0, size);
        content += static_cast<std::size_t>(std::count_if(line.begin(), line.end(), [](char byte) {
            return std::string_view(" \t\r\n,").find(byte) == std::string_view::npos;
        }));
        lines.push_back({line, content});
        text.remove_prefix(size);
    }
    return lines;
}

struct Change {
    char mark;  // ' ', '-' or '+'
    std::string_view line;
};

// What stays, goes and comes, in order. Lines that differ go and come until as much is written up
// to here in both texts.
std::vector<Change> changesBetween(const std::vector<Line>& before,
                                   const std::vector<Line>& after) {
    std::vector<Change> changes;
    std::vector<Change> added;  // they come behind those that go
    const auto contentUpTo = [](const std::vector<Line>& lines, std::size_t count) {
        return count == 0 ? 0 : lines[count - 1].content;
    };
    std::size_t i = 0, j = 0;
    while (i < before.size() || j < after.size()) {
        const std::size_t written = contentUpTo(before, i), kept = contentUpTo(after, j);
        const bool isEven = written == kept;
        if (isEven && i < before.size() && j < after.size() && before[i].text == after[j].text) {
            changes.insert(changes.end(), added.begin(), added.end());
            added.clear();
            changes.push_back({' ', before[i].text});
            ++i, ++j;
            continue;
        }
        // An empty line on one side alone goes or comes by itself.
        const bool isExtra = isEven && j < after.size() && after[j].content == kept &&
                             (i == before.size() || before[i].content != written);
        const bool goes = j == after.size() || (i < before.size() && written <= kept && !isExtra);
        if (goes) {
            changes.push_back({'-', before[i++].text});
        } else {
            added.push_back({'+', after[j++].text});
        }
    }
    changes.insert(changes.end(), added.begin(), added.end());
    return changes;
}

// "START,COUNT" as hunks have it; nothing begins behind the line before it.
std::string range(std::size_t before, std::size_t count) {
    return std::to_string(count == 0 ? before : before + 1) + "," + std::to_string(count);
}

}  // namespace

std::string unifiedDiff(std::string_view before, std::string_view after, std::string_view name) {
    if (before == after) return {};
    const std::vector<Change> changes = changesBetween(linesOf(before), linesOf(after));
    const auto isChange = [](const Change& change) { return change.mark != ' '; };

    std::string out = "--- " + std::string(name) + "\n+++ " + std::string(name) + "\n";
    std::size_t oldLine = 0, newLine = 0;  // that lie before `done`
    auto done = changes.begin();
    for (;;) {
        auto first = std::find_if(done, changes.end(), isChange);
        if (first == changes.end()) return out;
        // A hunk goes on as long as the next change is near.
        auto last = first;
        for (auto next = first;
             next != changes.end() && next - last <= static_cast<std::ptrdiff_t>(2 * context + 1);
             next = std::find_if(next + 1, changes.end(), isChange)) {
            last = next;
        }
        first -= std::min<std::ptrdiff_t>(context, first - done);
        const auto end = last + 1 + std::min<std::ptrdiff_t>(context, changes.end() - (last + 1));
        oldLine += static_cast<std::size_t>(first - done);
        newLine += static_cast<std::size_t>(first - done);
        const auto olds = static_cast<std::size_t>(
            std::count_if(first, end, [](const Change& change) { return change.mark != '+'; }));
        const auto news = static_cast<std::size_t>(
            std::count_if(first, end, [](const Change& change) { return change.mark != '-'; }));
        out += "@@ -" + range(oldLine, olds) + " +" + range(newLine, news) + " @@\n";
        for (auto change = first; change != end; ++change) {
            out += change->mark;
            out += change->line;
            if (!change->line.ends_with('\n')) out += "\n\\ No newline at end of file\n";
        }
        oldLine += olds;
        newLine += news;
        done = end;
    }
}

}  // namespace pellum::tools
