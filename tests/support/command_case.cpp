#include "support/command_case.h"

#include "support/text.h"

#include <algorithm>
#include <stdexcept>

namespace pellum::test {

namespace {

// The words of a command line.
std::vector<std::string> splitWords(std::string_view text) {
    std::vector<std::string> words;
    while (!(text = text.substr(std::min(text.find_first_not_of(' '), text.size()))).empty()) {
        const char quote = text.front();
        std::size_t end = 1;
        if (quote != '\'' && quote != '"') {
            end = std::min(text.find(' '), text.size());
            words.emplace_back(text.substr(0, end));
        } else {
            while (end < text.size() && text[end] != quote) {
                end += quote == '"' && text[end] == '\\' ? 2 : 1;
            }
            if (end >= text.size()) throw std::runtime_error("a quote is not closed");
            const std::string_view quoted = text.substr(1, end - 1);
            words.push_back(quote == '"' ? unescape(quoted) : std::string(quoted));
            ++end;
        }
        text.remove_prefix(end);
    }
    return words;
}

// The heading of a section, taken apart.
struct Heading {
    std::string kind;      // its first word
    std::string argument;  // the rest, without the modifiers
    std::vector<std::string> modifiers;

    explicit Heading(std::string_view text) {
        while (text.ends_with(')')) {
            const std::size_t open = text.rfind(" (");
            if (open == text.npos) break;
            modifiers.emplace_back(text.substr(open + 2, text.size() - open - 3));
            text = text.substr(0, open);
        }
        const std::size_t blank = std::min(text.find(' '), text.size());
        kind = text.substr(0, blank);
        argument = trim(text.substr(blank));
    }

    bool has(std::string_view modifier) const {
        return std::find(modifiers.begin(), modifiers.end(), modifier) != modifiers.end();
    }
};

class CommandCaseReader {
public:
    CommandCase read(std::string_view text) {
        const std::vector<std::string> lines = splitKeepingNewlines(text);
        auto line = lines.begin();
        for (; line != lines.end() && !isHeading(*line); ++line) readPreamble(*line);
        if (!hasCommand_) throw std::runtime_error("no line begins with \"$ pellum\"");
        while (line != lines.end()) {
            const Heading heading(trim(line->substr(4)));
            std::string body;
            for (++line; line != lines.end() && !isHeading(*line); ++line) body += *line;
            readSection(heading, std::move(body));
        }
        return std::move(result_);
    }

private:
    static bool isHeading(const std::string& line) { return line.starts_with("--- "); }

    void readPreamble(std::string_view line) {
        if (line.starts_with("$ pellum")) {
            result_.arguments = splitWords(trim(line.substr(2)));
            result_.program = result_.arguments.front();
            result_.arguments.erase(result_.arguments.begin());
            hasCommand_ = true;
        } else if (!line.starts_with('#') && !trim(line).empty()) {
            throw std::runtime_error("neither remark nor command: " + std::string(trim(line)));
        }
    }

    void readSection(const Heading& heading, std::string body) {
        if (heading.has("no newline") && body.ends_with('\n')) body.pop_back();
        if (heading.has("escaped")) body = unescape(body);
        if (heading.kind == "file") {
            result_.files.push_back({heading.argument, std::move(body)});
        } else if (heading.kind == "then") {
            result_.filesAfterwards.push_back({heading.argument, std::move(body)});
        } else if (heading.kind == "directory") {
            result_.directories.push_back(heading.argument);
        } else if (heading.kind == "fifo") {
            result_.fifos.push_back({heading.argument, std::move(body)});
        } else if (heading.kind == "link") {
            result_.links.push_back({heading.argument, std::string(trim(body))});
        } else if (heading.kind == "limit") {
            result_.surroundings.addLimit(heading.argument);
        } else if (heading.kind == "environment") {
            result_.surroundings.environment = splitLines(body);
        } else if (heading.has("closed")) {
            lead(heading.kind, std::string(closedStream));
        } else if (heading.argument.starts_with("from ") || heading.argument.starts_with("to ")) {
            lead(heading.kind, heading.argument.substr(heading.argument.find(' ') + 1));
        } else if (heading.kind == "input") {
            result_.input = std::move(body);
        } else if (heading.kind == "output") {
            if (heading.has("full device")) result_.outputTo = OutputTo::FullDevice;
            if (heading.has("closed pipe")) result_.outputTo = OutputTo::ClosedPipe;
            result_.output = {std::move(body), heading.has("pattern")};
        } else if (heading.kind == "errors") {
            result_.errors = {std::move(body), heading.has("pattern")};
        } else if (heading.kind == "status") {
            result_.status = std::stoi(heading.argument);
        } else {
            throw std::runtime_error("unknown section: " + heading.kind);
        }
    }

    void lead(const std::string& stream, const std::string& path) {
        Surroundings& surroundings = result_.surroundings;
        if (stream == "input") {
            surroundings.input = path;
        } else if (stream == "output") {
            surroundings.output = path;
        } else if (stream == "errors") {
            surroundings.errors = path;
        } else {
            throw std::runtime_error("no stream: " + stream);
        }
    }

    bool hasCommand_ = false;
    CommandCase result_;
};

}  // namespace

bool ExpectedText::matches(std::string_view given) const {
    if (!isPattern) return text == given;
    constexpr std::string_view number = "<number>";
    std::string_view wanted = text;
    for (std::size_t at; (at = wanted.find(number)) != wanted.npos;) {
        if (!given.starts_with(wanted.substr(0, at))) return false;
        given.remove_prefix(at);
        const std::size_t digits =
            std::min(given.find_first_not_of("0123456789.e+-"), given.size());
        if (digits == 0) return false;
        given.remove_prefix(digits);
        wanted.remove_prefix(at + number.size());
    }
    return wanted == given;
}

CommandCase parseCommandCase(std::string_view text) { return CommandCaseReader().read(text); }

}  // namespace pellum::test
